"""The commands that the program is expected to run, word for word, as the journal shows them, the file
that it is expected to write, and what it prints on Apply."""

from collections.abc import Callable, Collection
from typing import Any

from driver.editions import EDITIONS, Edition
from driver.machine import ACCOUNTS, Account, Command

Operation = Callable[..., list[Command]]
ALICE = ACCOUNTS["alice"]

DAEMON_FILE = "/Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist"
AGENT_FILE = "/Library/LaunchAgents/com.quorvix.SystemAgentUX.plist"
RESET_FILES = ("safeguarding_server.xml", "tkprotocolserver.settings.xml", "safeguarding_cloud.xml")


def _as_root(runner: str, admin: Account, command: str, ending: str = "") -> list[Command]:
    """A command behind the password of the administrator who logged in.

    The first sudo changes to that administrator. Only for the administrators themselves it does so
    without a password; it wants anybody else's own, and gets the administrator's.
    """
    line = (
        f'/bin/echo "{admin.password}" | /usr/bin/sudo -u "{admin.name}" -S /usr/bin/sudo -S '
        f"{command}{ending}"
    )
    words = tuple(command.split())
    sudo = ("/usr/bin/sudo", "-S", *words)
    steps = [
        Command(runner, ("/bin/bash", "-c", line)),
        Command(runner, ("/bin/echo", admin.password)),
        Command(runner, ("/usr/bin/sudo", "-u", admin.name, "-S", *sudo)),
        Command(admin.name, sudo),
        Command("root", words),
    ]
    return steps if runner == admin.name else steps[:3]


def _as_console_user(
    runner: str, user: str, uid: int | str, command: str, ending: str = ""
) -> list[Command]:
    """A command in the console user's session, which is open to that user and to root only."""
    line = f'/bin/launchctl asuser {uid} /usr/bin/sudo -u "{user}" {command}{ending}'
    words = tuple(command.split())
    sudo = ("/usr/bin/sudo", "-u", user, *words)
    steps = [
        Command(runner, ("/bin/bash", "-c", line)),
        Command(runner, ("/bin/launchctl", "asuser", str(uid), *sudo)),
        Command(runner, sudo),
        Command(user, words),
    ]
    return steps if runner in (user, "root") else steps[:2]


def profile_check(runner: str, admin: Account, edition: Edition) -> list[Command]:
    line = (
        f'/bin/echo "{admin.password}" | /usr/bin/sudo -u "{admin.name}" -S /usr/bin/sudo -S '
        f"/usr/bin/sudo /usr/bin/profiles list |  grep {edition.profile}"
    )
    sudo = ("/usr/bin/sudo", "/usr/bin/profiles", "list")
    steps = [
        Command(runner, ("/bin/sh", "-c", line)),
        Command(runner, ("/bin/echo", admin.password)),
        Command(runner, ("/usr/bin/sudo", "-u", admin.name, "-S", "/usr/bin/sudo", "-S", *sudo)),
        Command(admin.name, ("/usr/bin/sudo", "-S", *sudo)),
        Command("root", sudo),
        Command("root", ("/usr/bin/profiles", "list")),
    ]
    grep = Command(runner, ("grep", edition.profile))
    return [*(steps if runner == admin.name else steps[:3]), grep]


LOGIN = profile_check("alice", ALICE, EDITIONS["Zentavo"])


def console_lookup(runner: str, console: Account) -> list[Command]:
    user = "loggedInUser=$(stat -f%Su /dev/console 2> /dev/null); echo $loggedInUser"
    uid = f'loggedInUID=$(id -u "{console.name}"); echo $loggedInUID'
    return [
        Command(runner, ("/bin/bash", "-c", user)),
        Command(runner, ("stat", "-f%Su", "/dev/console")),
        Command(runner, ("/bin/bash", "-c", uid)),
        Command(runner, ("id", "-u", console.name)),
    ]


def check_daemon(runner: str, admin: Account) -> list[Command]:
    command = "/bin/launchctl list com.quorvix.SystemAgentDaemon"
    return _as_root(runner, admin, command, ending=" &> /dev/null")


def stop_daemon(runner: str, admin: Account) -> list[Command]:
    return _as_root(runner, admin, f"/bin/launchctl unload -w {DAEMON_FILE}")


def start_daemon(runner: str, admin: Account) -> list[Command]:
    return _as_root(runner, admin, f"/bin/launchctl load -w {DAEMON_FILE}")


def check_agent(runner: str, user: str, uid: int | str) -> list[Command]:
    command = "/bin/launchctl list com.quorvix.SystemAgentUX"
    return _as_console_user(runner, user, uid, command, ending="  &> /dev/null")


def stop_agent(runner: str, user: str, uid: int | str) -> list[Command]:
    return _as_console_user(runner, user, uid, f"/bin/launchctl unload -w {AGENT_FILE}")


def start_agent(runner: str, user: str, uid: int | str) -> list[Command]:
    return _as_console_user(runner, user, uid, f"/bin/launchctl load -w {AGENT_FILE}")


def reset_settings(runner: str, admin: Account, edition: Edition) -> list[Command]:
    agent = f"{edition.folder}/SystemAgent"
    commands = []
    for file in RESET_FILES:
        commands += _as_root(runner, admin, f"/bin/rm  {agent}/settings/{file}")
    line = f"echo -n > {agent}/settings/daemon.settings.xml; {agent}/SystemAgentDaemon daemon exit"
    return commands + [
        Command(runner, ("/bin/bash", "-c", line)),
        Command(runner, (f"{agent}/SystemAgentDaemon", "daemon", "exit")),
    ]


def _connection_test(runner: str, line: str, *words: str) -> list[Command]:
    return [Command(runner, ("/bin/sh", "-c", line)), Command(runner, words)]


def ping(runner: str, server: str) -> list[Command]:
    line = f'/sbin/ping -c 1 "{server}"'
    return _connection_test(runner, line, "/sbin/ping", "-c", "1", server)


def port_test(runner: str, server: str, port: int) -> list[Command]:
    line = f'/usr/bin/nc -vz "{server}" {port}'
    return _connection_test(runner, line, "/usr/bin/nc", "-vz", server, str(port))


STOPS: tuple[Operation, ...] = (stop_agent, stop_daemon)
STARTS: tuple[Operation, ...] = (start_daemon, start_agent)


def apply_commands(
    runner: str,
    admin: Account,
    console: Account | None,
    edition: Edition = EDITIONS["Zentavo"],
    *,
    stops: Collection[Operation] = STOPS,
    reset: bool = False,
) -> list[Command]:
    """All commands of one Apply behind the look-up of the console user."""

    def session(operation: Operation) -> list[Command]:
        return operation(runner, console.name, console.uid) if console else []

    return [
        *session(check_agent),
        *(session(stop_agent) if stop_agent in stops else []),
        *check_daemon(runner, admin),
        *(stop_daemon(runner, admin) if stop_daemon in stops else []),
        *(reset_settings(runner, admin, edition) if reset else []),
        *check_daemon(runner, admin),
        *start_daemon(runner, admin),
        *session(check_agent),
        *session(start_agent),
    ]


def apply_by_alice(
    edition: Edition = EDITIONS["Zentavo"], *, lookup: bool = True, **options: Any
) -> list[Command]:
    """All commands of one Apply."""
    commands = console_lookup("alice", ALICE) if lookup else []
    return commands + apply_commands("alice", ALICE, ALICE, edition, **options)


def server_plist(language: str, server: str, port: str, profile: bool) -> bytes:
    """The file that Apply writes, byte for byte."""
    identifier = '"-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd"'
    return f"""<?xml version="1.0" encoding="UTF-8"?>
    <!DOCTYPE plist PUBLIC {identifier}>
    <plist version="1.0">
    <dict>
        <key>language</key>
        <string>{language}</string>
        <key>server</key>
        <string>{server}</string>
        <key>port</key>
        <integer>{port}</integer>
        <key>profile</key>
        <{"true" if profile else "false"}/>
    </dict>
    </plist>""".encode()


SAID: dict[Operation, str] = {
    stop_agent: "Global Agent stop successfully.",
    stop_daemon: "Global Daemon stops successfully.",
    start_daemon: "Global Daemon starts successfully.",
    start_agent: "Global Agent starts successfully.",
}
FAILED: dict[Operation, str] = {
    stop_agent: "Global Agent failed to stop.",
    stop_daemon: "Global Daemon failed to stop.",
    start_daemon: "Global Daemon failed to start.",
    start_agent: "Global Agent failed to start.",
}
WRITE_ERROR = (
    r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} "
    r"unable to write in /Library/Preferences/ZentavoAgent/server\.plist with error (.*)\n"
)


def said(*operations: Operation) -> list[str]:
    return [SAID[operation] for operation in operations]
