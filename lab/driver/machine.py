"""The lab's machine as a test sees it: its accounts, files, launchd jobs, fault rules and journal."""

import json
import os
import plistlib
import socket
import subprocess
from dataclasses import dataclass
from pathlib import Path
from typing import Iterable, NamedTuple, TypedDict

from .paths import LAB

STATE = Path("/var/lab")
PREFERENCES = Path("/Library/Preferences/ZentavoAgent")
SERVER_PLIST = PREFERENCES / "server.plist"
PID_LIMIT = 32768


@dataclass(frozen=True)
class Account:
    """One row of lab/accounts."""

    name: str
    uid: int
    password: str


class Command(NamedTuple):
    """One journal entry: who ran what."""

    user: str
    argv: tuple[str, ...]


class Record(TypedDict):
    """One journal entry in full."""

    time: str
    user: str
    pid: int
    ppid: int
    program: str
    argv: list[str]


class Job(NamedTuple):
    """A launchd job in its domain."""

    domain: str
    label: str


DAEMON = Job("system", "com.quorvix.SystemAgentDaemon")
AGENT = Job("user/501", "com.quorvix.SystemAgentUX")


def _accounts() -> Iterable[Account]:
    for row in (LAB / "accounts").read_text().splitlines():
        if not row.startswith("#"):
            name, uid, _, password = row.split()
            yield Account(name, int(uid), password)


ACCOUNTS = {account.name: account for account in _accounts()}


def loaded_jobs(state: Path) -> set[Job]:
    """The launchd jobs that are loaded on the machine whose state is in that folder."""
    base = state / "launchd"
    files = [file for file in base.rglob("*") if file.is_file()]
    return {Job(str(file.parent.relative_to(base)), file.name) for file in files}


def _in_order(records: list[Record]) -> list[Record]:
    """Sorts the stages of each pipeline, which start at the same time, from left to right.

    A shell starts the stages in that order, so their process ids tell. Everything below a stage
    stays with it.
    """
    result: list[Record] = []
    call: list[tuple[int, Record]] = []
    stages: dict[int, int] = {}
    shell = 0
    for record in records:
        pid, parent = record["pid"], record["ppid"]
        if record["program"] in ("bash", "sh") and pid not in stages and parent not in stages:
            result += [entry for _, entry in sorted(call, key=lambda item: item[0])]
            call, stages, shell = [], {pid: 0}, pid
        elif pid not in stages:
            stages[pid] = stages.get(parent) or (pid - shell) % PID_LIMIT if stages else 0
        call.append((stages.get(pid, 0), record))
    return result + [entry for _, entry in sorted(call, key=lambda item: item[0])]


class Machine:
    """The machine a test runs on. Everything here needs root inside the lab."""

    kills_commands = False  # whether a fault rule sends a signal

    def reset(self) -> None:
        """Restores the state right after the agent was installed."""
        subprocess.run([LAB / "install-agent"], check=True)

    def records(self) -> list[Record]:
        """All journal entries in full, in the order in which they were written."""
        text = (STATE / "journal").read_text(encoding="utf-8", errors="surrogateescape")
        return [json.loads(line) for line in text.splitlines()]

    def journal(self) -> list[Command]:
        """Who ran what, in order; the stages of a pipeline from left to right."""
        return [Command(r["user"], tuple(r["argv"])) for r in _in_order(self.records())]

    def add_fault(
        self, program: str, part: str = "", *, times: int | None = None, **actions: float | bytes
    ) -> None:
        """Adds a fault rule for the calls of a program whose command line contains `part`.

        A part that starts with ^ must be at the beginning of the command line. `times` limits the
        rule to the first calls; -n is for the n-th call alone.

        The actions are those of the lab (stderr, prints, delay, signal, exit) and happen in the order
        of the arguments; without `exit` or `signal` the call then goes on as usual.
        """
        words = ",".join(
            f"{verb}={value.hex() if isinstance(value, bytes) else value}"
            for verb, value in actions.items()
        )
        self.kills_commands |= "signal" in actions
        count = "always" if times is None else f"{times:06d}"
        with (STATE / "faults").open("a") as faults:
            faults.write(f"{count} {program} {words} {part}\n")

    def load(self, *jobs: Job) -> None:
        """Loads launchd jobs."""
        for job in jobs:
            (STATE / "launchd" / job.domain / job.label).touch()

    def loaded(self) -> set[Job]:
        """The launchd jobs that are loaded."""
        return loaded_jobs(STATE)

    def restrict_asuser(self) -> None:
        """Makes `launchctl asuser` refuse everybody except root, for their own session too."""
        (STATE / "asuser-needs-root").touch()

    def install_profiles(self, *identifiers: str) -> None:
        """Installs configuration profiles."""
        (STATE / "profiles").write_text("".join(f"{name}\n" for name in identifiers))

    def store_settings(self, language: str, server: str, port: int, profile: bool = False) -> None:
        """Stores agent settings as a valid property list, not in the exact form that Apply writes."""
        values = {"language": language, "server": server, "port": port, "profile": profile}
        self.write_server_plist(plistlib.dumps(values, sort_keys=False))

    def write_server_plist(self, content: str | bytes) -> None:
        """Writes server.plist, owned by an administrator."""
        SERVER_PLIST.write_bytes(content.encode() if isinstance(content, str) else content)
        os.chown(SERVER_PLIST, ACCOUNTS["alice"].uid, -1)


def listen(address: str = "127.0.0.1", port: int = 0) -> socket.socket:
    """A listening TCP socket, on a free port unless one is given; close it to end it."""
    family = socket.AF_INET6 if ":" in address else socket.AF_INET
    return socket.create_server((address, port), family=family)
