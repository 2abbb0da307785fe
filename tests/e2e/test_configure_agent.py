"""configure-agent: what it reports, which commands it runs, and what it leaves behind."""

import os
import plistlib
import re
import shutil
import signal
import socket
import subprocess
import threading
from collections.abc import Callable, Iterator
from itertools import product
from pathlib import Path

import pytest
import tool
from driver.commands import run as run_command
from driver.editions import EDITIONS
from driver.machine import AGENT, DAEMON, PREFERENCES, SERVER_PLIST, Machine
from driver.paths import LAB, REPOSITORY
from expected_commands import (
    DAEMON_FILE,
    STARTS,
    Operation,
    said,
    server_plist,
    stop_agent,
    stop_daemon,
)
from tool import (
    APPLY,
    BOTH,
    DAEMON_SETTINGS,
    NEW,
    NEW_SERVER,
    OLD,
    OLD_SERVER,
    SETTINGS,
    checks,
    looks,
    run,
    sequence,
)

DAEMON_EXECUTABLE = f"{SETTINGS.parent}/SystemAgentDaemon"
WANTED: dict[str, object] = {
    "server": NEW_SERVER,
    "port": 4000,
    "language": "fr",
    "profile": False,
}
AS_REQUESTED = WANTED | {"daemon": True, "agent": True, "console": "alice", "unfinished": False}

pytestmark = pytest.mark.usefixtures("running_agent")


@pytest.fixture
def nobody_at_console() -> Iterator[None]:
    console = Path("/dev/console")
    owner = console.stat().st_uid
    os.chown(console, 0, -1)
    yield
    os.chown(console, owner, -1)


@pytest.mark.parametrize(("agent", "daemon", "reset"), product([False, True], repeat=3))
def test_apply_runs_the_defined_commands_between_two_observations(
    machine: Machine, agent: bool, daemon: bool, reset: bool
) -> None:
    tool.prepare(machine, *([AGENT] if agent else []), *([DAEMON] if daemon else []))
    result = run(*APPLY, *(["--reset"] if reset else []))
    assert result.status == 0
    stops: list[Operation] = [*([stop_agent] if agent else []), *([stop_daemon] if daemon else [])]
    assert machine.journal() == [*looks(), *sequence(stops=stops, reset=reset), *checks()]
    assert result.report == {
        "changed": True,
        "before": AS_REQUESTED | {"server": OLD_SERVER, "daemon": daemon, "agent": agent},
        "after": AS_REQUESTED,
        "wanted": WANTED,
        "problems": [],
    }
    assert result.errors.splitlines() == ["USER=alice uid=501", *said(*stops, *STARTS)]
    assert SERVER_PLIST.read_bytes() == NEW
    assert machine.loaded() == BOTH


@pytest.mark.parametrize("edition", EDITIONS)
def test_each_edition_has_its_own_tool(machine: Machine, edition: str) -> None:
    row = EDITIONS[edition]
    machine.install_profiles(row.profile)
    language = row.languages[-1]
    arguments = ("--port", "6001", "--language", language, "--reset")
    result = run(*APPLY, *arguments, edition=edition)
    assert result.status == 0
    assert SERVER_PLIST.read_bytes() == server_plist(language, NEW_SERVER, "6001", True)
    apply = sequence(edition=edition, reset=True)
    assert machine.journal() == [*looks(edition=edition), *apply, *checks()]
    assert [file.name for file in row.settings.iterdir()] == ["daemon.settings.xml"]
    project = (REPOSITORY / "CMakeLists.txt").read_text().split("project(", 1)[1]
    version = re.findall(r"VERSION ([\d.]+)", project)[0]
    shown = run("--version", edition=edition)
    assert (shown.status, shown.output) == (0, f"configure-agent {version} ({edition})\n")


def test_the_tool_links_no_windows() -> None:
    libraries = run_command("ldd", tool.path()).stdout
    assert "libgnustep-base" in libraries
    assert "libgnustep-gui" not in libraries
    assert "libX11" not in libraries


REWRITTEN = WANTED | {"written by": "the agent"}


@pytest.mark.parametrize(
    "content",
    [NEW, plistlib.dumps(REWRITTEN), plistlib.dumps(REWRITTEN, fmt=plistlib.FMT_BINARY)],
    ids=["as Apply writes it", "rewritten by the agent", "rewritten in binary"],
)
def test_apply_does_nothing_where_the_stored_values_are_as_requested(
    machine: Machine, content: bytes
) -> None:
    machine.write_server_plist(content)
    written = SERVER_PLIST.stat().st_mtime_ns
    result = run(*APPLY, "--reset")
    assert result.status == 0
    report = result.report
    assert (report["changed"], report["wanted"], report["problems"]) == (False, WANTED, [])
    assert report["before"] == report["after"] == AS_REQUESTED
    assert machine.journal() == looks()
    assert SERVER_PLIST.stat().st_mtime_ns == written
    assert result.errors == ""


def test_force_applies_although_everything_is_as_requested(machine: Machine) -> None:
    machine.write_server_plist(NEW)
    result = run(*APPLY, "--force")
    assert (result.status, result.report["changed"]) == (0, True)
    assert machine.journal() == [*looks(), *sequence(), *checks()]


def test_a_stored_value_of_another_type_is_replaced(machine: Machine) -> None:
    machine.write_server_plist(plistlib.dumps(WANTED | {"port": "4000"}))
    result = run(*APPLY, "--port", "4000")
    assert (result.status, result.report["changed"]) == (0, True)
    assert SERVER_PLIST.read_bytes() == NEW


def machine_files() -> dict[Path, tuple[int, int]]:
    """Everything that a dry run could leave behind. A checkout may itself be in /tmp, and the coverage
    counters in its build folder change with every run."""
    folders = ("/Library", "/Applications/Zentavo", "/run", "/tmp", "/var/tmp", "/etc")
    paths = [path for folder in folders for path in Path(folder).rglob("*")]
    return {
        path: (path.lstat().st_mode, path.lstat().st_mtime_ns)
        for path in paths
        if not path.is_relative_to(REPOSITORY)
    }


@pytest.mark.parametrize("verb", ["check", "show"])
def test_a_dry_run_changes_nothing(machine: Machine, verb: str, tmp_path: Path) -> None:
    before = machine_files()
    home = {**tool.ENVIRONMENT, "HOME": str(tmp_path)}
    result = run(verb, *(["--server", NEW_SERVER] if verb == "check" else []), "--json", env=home)
    assert machine_files() == before
    assert machine.loaded() == BOTH
    present = AS_REQUESTED | {"server": OLD_SERVER}
    assert result.report["before"] == present
    if verb == "show":
        assert machine.journal() == looks()[len(looks()) - len(checks()) - 4 :]
        assert (result.status, result.report["after"]) == (0, present)
        assert result.report["wanted"] is None
    else:
        assert machine.journal() == looks()
        assert (result.status, result.report["after"]) == (1, AS_REQUESTED)
        assert result.report["wanted"] == WANTED
        assert result.report["changed"] is True
        problem = f"the stored server is {OLD_SERVER} (requested: {NEW_SERVER})"
        assert result.report["problems"] == [problem]


def test_check_agrees_where_everything_is_as_requested_and_shows_people_a_table(
    machine: Machine,
) -> None:
    machine.write_server_plist(NEW)
    result = run("check", "--server", NEW_SERVER)
    assert result.status == 0
    assert result.output.startswith(f"changed     no\nserver      {NEW_SERVER}\n")


def test_without_a_user_at_the_console_the_per_user_job_is_left_alone(
    machine: Machine, nobody_at_console: None
) -> None:
    result = run(*APPLY)
    assert result.status == 0
    assert machine.journal() == [
        *looks(console=False), *sequence(console=False), *checks(console=False)
    ]
    assert result.report["after"] == AS_REQUESTED | {"agent": None, "console": None}
    assert machine.loaded() == BOTH
    assert run(*APPLY).report["changed"] is False


def test_values_that_are_not_named_are_those_of_the_settings_window(machine: Machine) -> None:
    SERVER_PLIST.unlink()
    assert run(*APPLY).report["wanted"] == WANTED | {"port": 6000, "language": "en"}
    machine.write_server_plist(server_plist("es", "192.0.2.1", "0", False))
    assert run(*APPLY).report["wanted"] == WANTED | {"port": 0, "language": "fr"}


def test_a_stored_port_that_no_port_may_be_has_to_be_named(machine: Machine) -> None:
    machine.write_server_plist(server_plist("fr", "192.0.2.1", "70000", False))
    result = run(*APPLY)
    assert result.status == 64
    assert "--port" in result.report["problems"][0]
    assert machine.journal() == []
    assert run(*APPLY, "--port", "4000").status == 0


@pytest.mark.parametrize(
    "arguments",
    [
        ("apply",),
        ("apply", "--server", "$(id)"),
        ("apply", "--server", b"\xff"),
        ("apply", "--server", "mdm", "--language", "de"),
        ("show", "--server", "mdm"),
    ],
    ids=str,
)
def test_a_bad_command_line_runs_no_command(
    machine: Machine, arguments: tuple[str | bytes, ...]
) -> None:
    result = run(*arguments, "--json")
    assert result.status == 64
    report = result.report
    assert (report["changed"], report["before"], report["wanted"]) == (False, None, None)
    assert result.errors == f"configure-agent: {report['problems'][0]}\n"
    assert machine.journal() == []
    assert SERVER_PLIST.read_bytes() == OLD
    assert run(*arguments).output == ""


@pytest.mark.parametrize(
    "verb", [("show",), ("check", "--server", "mdm"), ("apply", "--server", "mdm")]
)
def test_only_root_may_use_it(machine: Machine, verb: tuple[str, ...]) -> None:
    result = run_command(LAB / "login", "alice", tool.path(), *verb)
    assert (result.returncode, result.stdout) == (77, "")
    assert result.stderr == "configure-agent: must be run as root\n"
    assert machine.journal() == []


def test_an_administrator_runs_it_through_sudo(machine: Machine) -> None:
    command = [LAB / "login", "alice", "/usr/bin/sudo", "-S", tool.path(), *APPLY]
    result = run_command(*command, input="alice-pw\n")
    assert result.returncode == 0, result.stderr
    assert SERVER_PLIST.read_bytes() == NEW
    assert machine.journal()[-len(checks()) :] == checks()


@pytest.mark.parametrize("file", [DAEMON_EXECUTABLE, DAEMON_FILE])
@pytest.mark.parametrize("verb", ["show", "check", "apply"])
def test_without_an_agent_it_says_so_and_runs_nothing(
    machine: Machine, verb: str, file: str
) -> None:
    moved = shutil.move(file, f"{file}.moved")
    try:
        result = run(verb, *(["--server", "mdm"] if verb != "show" else []), "--json")
    finally:
        shutil.move(moved, file)
    assert result.status == 69
    assert result.report["problems"] == [f"the agent is not installed: {file} is missing"]
    assert machine.journal() == []


def test_a_reset_leaves_the_daemons_settings_to_their_owner(machine: Machine) -> None:
    os.chown(DAEMON_SETTINGS, 502, 20)
    DAEMON_SETTINGS.chmod(0o600)
    assert run(*APPLY, "--reset").status == 0
    status = DAEMON_SETTINGS.stat()
    assert (status.st_uid, status.st_gid, status.st_mode & 0o7777) == (502, 20, 0o600)
    assert "default" in DAEMON_SETTINGS.read_text()


def test_commands_read_from_the_null_device(machine: Machine) -> None:
    machine.add_fault("launchctl", "^/bin/launchctl asuser", times=1, signal=signal.SIGSTOP)
    process = tool.start(*APPLY, stdin=subprocess.PIPE)
    command = tool.wait_until_stopped(machine, "/bin/launchctl asuser")
    assert os.readlink(f"/proc/{command}/fd/0") == "/dev/null"
    os.kill(command, signal.SIGCONT)
    assert tool.finish(process).status == 0


@pytest.fixture
def system_log() -> Iterator[Callable[[], list[str]]]:
    """The lines that come to the system log; those of sudo are among them."""
    lines = []
    log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    log.bind("/dev/log")

    def receive() -> None:
        while line := log.recv(4096):
            lines.append(line.decode().rstrip("\0\n"))

    # A test that fails leaves it waiting.
    receiver = threading.Thread(target=receive, daemon=True)
    receiver.start()

    def read() -> list[str]:
        # An empty message ends the receiver, behind everything that was sent before it.
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as end:
            end.sendto(b"", "/dev/log")
        receiver.join()
        return [line for line in lines if "configure-agent[" in line]

    yield read
    log.close()
    Path("/dev/log").unlink()


def test_every_change_is_one_line_in_the_system_log(
    machine: Machine, system_log: Callable[[], list[str]]
) -> None:
    for arguments in (APPLY, APPLY, ("check", "--server", "mdm"), ("show",), ("apply",)):
        run(*arguments)
    machine.add_fault("launchctl", "^/bin/launchctl load -w /Library/LaunchDaemons", exit=1)
    run("apply", "--server", "::1", "--port", "1", "--language", "en", "--reset")
    lines = [line.split("]: ", 1)[1] for line in system_log()]
    assert lines == [
        f"applied server={NEW_SERVER} port=4000 language=fr profile=no reset=no: effective",
        "applied server=::1 port=1 language=en profile=no reset=yes: not effective",
    ]


def test_the_callers_environment_chooses_no_commands(machine: Machine, tmp_path: Path) -> None:
    for name in ("stat", "id", "grep", "startup"):
        (tmp_path / name).write_text(f"#!/bin/bash\ntouch {tmp_path}/ran\n")
        (tmp_path / name).chmod(0o755)
    environment = {
        **tool.ENVIRONMENT,
        "PATH": f"{tmp_path}:{os.environ['PATH']}",
        "BASH_ENV": str(tmp_path / "startup"),
        "ENV": str(tmp_path / "startup"),
    }
    assert run(*APPLY, env=environment).status == 0
    assert not (tmp_path / "ran").exists()
    assert machine.journal() == [*looks(), *sequence(), *checks()]


def test_a_file_that_cannot_be_written_is_named_and_the_jobs_run_again(machine: Machine) -> None:
    subprocess.run(["mount", "--bind", PREFERENCES, PREFERENCES], check=True)
    try:
        subprocess.run(["mount", "-o", "remount,bind,ro", PREFERENCES], check=True)
        result = run(*APPLY)
    finally:
        subprocess.run(["umount", PREFERENCES], check=True)
    assert result.status == 1
    assert result.report["problems"] == [
        f"the stored server is {OLD_SERVER} (requested: {NEW_SERVER})",
        "server.plist cannot be written: Read-only file system",
    ]
    assert result.report["after"]["unfinished"] is True
    assert machine.loaded() == BOTH
    assert run(*APPLY).status == 0
