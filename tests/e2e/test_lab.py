"""The lab itself: what the program's command lines do on it, without the program."""

import subprocess
import time

import pytest
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, Command, listen
from driver.paths import LAB

DAEMON_FILE = "/Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist"
AGENT_FILE = "/Library/LaunchAgents/com.quorvix.SystemAgentUX.plist"


def run(user, line, shell="/bin/bash"):
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


def elevated(command, user="alice", password="alice-pw"):
    return f'/bin/echo "{password}" | /usr/bin/sudo -u "{user}" -S /usr/bin/sudo -S {command}'


def for_console_user(command, user="alice", uid=501):
    return f'/bin/launchctl asuser {uid} /usr/bin/sudo -u "{user}" {command}'


def test_a_right_password_runs_the_command_as_root_and_the_journal_shows_every_step(machine):
    line = elevated(f"/bin/launchctl load -w {DAEMON_FILE}")
    assert run("alice", line).returncode == 0
    assert machine.loaded() == {DAEMON}
    launchctl = ("/bin/launchctl", "load", "-w", DAEMON_FILE)
    sudo = ("/usr/bin/sudo", "-S", *launchctl)
    assert machine.journal() == [
        Command("alice", ("/bin/bash", "-c", line)),
        Command("alice", ("/bin/echo", "alice-pw")),
        Command("alice", ("/usr/bin/sudo", "-u", "alice", "-S", *sudo)),
        Command("alice", sudo),
        Command("root", launchctl),
    ]


@pytest.mark.parametrize(
    ("runner", "user", "password"),
    [
        ("alice", "alice", "wrong"),
        ("alice", "alice", ""),
        ("alice", "bob", "bob-pw"),
        ("carol", "carol", "carol-pw"),
        ("carol", "alice", "alice-pw"),
    ],
)
def test_sudo_refuses_wrong_passwords_and_ordinary_users_without_a_pause(
    machine, runner, user, password
):
    start = time.monotonic()
    result = run(runner, elevated(f"/bin/launchctl load -w {DAEMON_FILE}", user, password))
    assert result.returncode == 1
    assert machine.loaded() == set()
    assert time.monotonic() - start < 1.5


def test_a_password_is_asked_for_each_time(machine):
    assert run("alice", elevated("/bin/echo first")).returncode == 0
    assert run("alice", "/usr/bin/sudo -n /bin/echo second").returncode == 1


def test_the_daemon_job_is_loaded_listed_and_unloaded_by_root_only(machine):
    listing = "/bin/launchctl list com.quorvix.SystemAgentDaemon"
    assert run("alice", elevated(listing + " &> /dev/null")).returncode == 113
    refused = run("alice", f"/bin/launchctl load -w {DAEMON_FILE}")
    assert (refused.returncode, machine.loaded()) == (1, set())
    assert run("alice", elevated(f"/bin/launchctl load -w {DAEMON_FILE}")).returncode == 0
    result = run("alice", elevated(listing))
    assert result.returncode == 0
    assert '"Label" = "com.quorvix.SystemAgentDaemon";' in result.stdout
    assert run("alice", listing).returncode == 113
    assert run("alice", elevated(f"/bin/launchctl unload -w {DAEMON_FILE}")).returncode == 0
    assert machine.loaded() == set()


def test_the_agent_job_belongs_to_the_user_who_loads_it(machine):
    listing = for_console_user("/bin/launchctl list com.quorvix.SystemAgentUX  &> /dev/null")
    assert run("alice", listing).returncode == 113
    load = for_console_user(f"/bin/launchctl load -w {AGENT_FILE}")
    assert run("alice", load).returncode == 0
    assert machine.loaded() == {AGENT}
    assert run("alice", listing).returncode == 0
    assert run("bob", "/bin/launchctl list com.quorvix.SystemAgentUX").returncode == 113
    assert "com.quorvix.SystemAgentUX" in run("alice", "/bin/launchctl list").stdout
    assert run("alice", for_console_user(f"/bin/launchctl unload {AGENT_FILE}")).returncode == 0
    assert machine.loaded() == set()


def test_the_journal_shows_the_steps_of_a_per_user_command(machine):
    line = for_console_user("/bin/launchctl list com.quorvix.SystemAgentUX")
    run("alice", line)
    launchctl = ("/bin/launchctl", "list", "com.quorvix.SystemAgentUX")
    sudo = ("/usr/bin/sudo", "-u", "alice", *launchctl)
    assert machine.journal() == [
        Command("alice", ("/bin/bash", "-c", line)),
        Command("alice", ("/bin/launchctl", "asuser", "501", *sudo)),
        Command("alice", sudo),
        Command("alice", launchctl),
    ]


def test_only_root_reaches_the_session_of_another_user(machine):
    listing = "/bin/launchctl list com.quorvix.SystemAgentUX"
    machine.load(AGENT)
    refused = run("bob", for_console_user(listing))
    assert refused.returncode == 1
    assert "501" in refused.stderr
    assert [command.argv[0] for command in machine.journal()] == ["/bin/bash", "/bin/launchctl"]
    as_root = elevated(for_console_user(listing), "bob", "bob-pw")
    assert run("bob", as_root).returncode == 0


@pytest.mark.parametrize(
    ("line", "status"),
    [
        (f"/bin/launchctl unload -w {AGENT_FILE}", 0),
        (f"/bin/launchctl load {AGENT_FILE} {AGENT_FILE}", 0),
        ("/bin/launchctl load -w /Library/LaunchAgents/missing.plist", 1),
        ("/bin/launchctl load -w /dev/null", 1),
        ('/bin/launchctl asuser  /usr/bin/sudo -u "" /bin/echo', 1),
        ("/bin/launchctl kickstart", 1),
    ],
)
def test_launchctl_says_on_its_error_stream_what_it_cannot_do(machine, line, status):
    result = run("alice", line)
    assert result.returncode == status
    assert result.stderr.count("\n") == 1


def test_the_console_belongs_to_alice(machine):
    line = "loggedInUser=$(stat -f%Su /dev/console 2> /dev/null); echo $loggedInUser"
    assert run("bob", line).stdout == "alice\n"
    assert machine.journal() == [
        Command("bob", ("/bin/bash", "-c", line)),
        Command("bob", ("stat", "-f%Su", "/dev/console")),
    ]
    assert run("bob", "stat -c %a /usr/bin").stdout == "755\n"


@pytest.mark.parametrize(
    ("user", "text"), [("alice", "501\n"), ("bob", "502\n"), ("nobody1", "\n")]
)
def test_the_user_id_of_a_name_is_looked_up(machine, user, text):
    line = f'loggedInUID=$(id -u "{user}"); echo $loggedInUID'
    assert run("alice", line).stdout == text
    assert machine.journal()[1:] == [Command("alice", ("id", "-u", user))]


@pytest.mark.parametrize("installed", [True, False])
def test_root_sees_the_installed_profiles(machine, installed):
    if installed:
        machine.install_profiles("com.example.other", "com.zentavo.vardex.agent")
    line = elevated("/usr/bin/sudo /usr/bin/profiles list |  grep com.zentavo.vardex.agent")
    result = run("alice", line, shell="/bin/sh")
    assert ("com.zentavo.vardex.agent" in result.stdout) == installed
    assert result.returncode == (0 if installed else 1)
    profiles = ("/usr/bin/profiles", "list")
    sudo = ("/usr/bin/sudo", *profiles)
    assert machine.journal() == [
        Command("alice", ("/bin/sh", "-c", line)),
        Command("alice", ("/bin/echo", "alice-pw")),
        Command("alice", ("/usr/bin/sudo", "-u", "alice", "-S", "/usr/bin/sudo", "-S", *sudo)),
        Command("alice", ("/usr/bin/sudo", "-S", *sudo)),
        Command("root", sudo),
        Command("root", profiles),
        Command("alice", ("grep", "com.zentavo.vardex.agent")),
    ]


def test_ordinary_users_see_no_profiles_of_the_computer(machine):
    machine.install_profiles("com.zentavo.vardex.agent")
    assert "com.zentavo" not in run("alice", "/usr/bin/profiles list").stdout


@pytest.mark.parametrize("edition", EDITIONS.values(), ids=EDITIONS.keys())
def test_daemon_exit_writes_the_settings_of_its_edition_as_the_caller(machine, edition):
    settings = edition.settings / "daemon.settings.xml"
    agent = f"{edition.folder}/SystemAgent/SystemAgentDaemon"
    line = f"echo -n > {settings}; {agent} daemon exit"
    assert run("alice", line).returncode == 0
    assert settings.read_text().startswith("<?xml")
    assert machine.journal() == [
        Command("alice", ("/bin/bash", "-c", line)),
        Command("alice", (agent, "daemon", "exit")),
    ]
    settings.write_text("old")
    assert run("carol", line).returncode == 1
    assert settings.read_text() == "old"


def test_root_removes_a_settings_file(machine):
    file = EDITIONS["Zentavo"].settings / "safeguarding_server.xml"
    assert run("alice", elevated(f"/bin/rm  {file}")).returncode == 0
    assert not file.exists()
    assert machine.journal()[-1] == Command("root", ("/bin/rm", str(file)))


@pytest.mark.parametrize(
    ("address", "status"),
    [("127.0.0.1", 0), ("::1", 0), ("192.0.2.10", 0), ("fileserver", 0), ("192.0.2.1", 2)],
)
def test_ping_works_for_an_ordinary_user(machine, address, status):
    line = f'/sbin/ping -c 1 "{address}"'
    assert run("carol", line, shell="/bin/sh").returncode == status
    assert machine.journal() == [
        Command("carol", ("/bin/sh", "-c", line)),
        Command("carol", ("/sbin/ping", "-c", "1", address)),
    ]


@pytest.mark.parametrize("address", ["127.0.0.1", "::1"])
def test_nc_tells_a_listening_port_from_a_closed_one(machine, address):
    with listen(address) as server:
        port = server.getsockname()[1]
        line = f'/usr/bin/nc -vz "{address}" {port}'
        assert run("carol", line, shell="/bin/sh").returncode == 0
    assert run("carol", line, shell="/bin/sh").returncode == 1
    assert machine.journal()[1] == Command("carol", ("/usr/bin/nc", "-vz", address, str(port)))


def test_fault_rules_fail_end_delay_and_disturb_the_commands_they_name(machine):
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


def test_a_fault_rule_may_be_for_the_second_call_alone(machine):
    machine.add_fault("id", times=-2, exit=7)
    assert [run("alice", "id -u; exit $?").returncode for _ in range(4)] == [0, 7, 0, 0]


def test_a_fault_rule_for_a_command_as_root_applies_behind_sudo(machine):
    machine.load(DAEMON)
    machine.add_fault("launchctl", "unload", exit=5)
    assert run("alice", elevated(f"/bin/launchctl unload -w {DAEMON_FILE}")).returncode == 5
    assert machine.loaded() == {DAEMON}


def test_the_journal_keeps_arguments_byte_for_byte_and_whole_lines_from_many_writers(machine):
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


def test_housekeeping_by_root_makes_no_noise(machine):
    subprocess.run(["/bin/bash", "-c", "/bin/echo; id; stat /"], check=True, capture_output=True)
    assert machine.journal() == []


def test_reset_brings_the_freshly_installed_state_back(machine):
    machine.load(DAEMON, AGENT)
    machine.install_profiles("com.example.other")
    machine.add_fault("id", exit=1)
    machine.write_server_plist("old")
    run("alice", "id")
    machine.reset()
    assert machine.loaded() == set()
    assert machine.journal() == []
    assert run("alice", "id -u").returncode == 0
    assert run("alice", "ls /Library/Preferences/ZentavoAgent").stdout == ""
    assert "com.example" not in run("alice", elevated("/usr/bin/profiles list")).stdout


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
def test_anyone_may_verify_anyones_password(machine, runner, account):
    for password, status in [(account.password, 0), ("wrong", 1)]:
        question = ["/usr/bin/python3", "-c", PAM_QUESTION, account.name, password]
        start = time.monotonic()
        assert subprocess.run([LAB / "login", runner, *question], check=False).returncode == status
        assert time.monotonic() - start < 1.5
