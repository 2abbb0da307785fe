"""configure-agent as a management engine runs it: as root, with pipes for its streams."""

import json
import os
import shutil
import subprocess
from collections.abc import Callable, Mapping
from dataclasses import dataclass
from pathlib import Path
from typing import Any

from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, Account, Command
from expected_commands import (
    check_agent,
    check_daemon,
    console_lookup,
    profile_check,
    reset_settings,
    start_agent,
    start_daemon,
    stop_agent,
    stop_daemon,
)

ALICE = ACCOUNTS["alice"]
ROOT = Account("root", 0, "")
RUN_FOLDER = Path("/run/configure-agent")
Operations = tuple[Callable[..., list[Command]], ...]
NEW_SERVER = "192.0.2.10"


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
    stdin: int = subprocess.DEVNULL,
    env: Mapping[str, str] = ENVIRONMENT,
    start_new_session: bool = False,
) -> subprocess.Popen[str]:
    """Starts the tool as root."""
    return subprocess.Popen(
        [path(edition), *arguments],
        stdin=stdin,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
        cwd="/",
        env=env,
        start_new_session=start_new_session,
    )


def finish(process: subprocess.Popen[str]) -> Result:
    output, errors = process.communicate(timeout=60)
    assert all(account.password not in output + errors for account in ACCOUNTS.values())
    return Result(process.returncode, output, errors)


def run(*arguments: str | bytes, **options: Any) -> Result:
    """Runs the tool as root to its end."""
    return finish(start(*arguments, **options))


def forget_runs() -> None:
    """As after a restart of the system: no lock, no mark."""
    shutil.rmtree(RUN_FOLDER, ignore_errors=True)


def looks(*, edition: str = "Zentavo", console: bool = True) -> list[Command]:
    """The commands by which the tool finds out what there is."""
    lookup = console_lookup("root", ALICE)
    commands = profile_check("root", ROOT, EDITIONS[edition])
    return [*commands, *(lookup if console else lookup[:2]), *checks(console)]


def checks(console: bool = True) -> list[Command]:
    agent = check_agent("root", "alice", ALICE.uid) if console else []
    return [*check_daemon("root", ROOT), *agent]


def sequence(
    *,
    edition: str = "Zentavo",
    console: bool = True,
    stops: Operations = (stop_agent, stop_daemon),
    reset: bool = False,
    starts: Operations = (start_daemon, start_agent),
) -> list[Command]:
    """The commands of Apply, without the look-up of the console user."""
    alice = ("root", "alice", ALICE.uid)
    commands = check_agent(*alice) if console else []
    commands += stop_agent(*alice) if console and stop_agent in stops else []
    commands += check_daemon("root", ROOT)
    commands += stop_daemon("root", ROOT) if stop_daemon in stops else []
    commands += reset_settings("root", ROOT, EDITIONS[edition]) if reset else []
    commands += check_daemon("root", ROOT)
    commands += start_daemon("root", ROOT) if start_daemon in starts else []
    commands += check_agent(*alice) if console else []
    commands += start_agent(*alice) if console and start_agent in starts else []
    return commands
