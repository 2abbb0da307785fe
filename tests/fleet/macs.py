"""The machines of lab/fleet, as root of the outer lab sees them."""

import json
import os
import plistlib
import signal
from collections.abc import Callable, Iterable, Iterator
from concurrent.futures import ThreadPoolExecutor
from contextlib import contextmanager, suppress
from dataclasses import dataclass
from pathlib import Path

from driver.commands import run
from driver.editions import EDITIONS
from driver.machine import AGENT, DAEMON, SERVER_PLIST, STATE, Job, loaded_jobs
from driver.paths import LAB

TOOL = EDITIONS["Zentavo"].program.parent / "configure-agent"
AGENT_FOLDER = Path(EDITIONS["Zentavo"].folder).parent
ALL_JOBS = {DAEMON, AGENT}


@dataclass(frozen=True)
class Mac:
    """One machine. Works without the network, and also while its sshd is down."""

    name: str
    pid: int

    @property
    def enter(self) -> list[str]:
        """The words before a command that make it run as root on the machine."""
        return ["nsenter", f"--target={self.pid}", "--all"]

    def run(self, *command: object) -> str:
        """Runs a command, which may not fail, and returns what it prints."""
        return run(*self.enter, *command, check=True).stdout

    def shell(self, script: str) -> str:
        return self.run("/bin/bash", "-c", script)

    def path(self, path: Path | str) -> Path:
        """The machine's file, as seen from here."""
        return Path(f"/proc/{self.pid}/root{path}")

    def loaded(self) -> set[Job]:
        """The launchd jobs that are loaded."""
        return loaded_jobs(self.path(STATE))

    def settings(self) -> dict[str, object]:
        """The stored settings; empty if there are none."""
        file = self.path(SERVER_PLIST)
        stored: dict[str, object] = plistlib.loads(file.read_bytes()) if file.exists() else {}
        return stored

    def commands(self) -> list[str]:
        """The command lines in the journal."""
        text = self.path(STATE / "journal").read_text(errors="replace")
        return [" ".join(json.loads(line)["argv"]) for line in text.splitlines()]

    def add_fault(self, rule: str) -> None:
        """Adds a fault rule, as described in lab/README.md."""
        with self.path(STATE / "faults").open("a") as faults:
            faults.write(rule + "\n")

    def is_busy(self) -> bool:
        """Whether configure-agent runs, or is about to: sudo and the shell name it too."""
        return any(b"configure-agent" in line for _, line in _command_lines(self.path("/proc")))

    def reset(self) -> None:
        """Restores the state right after the agent was installed."""
        self.run(LAB / "install-agent")

    @contextmanager
    def without_agent(self) -> Iterator[None]:
        """While it lasts, the agent is not installed; its job files are only back after a reset."""
        self.shell(f"mv '{AGENT_FOLDER}' /tmp/agent; rm /Library/Launch*/com.quorvix.*")
        try:
            yield
        finally:
            self.run("mv", "/tmp/agent", AGENT_FOLDER)


def _command_lines(proc: Path) -> Iterable[tuple[int, bytes]]:
    for folder in proc.glob("[0-9]*"):
        try:
            yield int(folder.name), (folder / "cmdline").read_bytes()
        except OSError:
            pass


def find_macs() -> list[Mac]:
    """The machines that run now, in their order."""
    macs = {}
    for pid, line in _command_lines(Path("/proc")):
        # lab/run and lab/enter have the same words further on.
        _, program, *words = [*line.split(b"\0"), b""]
        if program == os.fsencode(LAB / "fleet-machine"):
            macs[int(words[0])] = Mac(f"mac{int(words[0])}", pid)
    return [mac for _, mac in sorted(macs.items())]


def kill_processes(*beginnings: bytes) -> None:
    """Kills processes of this lab and its machines, by the beginnings of their command lines."""
    for pid, line in _command_lines(Path("/proc")):
        if line.startswith(beginnings):
            with suppress(ProcessLookupError):
                os.kill(pid, signal.SIGKILL)


def each(macs: Iterable[Mac], status: str) -> dict[str, str]:
    """The same status for all machines, by name."""
    return {mac.name: status for mac in macs}


def on_each(macs: Iterable[Mac], action: Callable[[Mac], object]) -> None:
    """Does something on several machines at the same time."""
    with ThreadPoolExecutor(8) as pool:
        list(pool.map(action, macs))
