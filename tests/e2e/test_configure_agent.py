"""configure-agent: what it reports, which commands it runs, and what it leaves behind."""

import os
import plistlib
import re
import shutil
import socket
import subprocess
import threading
from collections.abc import Callable, Iterator
from itertools import product
from pathlib import Path

import pytest
import tool
from driver.editions import EDITIONS
from driver.machine import AGENT, DAEMON, PREFERENCES, SERVER_PLIST, Machine
from driver.paths import LAB, REPOSITORY
from driver.waiting import wait_until
from expected_commands import (
    DAEMON_FILE,
    RESET_FILES,
    server_plist,
    start_agent,
    start_daemon,
    stop_agent,
    stop_daemon,
)
from status_messages import said
from tool import APPLY, NEW_SERVER, checks, looks, run, sequence

OLD = server_plist("fr", "192.0.2.1", "4000", False)
NEW = server_plist("fr", NEW_SERVER, "4000", False)
SETTINGS = EDITIONS["Zentavo"].settings
DAEMON_EXECUTABLE = f"{SETTINGS.parent}/SystemAgentDaemon"
AS_REQUESTED: dict[str, object] = {
    "server": NEW_SERVER,
    "port": 4000,
    "language": "fr",
    "profile": False,
    "daemon": True,
    "agent": True,
    "console": "alice",
    "unfinished": False,
}
WANTED: dict[str, object] = {
    name: AS_REQUESTED[name] for name in ("server", "port", "language", "profile")
}


@pytest.fixture(autouse=True)
def running_agent(machine: Machine) -> None:
    """Both jobs are loaded, with settings that differ from the requested ones."""
    tool.forget_runs()
    machine.write_server_plist(OLD)
    machine.load(AGENT, DAEMON)


@pytest.fixture
def nobody_at_console() -> Iterator[None]:
    console = Path("/dev/console")
    owner = console.stat().st_uid
    os.chown(console, 0, -1)
    yield
    os.chown(console, owner, -1)


@pytest.mark.parametrize(("agent", "daemon", "reset"), product([False, True], repeat=3))
def test_apply_runs_the_defined_commands_between_two_looks(
    machine: Machine, agent: bool, daemon: bool, reset: bool
) -> None:
    machine.reset()
    machine.write_server_plist(OLD)
    machine.load(*([AGENT] if agent else []), *([DAEMON] if daemon else []))
    result = run(*APPLY, *(["--reset"] if reset else []))
    assert result.status == 0
    stops: tool.Operations = (*([stop_agent] if agent else []), *([stop_daemon] if daemon else []))
    assert machine.journal() == [*looks(), *sequence(stops=stops, reset=reset), *checks()]
    assert result.report == {
        "changed": True,
        "before": AS_REQUESTED | {"server": "192.0.2.1", "daemon": daemon, "agent": agent},
        "after": AS_REQUESTED,
        "wanted": WANTED,
        "problems": [],
    }
    assert result.errors.splitlines() == [
        "USER=alice uid=501",
        *said(*stops, start_daemon, start_agent),
    ]
    assert SERVER_PLIST.read_bytes() == NEW
    assert machine.loaded() == {AGENT, DAEMON}


@pytest.mark.parametrize("edition", EDITIONS)
def test_each_edition_has_its_own_tool(machine: Machine, edition: str) -> None:
    row = EDITIONS[edition]
    machine.install_profiles(row.profile)
    language = row.languages[-1]
    arguments = ("--port", "6001", "--language", language, "--reset")
    result = run(*APPLY, *arguments, edition=edition)
    assert result.status == 0
    assert SERVER_PLIST.read_bytes() == server_plist(language, NEW_SERVER, "6001", True)
    assert machine.journal() == [
        *looks(edition=edition),
        *sequence(edition=edition, reset=True),
        *checks(),
    ]
    assert [file.name for file in row.settings.iterdir()] == ["daemon.settings.xml"]
    project = (REPOSITORY / "CMakeLists.txt").read_text().split("project(", 1)[1]
    version = re.findall(r"VERSION ([\d.]+)", project)[0]
    shown = run("--version", edition=edition)
    assert (shown.status, shown.output) == (0, f"configure-agent {version} ({edition})\n")


@pytest.mark.parametrize("edition", EDITIONS)
def test_the_tool_links_no_windows(edition: str) -> None:
    command = ["ldd", str(tool.path(edition))]
    libraries = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    assert "libgnustep-base" in libraries
    assert "libgnustep-gui" not in libraries
    assert "libX11" not in libraries


def test_apply_does_nothing_when_everything_is_as_requested_already(machine: Machine) -> None:
    assert run(*APPLY).status == 0
    written = SERVER_PLIST.stat().st_mtime_ns
    ran = len(machine.journal())
    result = run(*APPLY)
    assert result.status == 0
    assert result.report == {
        "changed": False, "before": AS_REQUESTED, "after": AS_REQUESTED, "wanted": WANTED, "problems": []
    }
    assert machine.journal()[ran:] == looks()
    assert SERVER_PLIST.stat().st_mtime_ns == written
    assert result.errors == ""


@pytest.mark.parametrize("form", [plistlib.FMT_XML, plistlib.FMT_BINARY], ids=["XML", "binary"])
def test_a_file_that_the_agent_has_rewritten_with_equal_values_counts_as_unchanged(
    machine: Machine, form: plistlib.PlistFormat
) -> None:
    values = WANTED | {"written by": "the agent"}
    machine.write_server_plist(plistlib.dumps(values, fmt=form))
    result = run(*APPLY)
    assert (result.status, result.report["changed"]) == (0, False)
    assert machine.journal() == looks()


@pytest.mark.parametrize(
    ("name", "value"), [("port", "4000"), ("server", "192.0.2.1"), ("language", "en"),
                        ("profile", True), ("profile", 0), ("port", 4000.0)],
)
def test_a_stored_value_that_differs_or_has_another_type_is_replaced(
    machine: Machine, name: str, value: object
) -> None:
    machine.write_server_plist(plistlib.dumps(WANTED | {name: value}))
    result = run(*APPLY, "--port", "4000", "--language", "fr")
    assert (result.status, result.report["changed"]) == (0, True)
    assert SERVER_PLIST.read_bytes() == NEW


def test_force_applies_although_everything_is_as_requested(machine: Machine) -> None:
    machine.write_server_plist(NEW)
    result = run(*APPLY, "--force")
    assert (result.status, result.report["changed"]) == (0, True)
    assert machine.journal() == [*looks(), *sequence(), *checks()]


def test_a_reset_happens_only_when_the_run_acts(machine: Machine) -> None:
    machine.write_server_plist(NEW)
    files = sorted(file.name for file in SETTINGS.iterdir())
    assert run(*APPLY, "--reset").report["changed"] is False
    assert sorted(file.name for file in SETTINGS.iterdir()) == files
    assert run(*APPLY, "--reset", "--force").status == 0
    assert [file.name for file in SETTINGS.iterdir()] == ["daemon.settings.xml"]


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
    assert machine.loaded() == {AGENT, DAEMON}
    present = AS_REQUESTED | {"server": "192.0.2.1"}
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
        assert result.report["problems"] == [
            f"the stored server is 192.0.2.1 (requested: {NEW_SERVER})"
        ]


def test_check_agrees_when_everything_is_as_requested(machine: Machine) -> None:
    machine.write_server_plist(NEW)
    result = run("check", "--server", NEW_SERVER, "--json")
    assert (result.status, result.report["changed"], result.report["problems"]) == (0, False, [])


def test_people_get_a_table(machine: Machine) -> None:
    result = run("check", "--server", NEW_SERVER)
    assert result.status == 1
    assert result.output.splitlines()[:3] == [
        "changed     yes",
        f"server      192.0.2.1 -> {NEW_SERVER}",
        "port        4000",
    ]


def test_without_a_user_at_the_console_the_per_user_job_is_left_alone(
    machine: Machine, nobody_at_console: None
) -> None:
    result = run(*APPLY)
    assert result.status == 0
    assert machine.journal() == [
        *looks(console=False), *sequence(console=False), *checks(console=False)
    ]
    assert result.report["after"] == AS_REQUESTED | {"agent": None, "console": None}
    assert machine.loaded() == {AGENT, DAEMON}
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
        ("apply", "--server"),
        ("apply", "--server", ""),
        ("apply", "--server", "-mdm"),
        ("apply", "--server", 'a"; id; "'),
        ("apply", "--server", "$(id)"),
        ("apply", "--server", "`id`"),
        ("apply", "--server", "a b"),
        ("apply", "--server", "a\nb"),
        ("apply", "--server", b"\xff"),
        ("apply", "--server", "x" * 100000),
        ("apply", "--server", "mdm", "--port", "65536"),
        ("apply", "--server", "mdm", "--port", "1; id"),
        ("apply", "--server", "mdm", "--language", "de"),
        ("apply", "--server", "mdm", "--language", "../en"),
        ("apply", "--server", "mdm", "--password", "x"),
        ("apply", "--server", "mdm", "alice", "501"),
        ("check", "--server", "mdm", "--force"),
        ("show", "--server", "mdm"),
        ("remove",),
    ],
    ids=lambda arguments: str(arguments[1:])[:40],
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
    command = [str(LAB / "login"), "alice", str(tool.path()), *verb]
    result = subprocess.run(command, capture_output=True, text=True, check=False, timeout=30)
    assert (result.returncode, result.stdout) == (77, "")
    assert result.stderr == "configure-agent: must be run as root\n"
    assert machine.journal() == []


def test_an_administrators_sudo_makes_it_roots(machine: Machine) -> None:
    command = [str(LAB / "login"), "alice", "/usr/bin/sudo", "-S", str(tool.path()), *APPLY]
    result = subprocess.run(
        command, input="alice-pw\n", capture_output=True, text=True, check=False, timeout=30
    )
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


def owner_and_mode(file: Path) -> tuple[int, int, int]:
    status = file.stat()
    return status.st_uid, status.st_gid, status.st_mode & 0o7777


@pytest.mark.parametrize("kept", [(501, 80, 0o664), (0, 0, 0o640), (502, 20, 0o600)])
def test_a_reset_leaves_the_daemons_settings_to_their_owner(
    machine: Machine, kept: tuple[int, int, int]
) -> None:
    file = SETTINGS / "daemon.settings.xml"
    os.chown(file, kept[0], kept[1])
    file.chmod(kept[2])
    assert run(*APPLY, "--reset").status == 0
    assert owner_and_mode(file) == kept
    assert "default" in file.read_text()


def test_a_reset_gives_missing_settings_to_the_owner_of_their_folder(machine: Machine) -> None:
    file = SETTINGS / "daemon.settings.xml"
    file.unlink()
    os.chown(SETTINGS, 502, 80)
    assert run(*APPLY, "--reset").status == 0
    assert owner_and_mode(file) == (502, 80, 0o664)
    assert not any((SETTINGS / name).exists() for name in RESET_FILES)


def test_commands_read_from_the_null_device(machine: Machine) -> None:
    machine.add_fault("launchctl", "^/bin/launchctl asuser", times=1, delay=0.5)
    process = tool.start(*APPLY, stdin=subprocess.PIPE)

    def command() -> int | None:
        records = [record for record in machine.records() if "asuser" in record["argv"]]
        return records[0]["pid"] if records else None

    pid = wait_until(command, "a command in the console user's session")
    assert os.readlink(f"/proc/{pid}/fd/0") == "/dev/null"
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

    receiver = threading.Thread(target=receive)
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


def test_every_act_is_one_line_in_the_system_log(
    machine: Machine, system_log: Callable[[], list[str]]
) -> None:
    for arguments in (APPLY, APPLY, ("check", "--server", "mdm"), ("show",), ("apply",)):
        run(*arguments)
    machine.add_fault("launchctl", "^/bin/launchctl load -w /Library/LaunchDaemons", exit=1)
    run("apply", "--server", "::1", "--port", "1", "--language", "en", "--reset")
    lines = [line.split("]: ", 1)[1] for line in system_log()]
    assert lines == [
        "applied server=192.0.2.10 port=4000 language=fr profile=no reset=no: effective",
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


def test_a_folder_that_keeps_its_settings_is_named_and_the_jobs_run_again(machine: Machine) -> None:
    subprocess.run(["mount", "--bind", PREFERENCES, PREFERENCES], check=True)
    try:
        subprocess.run(["mount", "-o", "remount,bind,ro", PREFERENCES], check=True)
        result = run(*APPLY)
    finally:
        subprocess.run(["umount", PREFERENCES], check=True)
    assert result.status == 1
    assert result.report["problems"] == [
        f"the stored server is 192.0.2.1 (requested: {NEW_SERVER})",
        "server.plist cannot be written: Read-only file system",
    ]
    assert result.report["after"]["unfinished"] is True
    assert machine.loaded() == {AGENT, DAEMON}
    assert run(*APPLY).status == 0
