"""The lab itself: what the program's command lines do on it, without the program."""

import subprocess
import time

import pytest
from driver.editions import EDITIONS, Edition
from driver.machine import ACCOUNTS, AGENT, DAEMON, Account, Command, Job, Machine, listen
from driver.paths import LAB
from expected_commands import (
    ALICE,
    check_agent,
    check_daemon,
    console_lookup,
    ping,
    port_test,
    profile_check,
    reset_settings,
    start_agent,
    start_daemon,
    stop_agent,
    stop_daemon,
)

BOB, CAROL = ACCOUNTS["bob"], ACCOUNTS["carol"]
ZENTAVO = EDITIONS["Zentavo"]


def run(user: str, line: str, shell: str = "/bin/bash") -> subprocess.CompletedProcess[str]:
    """Runs one command line the way the program does, as an account of the lab."""
    return subprocess.run(
        [LAB / "login", user, shell, "-c", line],
        stdin=subprocess.DEVNULL,
        capture_output=True,
        text=True,
        start_new_session=True,
        timeout=30,
        check=False,
    )


def line_of(commands: list[Command]) -> str:
    """The command line of the shell that runs these commands."""
    return commands[0].argv[2]


def run_shell(commands: list[Command]) -> subprocess.CompletedProcess[str]:
    """Runs the shell that runs these commands."""
    user, (shell, _, line) = commands[0]
    return run(user, line, shell)


def as_root(command: str, admin: Account = ALICE) -> str:
    """A command behind an administrator's password."""
    return line_of(check_daemon(admin.name, admin)).split("/bin/launchctl")[0] + command


def in_session(command: str) -> str:
    """A command in alice's session."""
    return line_of(check_agent("alice", "alice", 501)).split("/bin/launchctl list")[0] + command


@pytest.mark.parametrize(
    ("commands", "before", "after"),
    [
        (check_daemon("alice", ALICE), {DAEMON}, {DAEMON}),
        (start_daemon("alice", ALICE), set(), {DAEMON}),
        (stop_daemon("alice", ALICE), {DAEMON}, set()),
        (check_agent("alice", "alice", 501), {AGENT}, {AGENT}),
        (start_agent("alice", "alice", 501), set(), {AGENT}),
        (stop_agent("alice", "alice", 501), {AGENT}, set()),
    ],
    ids=["check daemon", "start daemon", "stop daemon", "check agent", "start agent", "stop agent"],
)
def test_a_command_for_a_job_does_its_work_and_the_journal_shows_its_steps(
    machine: Machine, commands: list[Command], before: set[Job], after: set[Job]
) -> None:
    machine.load(*before)
    assert run_shell(commands).returncode == 0
    assert machine.loaded() == after
    assert machine.journal() == commands


@pytest.mark.parametrize("commands", [check_daemon("alice", ALICE), check_agent("alice", "alice", 501)])
def test_a_job_that_is_not_loaded_has_a_status_of_its_own(
    machine: Machine, commands: list[Command]
) -> None:
    assert run_shell(commands).returncode == 113


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
    assert run_shell(start_daemon(runner, admin)).returncode == 1
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


def test_asuser_may_need_root_for_ones_own_session_too(machine: Machine) -> None:
    machine.restrict_asuser()
    refused = run("alice", in_session("/bin/echo"))
    assert (refused.returncode, refused.stdout) == (1, "")
    assert "Could not switch to audit session" in refused.stderr
    assert run("alice", as_root(in_session("/bin/echo"))).returncode == 0


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


def test_the_console_belongs_to_alice(machine: Machine) -> None:
    commands = console_lookup("bob", ALICE)[:2]
    assert run_shell(commands).stdout == "alice\n"
    assert machine.journal() == commands
    assert run("bob", "stat -c %a /usr/bin").stdout == "755\n"


@pytest.mark.parametrize(
    ("user", "text"), [("alice", "501\n"), ("bob", "502\n"), ("nobody1", "\n")]
)
def test_the_user_id_of_a_name_is_looked_up(machine: Machine, user: str, text: str) -> None:
    commands = console_lookup("alice", Account(user, 0, ""))[2:]
    assert run_shell(commands).stdout == text
    assert machine.journal() == commands


@pytest.mark.parametrize("installed", [True, False])
def test_root_sees_the_installed_profiles(machine: Machine, installed: bool) -> None:
    machine.install_profiles("com.example.other", *([ZENTAVO.profile] if installed else []))
    commands = profile_check("alice", ALICE, ZENTAVO)
    result = run_shell(commands)
    assert (ZENTAVO.profile in result.stdout) == installed
    assert result.returncode == (0 if installed else 1)
    assert machine.journal() == commands


def test_ordinary_users_see_no_profiles_of_the_computer(machine: Machine) -> None:
    machine.install_profiles(ZENTAVO.profile)
    assert ZENTAVO.profile not in run("alice", "/usr/bin/profiles list").stdout


@pytest.mark.parametrize("edition", EDITIONS.values(), ids=EDITIONS.keys())
def test_daemon_exit_writes_the_settings_of_its_edition_as_the_caller(
    machine: Machine, edition: Edition
) -> None:
    settings = edition.settings / "daemon.settings.xml"
    commands = reset_settings("alice", ALICE, edition)[-2:]
    assert run_shell(commands).returncode == 0
    assert settings.read_text().startswith("<?xml")
    assert machine.journal() == commands
    settings.write_text("old")
    assert run("carol", line_of(commands)).returncode == 1
    assert settings.read_text() == "old"


def test_root_removes_a_settings_file(machine: Machine) -> None:
    commands = reset_settings("alice", ALICE, ZENTAVO)
    assert run_shell(commands).returncode == 0
    assert not (ZENTAVO.settings / "safeguarding_server.xml").exists()
    assert machine.journal() == commands[:5]


@pytest.mark.parametrize(
    ("address", "status"),
    [("127.0.0.1", 0), ("::1", 0), ("192.0.2.10", 0), ("fileserver", 0), ("192.0.2.1", 2)],
)
def test_ping_works_for_an_ordinary_user(machine: Machine, address: str, status: int) -> None:
    commands = ping("carol", address)
    assert run_shell(commands).returncode == status
    assert machine.journal() == commands


@pytest.mark.parametrize("address", ["127.0.0.1", "::1"])
def test_nc_tells_a_listening_port_from_a_closed_one(machine: Machine, address: str) -> None:
    with listen(address) as server:
        commands = port_test("carol", address, server.getsockname()[1])
        assert run_shell(commands).returncode == 0
    assert run_shell(commands).returncode == 1
    assert machine.journal() == commands + commands


def test_fault_rules_fail_end_delay_and_disturb_the_commands_they_name(machine: Machine) -> None:
    machine.add_fault("ping", exit=7)
    machine.add_fault("nc", "-vz", times=2, signal=9)
    machine.add_fault("id", "carol", delay=0.3, stderr=60000)
    start = time.monotonic()
    assert run("alice", "/sbin/ping -c 1 127.0.0.1").returncode == 7
    assert run("alice", "/usr/bin/nc -vz 127.0.0.1 1; exit").returncode == 137
    assert run("alice", "/usr/bin/nc -h; exit").returncode != 137
    assert run("alice", "/usr/bin/nc -vz 127.0.0.1 1; exit").returncode == 137
    assert run("alice", "/usr/bin/nc -vz 127.0.0.1 1; exit").returncode == 1
    assert run("alice", "id -u alice").stderr == ""
    assert time.monotonic() - start < 2
    start = time.monotonic()
    result = run("alice", "id -u carol")
    assert (result.stdout, len(result.stderr)) == ("503\n", 60000)
    assert time.monotonic() - start > 0.3


def test_a_fault_rule_may_be_for_the_second_call_alone(machine: Machine) -> None:
    machine.add_fault("id", times=-2, exit=7)
    assert [run("alice", "id -u; exit $?").returncode for _ in range(4)] == [0, 7, 0, 0]


def test_a_fault_rule_for_a_command_as_root_applies_behind_sudo(machine: Machine) -> None:
    machine.load(DAEMON)
    machine.add_fault("launchctl", "unload", exit=5)
    assert run_shell(stop_daemon("alice", ALICE)).returncode == 5
    assert machine.loaded() == {DAEMON}


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


def test_housekeeping_by_root_makes_no_noise(machine: Machine) -> None:
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


# Just enough of PAM to ask it one question: is this the password of this account?
PAM_QUESTION = """
import ctypes, sys
pam, libc = ctypes.CDLL("libpam.so.0"), ctypes.CDLL(None)
libc.strdup.restype = libc.calloc.restype = ctypes.c_void_p
class Response(ctypes.Structure):
    _fields_ = [("text", ctypes.c_void_p), ("code", ctypes.c_int)]
talk = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_int, ctypes.c_void_p,
                        ctypes.POINTER(ctypes.c_void_p), ctypes.c_void_p)
def answer(count, messages, responses, data):
    responses[0] = libc.calloc(count, ctypes.sizeof(Response))
    Response.from_address(responses[0]).text = libc.strdup(sys.argv[2].encode())
    return 0
class Conversation(ctypes.Structure):
    _fields_ = [("talk", talk), ("data", ctypes.c_void_p)]
conversation, handle = Conversation(talk(answer), None), ctypes.c_void_p()
pam.pam_start(b"other", sys.argv[1].encode(), ctypes.byref(conversation), ctypes.byref(handle))
sys.exit(1 if pam.pam_authenticate(handle, 0) else 0)
"""


@pytest.mark.parametrize("runner", ["alice", "carol"])
@pytest.mark.parametrize("account", ACCOUNTS.values(), ids=ACCOUNTS.keys())
def test_anyone_may_verify_anyones_password(
    machine: Machine, runner: str, account: Account
) -> None:
    for password, status in [(account.password, 0), ("wrong", 1)]:
        question = ["/usr/bin/python3", "-c", PAM_QUESTION, account.name, password]
        start = time.monotonic()
        asked = subprocess.run([LAB / "login", runner, *question], check=False)
        assert asked.returncode == status
        assert time.monotonic() - start < 1.5
