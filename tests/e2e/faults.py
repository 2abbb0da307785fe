"""The program about to apply, and everything that a fault could leave behind."""

import os
import re
from collections.abc import Callable
from pathlib import Path
from typing import Any, NamedTuple

from apply_model import NOISE, ApplyModel, Place, Shell
from driver.editions import EDITIONS
from driver.machine import AGENT, DAEMON, PREFERENCES, SERVER_PLIST, STATE, Command, Machine
from driver.program import Program
from driver.waiting import wait_until
from expected_commands import ALICE, WRITE_ERROR, server_plist

OLD = server_plist("fr", "192.0.2.1", "4000", True)
NEW = server_plist("fr", "192.0.2.1", "4000", False)
SETTINGS = EDITIONS["Zentavo"].settings

CLEAN = ApplyModel()
COMMANDS = {
    Place(i, k): command
    for i, shell in enumerate(CLEAN.shells)
    for k, command in enumerate(shell.commands)
}


# A link's target; a file's mode, owner and content; the mode of everything else.
Entry = str | tuple[int, int, bytes] | int
Start = Callable[..., Program]


class Process(NamedTuple):
    name: str
    state: str
    parent: int


def processes() -> dict[int, Process]:
    """All processes of the lab, zombies too."""
    result = {}
    for file in Path("/proc").glob("[0-9]*/stat"):
        try:
            name, rest = file.read_text().split("(", 1)[1].rsplit(")", 1)
        except OSError:
            continue
        state, parent = rest.split()[:2]
        result[int(file.parent.name)] = Process(name, state, int(parent))
    return result


class Ready:
    """The program, logged in and with the reset chosen: the next thing is Apply."""

    def __init__(self, machine: Machine, start: Start, stored: bytes = OLD) -> None:
        machine.write_server_plist(stored)
        machine.load(AGENT, DAEMON)
        self._machine = machine
        self._installed = {file.name: file.read_text() for file in SETTINGS.iterdir()}
        self._others = processes().keys()
        self.program = start()
        self.window = self.program.log_in()
        self.window.click("reset_settings")
        self._logged_in = len(machine.records())

    def add_fault(self, place: Place, **actions: Any) -> None:
        """Disturbs one command of the Apply to come, and no other."""
        argv = COMMANDS[place].argv
        line = " ".join(argv)
        earlier = [" ".join(COMMANDS[other].argv) for other in COMMANDS if other < place]
        number = 1 + sum(other.startswith(line) for other in earlier)
        self._machine.add_fault(Path(argv[0]).name, f"^{line}", times=-number, **actions)

    def was_disturbed(self, number: int = 0) -> bool:
        """Whether the command of that fault rule was called."""
        return (STATE / "faults").read_text().splitlines()[number].startswith("000000")

    def apply(self) -> None:
        self.window.press("Return")

    def processes(self) -> dict[int, Process]:
        """The program and everything that was started since it was."""
        return {n: p for n, p in processes().items() if n not in self._others}

    def children(self) -> dict[int, Process]:
        """The program's child processes."""
        return {n: p for n, p in self.processes().items() if p.parent == self.program.pid}

    def stopped_child(self) -> int | None:
        return next((n for n, p in self.children().items() if p.state == "T"), None)

    def wait_for_processes(self) -> None:
        wait_until(lambda: not self.processes(), "end of all processes")

    def journal(self) -> list[Command]:
        """What ran since the login."""
        return self._machine.journal()[self._logged_in :]

    def settings(self) -> dict[str, str]:
        """What has become of the agent's settings files."""
        contents = {file.name: file.read_text() for file in SETTINGS.iterdir()}
        kinds = {name: {text: "installed", "": "empty"} for name, text in self._installed.items()}
        return {name: kinds[name].get(text, "generated") for name, text in contents.items()}

    def check_end(self, expected: ApplyModel = CLEAN, error: str | None = None) -> None:
        """Waits for the end of the program: it succeeds, leaves no process, and has done everything
        that was to be done."""
        assert self.program.wait() == 0
        assert self.processes() == {}
        assert self.journal() == expected.journal
        assert self.program.output.splitlines() == expected.output
        assert self._machine.loaded() == expected.jobs
        assert self.settings() == expected.settings
        assert self.program.errors.count(NOISE) == expected.errors.count(NOISE)
        assert re.findall(WRITE_ERROR, self.program.errors) == ([error] if error else [])
        assert self.program.errors.count("unable to") == (1 if error else 0)

    def check_state_after(self, number: int) -> None:
        """One of the shells was the last one, and has done its work."""
        shells = CLEAN.shells[: number + 1]
        assert self.journal() == [command for shell in shells for command in shell.commands]
        states: list[Shell | ApplyModel] = [*CLEAN.shells, CLEAN]
        following = states[number + 1]
        assert self._machine.loaded() == following.jobs
        assert self.settings() == following.settings


def entries() -> dict[Path, Entry]:
    """Everything below the preferences."""
    result: dict[Path, Entry] = {}
    for path in PREFERENCES.parent.rglob("*"):
        status = path.lstat()
        result[path] = status.st_mode
        if path.is_symlink():
            result[path] = os.readlink(path)
        elif path.is_file():
            result[path] = status.st_mode & 0o7777, status.st_uid, path.read_bytes()
    return result


def after_apply(before: dict[Path, Entry], mode: int, content: bytes) -> dict[Path, Entry]:
    """The entries when the file was written."""
    return {**before, PREFERENCES.resolve() / SERVER_PLIST.name: (mode, ALICE.uid, content)}
