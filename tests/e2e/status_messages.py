"""What the program prints on Apply: status messages, and the error of a failed write."""

from expected_commands import Operation, start_agent, start_daemon, stop_agent, stop_daemon

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
