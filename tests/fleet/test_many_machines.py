"""The Ansible task on twenty machines, some of which fail, and an engine that is interrupted."""

import os
import signal
import subprocess
from collections.abc import Callable
from contextlib import ExitStack

import pytest
from driver.machine import DAEMON, PREFERENCES
from driver.waiting import wait_until
from engine import Ansible, Run
from macs import ALL_JOBS, Mac, each, kill_processes, on_each

OLD, NEW = "192.0.2.10", "mdm.example.com"
UNLOAD_DAEMON = "always launchctl exit=1 ^/bin/launchctl unload -w /Library/LaunchDaemons"


@pytest.fixture(autouse=True)
def twenty(macs: list[Mac]) -> None:
    assert len(macs) == 20


def set_link(name: str, state: str) -> None:
    subprocess.run(["ip", "link", "set", name, state], check=True)


def take_down(mac: Mac, undo: ExitStack) -> None:
    set_link(mac.name, "down")
    undo.callback(set_link, mac.name, "up")


def make_preferences_read_only(mac: Mac, undo: ExitStack) -> None:
    mac.run("mount", "--bind", PREFERENCES, PREFERENCES)
    undo.callback(mac.run, "umount", PREFERENCES)
    mac.run("mount", "-o", "remount,bind,ro", PREFERENCES)


def leave_console(mac: Mac, undo: ExitStack) -> None:
    mac.run("chown", "root", "/dev/console")
    undo.callback(mac.run, "chown", "alice", "/dev/console")


def test_failures_on_some_macs_are_reported_and_the_others_are_done(
    macs: list[Mac], ansible: Ansible
) -> None:
    down, read_only, bare, stubborn, locked, unattended, *others = macs
    ansible.apply(server=OLD)
    close_connections()
    with ExitStack() as undo:
        take_down(down, undo)
        make_preferences_read_only(read_only, undo)
        undo.enter_context(bare.without_agent())
        stubborn.add_fault(UNLOAD_DAEMON)
        undo.callback(ansible.set_variables(locked.name, ansible_become_password="x").unlink)
        leave_console(unattended, undo)
        unattended.shell("rm /var/lab/launchd/user/501/*")

        run = ansible.apply(server=NEW)

        check_messages(run, down, read_only, bare, stubborn, locked)
        changed = each([unattended, *others], "changed")
        assert changed.items() <= run.statuses.items(), run.output
        for mac in others:
            assert (mac.settings()["server"], mac.loaded()) == (NEW, ALL_JOBS)
        assert (unattended.settings()["server"], unattended.loaded()) == (NEW, {DAEMON})
        assert (read_only.settings()["server"], read_only.loaded()) == (OLD, ALL_JOBS)
        assert (locked.settings()["server"], locked.loaded()) == (OLD, ALL_JOBS)
        stubborn.path("/var/lab/faults").write_text("")
    assert bare.run("find", "/Library", "-name", "com.quorvix.*") == ""
    bare.reset()

    run = ansible.apply(server=NEW)
    again = [down, read_only, bare, stubborn, locked, unattended]
    assert run.statuses == each(others, "ok") | each(again, "changed"), run.output
    assert all(mac.loaded() == ALL_JOBS for mac in macs)


def check_messages(run: Run, *macs: Mac) -> None:
    """Each of these machines is named with its own cause."""
    expected = [
        ("UNREACHABLE", "Failed to connect to the host via ssh"),
        ("FAILED", "server.plist cannot be written: Read-only file system"),
        ("FAILED", "the agent is not installed"),
        ("FAILED", "the daemon's job did not stop, so it runs with its old settings"),
        ("FAILED", "Incorrect sudo password"),
    ]
    for mac, (status, message) in zip(macs, expected, strict=True):
        outcome = run.outcomes[mac.name]
        assert outcome.status == status, run.output
        assert message in outcome.message


def close_connections() -> None:
    """Ends each ssh, also those that keep a connection open for the next run."""
    kill_processes(b"ssh\0", b"ssh: ")


def press_ctrl_c(engine: subprocess.Popen[bytes]) -> None:
    os.killpg(engine.pid, signal.SIGINT)


def kill(engine: subprocess.Popen[bytes]) -> None:
    os.killpg(engine.pid, signal.SIGKILL)
    close_connections()


def lose_connections(engine: subprocess.Popen[bytes]) -> None:
    """The network is gone, and sshd has given up waiting for it."""
    set_link("fleet", "down")
    kill_processes(b"sshd: alice")
    os.killpg(engine.pid, signal.SIGKILL)


@pytest.mark.parametrize(
    "interrupt", [press_ctrl_c, kill, lose_connections], ids=["Ctrl-C", "SIGKILL", "network"]
)
def test_an_interrupted_engine_leaves_no_job_stopped(
    macs: list[Mac], ansible: Ansible, interrupt: Callable[[subprocess.Popen[bytes]], None]
) -> None:
    ansible.apply(server=OLD)
    assert all(mac.loaded() == ALL_JOBS for mac in macs)
    # Slow enough to be interrupted in the middle on many machines.
    on_each(macs, lambda mac: mac.add_fault("always launchctl delay=0.4"))

    with ansible.start(server=NEW) as engine:
        wait_until(lambda: sum(DAEMON not in mac.loaded() for mac in macs) >= 4, "stopped jobs", 60)
        interrupt(engine)
    wait_until(lambda: not any(mac.is_busy() for mac in macs), "end of all configure-agent", 60)
    set_link("fleet", "up")

    assert {mac.name: mac.loaded() for mac in macs} == {mac.name: ALL_JOBS for mac in macs}
    assert {mac.settings()["server"] for mac in macs} <= {OLD, NEW}
    on_each(macs, lambda mac: mac.path("/var/lab/faults").write_text(""))
    run = ansible.apply(server=NEW)
    assert set(run.statuses.values()) <= {"ok", "changed"}, run.output
    assert [mac.settings()["server"] for mac in macs] == [NEW] * 20
    assert ansible.apply(server=NEW).statuses == each(macs, "ok")
