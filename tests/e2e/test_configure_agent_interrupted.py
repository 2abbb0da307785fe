"""configure-agent when something goes wrong in the middle: interrupted, two at once, jobs that do not stop
or start. The next run repairs everything."""

import os
import shutil
import signal
import subprocess

import pytest
import tool
from driver.machine import SERVER_PLIST, Machine
from driver.waiting import wait_until
from expected_commands import RESET_FILES
from tool import (
    APPLY,
    BOTH,
    DAEMON_SETTINGS,
    NEW,
    NEW_SERVER,
    SETTINGS,
    apply_to,
    checks,
    finish,
    looks,
    run,
    sequence,
)

pytestmark = pytest.mark.usefixtures("running_agent")


def wait_for(machine: Machine, line: str) -> None:
    """Waits until a command is called whose line begins like that."""

    def was_called() -> bool:
        return any(" ".join(record["argv"]).startswith(line) for record in machine.records())

    wait_until(was_called, line)


@pytest.mark.parametrize("with_option", [True, False])
def test_an_interrupted_reset_is_finished_by_the_next_run_even_without_the_option(
    machine: Machine, with_option: bool
) -> None:
    machine.add_fault("SystemAgentDaemon", times=1, signal=signal.SIGSTOP)
    arguments = ("--reset",) if with_option else ()
    process = tool.start(*apply_to(NEW_SERVER, "--reset"))
    regeneration = tool.wait_until_stopped(machine, "SystemAgentDaemon daemon exit")
    process.kill()
    os.kill(regeneration, signal.SIGKILL)
    process.communicate()
    assert DAEMON_SETTINGS.read_text() == ""
    shown = run("show", "--json").report["before"]
    assert (shown["unfinished"], shown["server"]) == (True, NEW_SERVER)
    result = run(*apply_to(NEW_SERVER, *arguments))
    assert (result.status, result.report["before"]["unfinished"]) == (0, True)
    assert DAEMON_SETTINGS.read_text().startswith("<?xml")
    assert run("show", "--json").report["before"]["unfinished"] is False


def test_a_command_of_a_killed_run_has_ended_before_the_next_run_looks(machine: Machine) -> None:
    unload = "/bin/launchctl unload -w /Library/LaunchDaemons"
    machine.add_fault("launchctl", f"^{unload}", times=1, delay=1)
    process = tool.start(*APPLY)
    wait_for(machine, unload)
    process.kill()
    process.communicate()
    result = run(*APPLY)
    assert result.status == 0
    assert result.report["before"]["daemon"] is False
    assert machine.loaded() == BOTH


SIGNALS = [signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGTERM, signal.SIGPIPE]


@pytest.mark.parametrize("leads_a_session", [False, True], ids=["in the engine's group", "leader"])
@pytest.mark.parametrize("number", SIGNALS, ids=[number.name for number in SIGNALS])
@pytest.mark.parametrize(
    "moment", ["unload -w /Library/LaunchDaemons", "load -w /Library/LaunchAgents"]
)
def test_what_ends_other_programs_does_not_reach_a_run_that_acts(
    machine: Machine, number: signal.Signals, leads_a_session: bool, moment: str
) -> None:
    machine.add_fault("launchctl", f"^/bin/launchctl {moment}", times=1, delay=0.3)
    process = tool.start(*APPLY, start_new_session=leads_a_session)
    wait_for(machine, f"/bin/launchctl {moment}")
    if leads_a_session:
        os.killpg(process.pid, number)
    else:
        process.send_signal(number)
    result = finish(process)
    assert result.status == 0
    assert result.report["after"]["unfinished"] is False
    assert machine.loaded() == BOTH
    assert machine.journal() == [*looks(), *sequence(), *checks()]


@pytest.mark.parametrize("leads_a_session", [False, True], ids=["in the engine's group", "leader"])
def test_a_lost_connection_leaves_no_job_stopped(machine: Machine, leads_a_session: bool) -> None:
    # Every command of the sequence prints something, and nobody reads it any more.
    machine.add_fault("launchctl", "unload -w", stderr=60000, delay=0.2)
    machine.add_fault("launchctl", "load -w", stderr=60000)
    process = tool.start(*APPLY, start_new_session=leads_a_session)
    wait_for(machine, "/bin/launchctl unload -w")
    for stream in (process.stdout, process.stderr):
        assert stream is not None
        stream.close()
    process.send_signal(signal.SIGHUP)
    assert process.wait(timeout=30) == 0
    assert machine.loaded() == BOTH
    assert SERVER_PLIST.read_bytes() == NEW


def test_with_every_stream_closed_it_still_applies(machine: Machine) -> None:
    line = ["/bin/bash", "-c", 'exec "$@" <&- >&- 2>&-', "-", str(tool.path()), *APPLY]
    subprocess.run(line, env=tool.ENVIRONMENT, check=True, timeout=30)
    assert machine.loaded() == BOTH
    assert SERVER_PLIST.read_bytes() == NEW


def test_messages_come_in_order_before_the_report(machine: Machine) -> None:
    machine.add_fault("launchctl", "^/bin/launchctl unload", stderr=3)
    both = tool.run(*APPLY, stderr=subprocess.STDOUT).output.splitlines()
    assert both[:5] == [
        "USER=alice uid=501",
        "eeeGlobal Agent stop successfully.",
        "eeeGlobal Daemon stops successfully.",
        "Global Daemon starts successfully.",
        "Global Agent starts successfully.",
    ]
    assert both[5].startswith('{"changed":true') and len(both) == 6


def test_a_second_run_ends_at_once(machine: Machine) -> None:
    machine.add_fault("bash", "launchctl unload", times=1, signal=signal.SIGSTOP)
    first = tool.start(*APPLY)
    shell = tool.wait_until_stopped(machine, "launchctl unload")
    ran = len(machine.records())
    second = run(*apply_to("192.0.2.99"), edition="Quorvix")
    assert (second.status, second.report["problems"]) == (75, ["another run is in progress"])
    assert len(machine.records()) == ran
    assert run("check", "--server", NEW_SERVER, "--json").report["before"]["unfinished"] is True
    os.kill(shell, signal.SIGCONT)
    assert finish(first).status == 0
    assert SERVER_PLIST.read_bytes() == NEW
    assert run(*APPLY).report["changed"] is False


OPERATIONS = {
    "unload -w /Library/LaunchAgents": (
        "the per-user job of alice did not stop, so it runs with its old settings"
    ),
    "unload -w /Library/LaunchDaemons": (
        "the daemon's job did not stop, so it runs with its old settings"
    ),
    "load -w /Library/LaunchDaemons": "the daemon's job is not loaded",
    "load -w /Library/LaunchAgents": "the per-user job of alice is not loaded",
}


@pytest.mark.parametrize("status", [0, 1])
@pytest.mark.parametrize("operation", OPERATIONS)
def test_a_job_that_does_not_stop_or_start_is_a_failure_and_the_next_run_acts_again(
    machine: Machine, operation: str, status: int
) -> None:
    machine.add_fault("launchctl", f"^/bin/launchctl {operation}", times=1, exit=status)
    failed = run(*APPLY)
    assert failed.status == 1
    assert failed.report["problems"] == [OPERATIONS[operation]]
    assert failed.report["after"]["unfinished"] is True
    assert run("check", "--server", NEW_SERVER, "--json").status == 1
    ran = len(machine.records())
    repaired = run(*APPLY)
    assert (repaired.status, repaired.report["changed"]) == (0, True)
    assert len(machine.records()) - ran > len(looks())
    assert machine.loaded() == BOTH
    assert run(*APPLY).report["changed"] is False


@pytest.mark.parametrize(
    ("program", "part", "problem"),
    [
        ("rm", RESET_FILES[1], f"{SETTINGS / RESET_FILES[1]} was not deleted"),
        ("SystemAgentDaemon", "", f"{DAEMON_SETTINGS} was not regenerated"),
    ],
)
def test_a_reset_that_did_not_work_is_a_failure_and_the_next_run_repeats_it(
    machine: Machine, program: str, part: str, problem: str
) -> None:
    machine.add_fault(program, part, times=1, exit=1)
    failed = run(*APPLY, "--reset")
    assert (failed.status, failed.report["problems"]) == (1, [problem])
    assert run(*APPLY).status == 0
    assert [file.name for file in SETTINGS.iterdir()] == ["daemon.settings.xml"]
    assert DAEMON_SETTINGS.read_text() != ""


def test_a_lock_folder_that_others_may_write_to_is_refused(machine: Machine) -> None:
    tool.RUN_FOLDER.mkdir()
    tool.RUN_FOLDER.chmod(0o777)
    result = run(*APPLY)
    assert result.status == 1
    assert result.report["problems"] == [
        "nothing was changed: unable to take the lock in /var/run/configure-agent: "
        "Operation not permitted"
    ]
    assert machine.journal() == []
    shutil.rmtree(tool.RUN_FOLDER)
    assert run(*APPLY).status == 0


def test_a_console_user_without_an_id_is_reported_and_left_alone(machine: Machine) -> None:
    machine.add_fault("id", exit=1)
    result = run(*APPLY)
    assert result.status == 1
    assert result.report["problems"] == [
        "the owner of the console has no user id, so that user's job cannot be reached"
    ]
    assert SERVER_PLIST.read_bytes() == NEW
    assert machine.loaded() == BOTH
    assert not any("asuser" in command.argv for command in machine.journal())
