"""configure-agent as a management engine runs it: as root, with pipes for its streams."""

import json
import os
import shutil
import subprocess
from collections.abc import Mapping
from dataclasses import dataclass
from pathlib import Path
from subprocess import PIPE
from typing import Any

from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, Account, Command, Job, Machine
from driver.waiting import wait_until
from expected_commands import (
    ALICE,
    apply_commands,
    check_agent,
    check_daemon,
    console_lookup,
    profile_check,
    server_plist,
)

ROOT = Account("root", 0, "")
RUN_FOLDER = Path("/run/configure-agent")
SETTINGS = EDITIONS["Zentavo"].settings
DAEMON_SETTINGS = SETTINGS / "daemon.settings.xml"
BOTH = {AGENT, DAEMON}
OLD_SERVER, NEW_SERVER = "192.0.2.1", "192.0.2.10"


def stored(server: str) -> bytes:
    """The server.plist that names this server; everything else is always the same."""
    return server_plist("fr", server, "4000", False)


OLD, NEW = stored(OLD_SERVER), stored(NEW_SERVER)


def apply_to(server: str, *more: str) -> tuple[str, ...]:
    return ("apply", "--server", server, "--json", *more)


APPLY = apply_to(NEW_SERVER)

# What sudo leaves behind; the journal shows the calls of root only with it.
ENVIRONMENT = {**os.environ, "SUDO_UID": str(ALICE.uid), "LANG": "en_US.UTF-8"}


@dataclass(frozen=True)
class Result:
    """What one run has left on its streams, and its exit status."""

    status: int
    output: str
    errors: str

    @property
    def report(self) -> dict[str, Any]:
        """The report: one line of JSON, and nothing else on standard output."""
        assert self.output.endswith("\n") and self.output.count("\n") == 1, self.output
        report: dict[str, Any] = json.loads(self.output)
        assert list(report) == ["changed", "before", "after", "wanted", "problems"]
        return report


def path(edition: str = "Zentavo") -> Path:
    return EDITIONS[edition].program.with_name("configure-agent")


def start(
    *arguments: str | bytes,
    edition: str = "Zentavo",
    env: Mapping[str, str] = ENVIRONMENT,
    **options: Any,
) -> subprocess.Popen[str]:
    """Starts the tool as root."""
    streams: dict[str, Any] = {"stdin": subprocess.DEVNULL, "stdout": PIPE, "stderr": PIPE}
    command = [path(edition), *arguments]
    return subprocess.Popen(command, text=True, cwd="/", env=env, **streams | options)


def finish(process: subprocess.Popen[str]) -> Result:
    output, errors = process.communicate(timeout=60)
    printed = output + (errors or "")
    assert all(account.password not in printed for account in ACCOUNTS.values())
    return Result(process.returncode, output, errors)


def run(*arguments: str | bytes, **options: Any) -> Result:
    """Runs the tool as root to its end."""
    return finish(start(*arguments, **options))


def prepare(machine: Machine, *jobs: Job) -> None:
    """A machine after a restart, so without lock or mark, with these jobs and the old settings."""
    machine.reset()
    shutil.rmtree(RUN_FOLDER, ignore_errors=True)
    machine.write_server_plist(OLD)
    machine.load(*jobs)


def is_stopped(pid: int) -> bool:
    """Whether a process got SIGSTOP, as fault rules send it."""
    try:
        return "\nState:\tT" in Path(f"/proc/{pid}/status").read_text()
    except OSError:
        return False


def wait_until_stopped(machine: Machine, part: str) -> int:
    """Waits until a command whose line contains that is stopped; its process id."""

    def stopped() -> int | None:
        called = [r["pid"] for r in machine.records() if part in " ".join(r["argv"])]
        return next((pid for pid in called if is_stopped(pid)), None)

    return wait_until(stopped, f"stop of {part}")


def looks(*, edition: str = "Zentavo", console: bool = True) -> list[Command]:
    """The commands by which the tool reads the state before Apply."""
    lookup = console_lookup("root", ALICE)
    commands = profile_check("root", ROOT, EDITIONS[edition])
    return [*commands, *(lookup if console else lookup[:2]), *checks(console)]


def checks(console: bool = True) -> list[Command]:
    agent = check_agent("root", "alice", ALICE.uid) if console else []
    return [*check_daemon("root", ROOT), *agent]


def sequence(*, edition: str = "Zentavo", console: bool = True, **options: Any) -> list[Command]:
    """The commands of Apply, without the look-up of the console user."""
    user = ALICE if console else None
    return apply_commands("root", ROOT, user, EDITIONS[edition], **options)
