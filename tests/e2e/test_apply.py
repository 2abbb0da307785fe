"""Apply, from the login to the end of the program, on a machine in every state. All ways in which a command
or the write can fail are in test_faults.py."""

import re
import subprocess
from collections.abc import Callable
from itertools import product
from typing import Any

import pytest
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, PREFERENCES, SERVER_PLIST, Machine
from driver.program import Program
from expected_commands import (
    ALICE,
    FAILED,
    LOGIN,
    RESET_FILES,
    STOPS,
    WRITE_ERROR,
    apply_by_alice,
    check_agent,
    check_daemon,
    console_lookup,
    profile_check,
    said,
    server_plist,
    start_agent,
    start_daemon,
    stop_agent,
    stop_daemon,
)

Start = Callable[..., Program]
OLD = server_plist("fr", "192.0.2.1", "4000", True)
NEW = server_plist("fr", "192.0.2.10", "4000", False)


def apply_once(start: Start, reset: bool = False, **options: Any) -> Program:
    """Starts the program, changes the server, applies and waits for the end."""
    program = start(**options)
    admin = ACCOUNTS[options.get("user", "alice")]
    window = program.log_in(admin.name, admin.password)
    if reset:
        window.click("reset_settings")
    window.fill("servername", "192.0.2.10")
    window.click("Apply_button")
    assert program.wait() == 0
    assert [file.name for file in PREFERENCES.iterdir()] in ([], ["server.plist"])
    return program


@pytest.fixture(autouse=True)
def stored_settings(machine: Machine) -> None:
    machine.write_server_plist(OLD)


@pytest.mark.parametrize(
    ("agent", "daemon", "reset", "arguments"),
    product([False, True], [False, True], [False, True], [(), ("alice", "501")]),
    ids=lambda value: str(len(value)) + " arguments" if isinstance(value, tuple) else None,
)
def test_apply_stops_what_runs_writes_the_settings_and_starts_everything(
    machine: Machine,
    start: Start,
    agent: bool,
    daemon: bool,
    reset: bool,
    arguments: tuple[str, ...],
) -> None:
    machine.load(*([AGENT] if agent else []), *([DAEMON] if daemon else []))
    settings = EDITIONS["Zentavo"].settings
    installed = {file.name: file.read_text() for file in settings.iterdir()}
    program = apply_once(start, reset, arguments=arguments)
    stops = [stop for stop, loaded in zip(STOPS, (agent, daemon)) if loaded]
    assert machine.journal() == LOGIN + apply_by_alice(lookup=not arguments, stops=stops, reset=reset)
    assert program.output.splitlines() == [
        "USER=alice uid=501",
        *said(*stops, start_daemon, start_agent),
    ]
    assert SERVER_PLIST.read_bytes() == NEW
    assert SERVER_PLIST.stat().st_mode & 0o7777 == 0o644
    assert SERVER_PLIST.stat().st_uid == ALICE.uid
    assert machine.loaded() == {AGENT, DAEMON}
    left = {file.name: file.read_text() for file in settings.iterdir()}
    if reset:
        assert left.keys() == installed.keys() - set(RESET_FILES)
        assert left["daemon.settings.xml"] != installed["daemon.settings.xml"]
    else:
        assert left == installed


@pytest.mark.parametrize("edition", EDITIONS)
def test_a_reset_touches_the_settings_of_its_own_edition_only(
    machine: Machine, start: Start, edition: str
) -> None:
    apply_once(start, reset=True, edition=edition)
    login = profile_check("alice", ALICE, EDITIONS[edition])
    apply = apply_by_alice(EDITIONS[edition], stops=(), reset=True)
    assert machine.journal() == login + apply
    for oem, row in EDITIONS.items():
        assert len(list(row.settings.iterdir())) == (1 if oem == edition else 4)


@pytest.mark.parametrize(
    ("user", "console", "is_told", "is_restricted"),
    [("bob", "alice", False, False), ("alice", "bob", True, False), ("alice", "alice", False, True)],
    ids=["alice is at the console", "bob is said to be there", "asuser needs root"],
)
def test_a_session_that_asuser_refuses_keeps_its_job_and_the_start_is_reported(
    machine: Machine, start: Start, user: str, console: str, is_told: bool, is_restricted: bool
) -> None:
    admin, session = ACCOUNTS[user], (user, console, ACCOUNTS[console].uid)
    machine.load(AGENT, DAEMON)
    if is_restricted:
        machine.restrict_asuser()
    program = apply_once(start, user=user, arguments=(console, str(session[2])) if is_told else ())
    assert machine.journal() == [
        *profile_check(user, admin, EDITIONS["Zentavo"]),
        *([] if is_told else console_lookup(user, ACCOUNTS[console])),
        *check_agent(*session)[:2],
        *check_daemon(user, admin),
        *stop_daemon(user, admin),
        *check_daemon(user, admin),
        *start_daemon(user, admin),
        *check_agent(*session)[:2],
        *start_agent(*session)[:2],
    ]
    assert program.output.splitlines() == [
        f"USER={console} uid={session[2]}",
        *said(stop_daemon, start_daemon),
        FAILED[start_agent],
    ]
    # The check is silent; the start is not.
    assert program.errors.count("switch to") == 1
    assert machine.loaded() == {AGENT, DAEMON}
    assert SERVER_PLIST.read_bytes() == NEW


def test_a_read_only_folder_keeps_the_old_settings_and_the_jobs_are_restarted(
    machine: Machine, start: Start
) -> None:
    machine.load(AGENT, DAEMON)
    PREFERENCES.chmod(0o555)
    program = apply_once(start)
    assert re.findall(WRITE_ERROR, program.errors) == ["Permission denied"]
    assert SERVER_PLIST.read_bytes() == OLD
    assert machine.journal() == LOGIN + apply_by_alice()
    assert machine.loaded() == {AGENT, DAEMON}


def change_password(name: str, password: str) -> None:
    subprocess.run(["chpasswd"], input=f"{name}:{password}", text=True, check=True)


def test_a_password_that_changed_after_the_login_leaves_the_daemon_alone(
    machine: Machine, start: Start
) -> None:
    machine.load(AGENT, DAEMON)
    program = start()
    window = program.log_in()
    logged_in = len(machine.journal())
    change_password("alice", "changed")
    try:
        window.click("Apply_button")
        assert program.wait() == 0
    finally:
        change_password("alice", ALICE.password)
    assert program.output.splitlines() == [
        "USER=alice uid=501",
        *said(stop_agent),
        FAILED[start_daemon],
        *said(start_agent),
    ]
    assert {command.user for command in machine.journal()[logged_in:]} == {"alice"}
    assert machine.loaded() == {AGENT, DAEMON}
    assert SERVER_PLIST.read_bytes() == server_plist("fr", "192.0.2.1", "4000", False)
