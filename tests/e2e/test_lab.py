"""The lab itself: what it refuses, its faults, its journal and its reset. That the program's command lines
work on it is shown by every test that applies."""

import subprocess
import time
from pathlib import Path

import pytest
from driver.commands import run as run_command
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, Account, Command, Machine
from driver.paths import LAB
from expected_commands import ALICE, check_agent, check_daemon, start_daemon

BOB, CAROL = ACCOUNTS["bob"], ACCOUNTS["carol"]
ZENTAVO = EDITIONS["Zentavo"]


def run(user: str, line: str) -> subprocess.CompletedProcess[str]:
    """Runs one command line the way the program does, as an account of the lab."""
    return run_command(LAB / "login", user, "/bin/bash", "-c", line, start_new_session=True)


def line_of(commands: list[Command]) -> str:
    """The command line of the shell that runs these commands."""
    return commands[0].argv[2]


def as_root(command: str, admin: Account = ALICE) -> str:
    """A command behind an administrator's password."""
    return line_of(check_daemon(admin.name, admin)).split("/bin/launchctl")[0] + command


def in_session(command: str) -> str:
    """A command in alice's session."""
    return line_of(check_agent("alice", "alice", 501)).split("/bin/launchctl list")[0] + command


@pytest.mark.parametrize(
    ("runner", "admin"),
    [
        ("alice", Account("alice", 501, "wrong")),
        ("alice", Account("alice", 501, "")),
        ("alice", BOB),
        ("carol", CAROL),
        ("carol", ALICE),
    ],
)
def test_sudo_refuses_wrong_passwords_and_ordinary_users_without_a_pause(
    machine: Machine, runner: str, admin: Account
) -> None:
    start = time.monotonic()
    assert run(runner, line_of(start_daemon(runner, admin))).returncode == 1
    assert machine.loaded() == set()
    assert time.monotonic() - start < 1.5


def test_a_password_is_asked_for_each_time(machine: Machine) -> None:
    assert run("alice", as_root("/bin/echo first")).returncode == 0
    assert run("alice", "/usr/bin/sudo -n /bin/echo second").returncode == 1


def test_an_ordinary_user_neither_loads_nor_sees_the_daemon_job(machine: Machine) -> None:
    _, *_, (_, load) = start_daemon("alice", ALICE)
    refused = run("alice", " ".join(load))
    assert (refused.returncode, machine.loaded()) == (1, set())
    machine.load(DAEMON)
    listing = "/bin/launchctl list com.quorvix.SystemAgentDaemon"
    assert run("alice", listing).returncode == 113
    assert '"Label" = "com.quorvix.SystemAgentDaemon";' in run("alice", as_root(listing)).stdout


def test_the_agent_job_belongs_to_the_user_who_loads_it(machine: Machine) -> None:
    machine.load(AGENT)
    assert run("bob", "/bin/launchctl list com.quorvix.SystemAgentUX").returncode == 113
    assert "com.quorvix.SystemAgentUX" in run("alice", "/bin/launchctl list").stdout


def test_only_root_reaches_the_session_of_another_user(machine: Machine) -> None:
    machine.load(AGENT)
    listing = in_session("/bin/launchctl list com.quorvix.SystemAgentUX")
    refused = run("bob", listing)
    assert refused.returncode == 1
    assert "501" in refused.stderr
    assert [command.argv[0] for command in machine.journal()] == ["/bin/bash", "/bin/launchctl"]
    assert run("bob", as_root(listing, BOB)).returncode == 0


@pytest.mark.parametrize(
    ("line", "status"),
    [
        ("unload -w /Library/LaunchAgents/com.quorvix.SystemAgentUX.plist", 0),
        ("load" + 2 * " /Library/LaunchAgents/com.quorvix.SystemAgentUX.plist", 0),
        ("load -w /Library/LaunchAgents/missing.plist", 1),
        ("load -w /dev/null", 1),
        ('asuser  /usr/bin/sudo -u "" /bin/echo', 1),
        ("kickstart", 1),
    ],
)
def test_launchctl_says_on_its_error_stream_what_it_cannot_do(
    machine: Machine, line: str, status: int
) -> None:
    result = run("alice", f"/bin/launchctl {line}")
    assert result.returncode == status
    assert result.stderr.count("\n") == 1


def test_programs_of_root_share_no_settings_with_those_outside(machine: Machine) -> None:
    assert Path("~root/GNUstep").expanduser().is_mount()


def test_ordinary_users_see_no_profiles_of_the_computer(machine: Machine) -> None:
    machine.install_profiles(ZENTAVO.profile)
    assert ZENTAVO.profile not in run("alice", "/usr/bin/profiles list").stdout


def test_fault_rules_fail_end_delay_and_disturb_the_commands_they_name(machine: Machine) -> None:
    machine.add_fault("ping", exit=7)
    machine.add_fault("nc", "-vz", times=2, signal=9)
    machine.add_fault("id", "carol", stderr=60000, delay=0.3)
    assert run("alice", "/sbin/ping -c 1 127.0.0.1").returncode == 7
    assert run("alice", "/usr/bin/nc -vz 127.0.0.1 1; exit").returncode == 137
    assert run("alice", "/usr/bin/nc -h; exit").returncode != 137
    assert run("alice", "/usr/bin/nc -vz 127.0.0.1 1; exit").returncode == 137
    assert run("alice", "/usr/bin/nc -vz 127.0.0.1 1; exit").returncode == 1
    assert run("alice", "id -u alice").stderr == ""
    start = time.monotonic()
    result = run("alice", "id -u carol")
    assert (result.stdout, len(result.stderr)) == ("503\n", 60000)
    assert time.monotonic() - start > 0.3


def test_a_fault_rule_may_be_for_the_second_call_alone(machine: Machine) -> None:
    machine.add_fault("id", times=-2, exit=7)
    assert [run("alice", "id -u; exit $?").returncode for _ in range(4)] == [0, 7, 0, 0]


def test_a_fault_rule_may_print_any_bytes(machine: Machine) -> None:
    machine.add_fault("id", prints=b"a\xff\n")
    command = ["login", "alice", "/usr/bin/id", "-u"]
    result = subprocess.run(command, executable=LAB / "login", capture_output=True, check=True)
    assert (result.stdout, result.stderr) == (b"501\n", b"a\xff\n")


def test_the_journal_keeps_arguments_byte_for_byte_and_whole_lines_from_many_writers(
    machine: Machine,
) -> None:
    odd = "a\"b\\c\nd\té \x01"
    subprocess.run([LAB / "login", "alice", "/bin/echo", odd, b"\xff"], check=True)
    assert machine.journal() == [Command("alice", ("/bin/echo", odd, "\udcff"))]
    machine.reset()
    huge = "x" * 100000
    for_all = 'for i in {1..40}; do /bin/echo $i "$0" > /dev/null & done; wait'
    subprocess.run([LAB / "login", "alice", "/bin/bash", "-c", for_all, huge], check=True)
    calls = [command.argv for command in machine.journal()]
    assert calls[0] == ("/bin/bash", "-c", for_all, huge)
    assert sorted(calls[1:]) == sorted(("/bin/echo", str(i), huge) for i in range(1, 41))


def test_housekeeping_by_root_is_not_in_the_journal(machine: Machine) -> None:
    subprocess.run(["/bin/bash", "-c", "/bin/echo; id; stat /"], check=True, capture_output=True)
    assert machine.journal() == []


def test_reset_brings_the_freshly_installed_state_back(machine: Machine) -> None:
    machine.load(DAEMON, AGENT)
    machine.install_profiles("com.example.other")
    machine.restrict_asuser()
    machine.add_fault("id", exit=1)
    machine.write_server_plist("old")
    run("alice", "id")
    machine.reset()
    assert machine.loaded() == set()
    assert machine.journal() == []
    assert run("alice", in_session("/usr/bin/id -u")).stdout == "501\n"
    assert run("alice", "ls /Library/Preferences/ZentavoAgent").stdout == ""
    assert "com.example" not in run("alice", as_root("/usr/bin/profiles list")).stdout
