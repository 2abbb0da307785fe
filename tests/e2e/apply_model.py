"""A model of Apply: what it leaves behind when one of its commands is disturbed, without running it."""

import os
import shlex
from dataclasses import dataclass
from typing import NamedTuple

from expected_commands import (
    ALICE,
    FAILED,
    RESET_FILES,
    SAID,
    Operation,
    check_agent,
    check_daemon,
    console_lookup,
    reset_settings,
    start_agent,
    start_daemon,
    stop_agent,
    stop_daemon,
)
from driver.commands import run
from driver.editions import EDITIONS
from driver.machine import AGENT, DAEMON, Account, Command, Job

DAEMON_SETTINGS = "daemon.settings.xml"
LANGUAGE = "en_US.UTF-8"
NOISE = "e" * 60000


class Place(NamedTuple):
    """A command of the undisturbed Apply: the number of its shell, and its own below that shell
    (0 is the shell itself)."""

    shell: int
    command: int


@dataclass
class Shell:
    """One shell of an Apply: what it runs, what the program has printed before it, and the state of
    the machine then."""

    commands: list[Command]
    output: list[str]
    jobs: set[Job]
    settings: dict[str, str]


def _is_silenced(shell: list[Command], command: int) -> bool:
    """Whether the shell sends a command's error stream to the null device. In a pipeline that is
    true of the last stage only."""
    is_first_stage = shell[command].argv[0] == "/bin/echo"
    return command > 0 and "> /dev/null" in shell[0].argv[2] and not is_first_stage


def _survivors(shell: list[Command], command: int) -> list[Command]:
    """What runs although a command ends at once: without a password, sudo refuses the last command;
    everything else keeps what it would have started from running."""
    is_password = shell[command].argv[0] == "/bin/echo"
    return shell[:-1] if is_password else shell[: command + 1]


def _numeric_id(user: str) -> str:
    """What `id` prints for a name, on either stream, without newlines."""
    result = run("id", "-u", user, env=os.environ | {"LANG": LANGUAGE})
    return (result.stdout + result.stderr).replace("\n", "")


def _by_shell(commands: list[Command]) -> list[list[Command]]:
    starts = [i for i, command in enumerate(commands) if command.argv[0] == "/bin/bash"]
    return [commands[i:j] for i, j in zip(starts, [*starts[1:], len(commands)])]


class ApplyModel:
    """Alice's Apply with a reset, agent and daemon being loaded. The command at a place may be
    disturbed: it ends before it does anything, or is noisy, which is NOISE on its error stream."""

    def __init__(self, place: Place | None = None, ends: bool = False, noisy: bool = False):
        self._place, self._ends, self._noisy = place, ends, noisy
        self.shells: list[Shell] = []
        self.output: list[str] = []
        self.errors = ""
        self.jobs = {AGENT, DAEMON}
        self.settings = {file: "installed" for file in (*RESET_FILES, DAEMON_SETTINGS)}
        self._look_up_console_user()
        self._stop_jobs()
        self.shells_before_file = len(self.shells)
        self._reset_settings()
        self._start_jobs()

    @property
    def journal(self) -> list[Command]:
        return [command for shell in self.shells for command in shell.commands]

    def _look_up_console_user(self) -> None:
        user = self._capture(console_lookup("alice", ALICE)[:2], "alice")
        id_of_user = console_lookup("alice", Account(user, 0, ""))[2:]
        self._console = user, self._capture(id_of_user, _numeric_id(user))
        self.output.append("USER={} uid={}".format(*self._console))

    def _stop_jobs(self) -> None:
        if self._is_loaded(AGENT, check_agent):
            self._change(stop_agent, self.jobs - {AGENT})
        if self._is_loaded(DAEMON, check_daemon):
            self._change(stop_daemon, self.jobs - {DAEMON})

    def _reset_settings(self) -> None:
        commands = reset_settings("alice", ALICE, EDITIONS["Zentavo"])
        *deletions, generation = _by_shell(commands)
        for file, deletion in zip(RESET_FILES, deletions, strict=True):
            if self._run(deletion):
                del self.settings[file]
        if self._run(generation):
            self.settings[DAEMON_SETTINGS] = "generated"
        elif self.shells[-1].commands == generation:
            self.settings[DAEMON_SETTINGS] = "empty"

    def _start_jobs(self) -> None:
        if not self._is_loaded(DAEMON, check_daemon):
            self._change(start_daemon, self.jobs | {DAEMON})
        if not self._is_loaded(AGENT, check_agent):
            self._change(start_agent, self.jobs | {AGENT})

    def _is_loaded(self, job: Job, check: Operation) -> bool:
        return self._run(*self._commands(check)) and job in self.jobs

    def _change(self, operation: Operation, jobs: set[Job]) -> None:
        works = self._run(*self._commands(operation))
        if works:
            self.jobs = jobs
        self.output.append((SAID if works else FAILED)[operation])

    def _commands(self, operation: Operation) -> tuple[list[Command], bool]:
        """An operation's commands, and whether the last one can be reached: launchctl refuses what
        is not a valid user id."""
        if operation in (check_daemon, stop_daemon, start_daemon):
            return operation("alice", ALICE), True
        commands = operation("alice", *self._console)
        if self._console[1].isdigit():
            return commands, True
        line = commands[0].argv[2].removesuffix("&> /dev/null")
        return [commands[0], Command("alice", tuple(shlex.split(line)))], False

    def _run(self, commands: list[Command], is_reached: bool = True) -> bool:
        """A shell; whether its last command succeeds."""
        self.errors += self._noise(commands)
        return self._note(commands, is_reached)

    def _capture(self, commands: list[Command], answer: str) -> str:
        """A shell whose streams the program reads; gives what it reads."""
        noise = self._noise(commands)
        return noise + (answer if self._note(commands) else "")

    def _note(self, commands: list[Command], is_reached: bool = True) -> bool:
        place = self._disturbed_place()
        if place is not None and self._ends:
            commands, is_reached = _survivors(commands, place.command), False
        state = list(self.output), set(self.jobs), dict(self.settings)
        self.shells.append(Shell(commands, *state))
        return is_reached

    def _noise(self, commands: list[Command]) -> str:
        place = self._disturbed_place()
        if place is None or not self._noisy or _is_silenced(commands, place.command):
            return ""
        return NOISE

    def _disturbed_place(self) -> Place | None:
        """The place of the disturbed command, if it belongs to the next shell."""
        is_next = self._place is not None and self._place.shell == len(self.shells)
        return self._place if is_next else None
