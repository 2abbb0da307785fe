"""What the tests share that look at the lab from the machine that makes it. They run as root."""

import os
import signal
import subprocess
import uuid
from pathlib import Path

import pytest
from driver.paths import LAB, REPOSITORY
from driver.waiting import wait_until

assert os.geteuid() == 0, "these tests need root: sudo /usr/bin/python3 -m pytest ..."

BUILD = Path(os.environ.get("BUILD", REPOSITORY / "build"))
RUN = [str(LAB / "run"), "--build", str(BUILD), "--"]
# What a lab makes or replaces inside, and must not touch outside.
SYSTEM = (
    *("/Applications", "/Library", "/Users", "/var/lab", "/usr/libexec/lab", "/run/fleet", "/sys"),
    *("/etc/passwd", "/etc/group", "/etc/shadow", "/etc/sudoers", "/etc/hosts"),
    *("/etc/nsswitch.conf", "/etc/pam.d/common-auth", "/etc/GNUstep", "/dev/console"),
    *("/usr/bin/bash", "/usr/bin/sudo", "/usr/bin/stat", "/usr/bin/launchctl", "/usr/sbin/ping"),
    "/etc/ssh/fleet_sshd_config",
)
LIMIT = 60  # seconds, on a busy machine
# A signal, whether the whole process group gets it, and the exit status that follows.
each_interruption = pytest.mark.parametrize(
    ("number", "whole_group", "status"),
    [
        (signal.SIGINT, True, 130),
        (signal.SIGTERM, False, 143),
        (signal.SIGHUP, True, 129),
        (signal.SIGKILL, False, -9),
    ],
    ids=["Ctrl-C", "SIGTERM", "closed terminal", "SIGKILL"],
)


def running(mark: str) -> list[str]:
    """The command lines of all processes that have the mark in their environment."""
    found = []
    for folder in Path("/proc").glob("[0-9]*"):
        try:
            if mark.encode() in (folder / "environ").read_bytes():
                found.append((folder / "cmdline").read_text())
        except OSError:
            pass
    return found


def state(path: str) -> tuple[int, ...] | None:
    """The state that shows whether a file was touched; None if there is no file."""
    try:
        status = os.stat(path, follow_symlinks=False)
    except FileNotFoundError:
        return None
    return status.st_ino, status.st_mode, status.st_uid, status.st_size, status.st_mtime_ns


class Trace:
    """A mark that all processes of a lab inherit, and what of the lab this machine shows."""

    def __init__(self, temporary: Path) -> None:
        # A word that is also an account name.
        self.mark = "m" + uuid.uuid4().hex[:20]
        self.environment = os.environ | {"MARK": self.mark, "TMPDIR": str(temporary)}
        self._temporary = temporary
        self._before = self._machine()

    def _machine(self) -> dict[str, object]:
        return {
            "mounts": Path("/proc/self/mountinfo").read_text(),
            "interfaces": sorted(os.listdir("/sys/class/net")),
            "routes": Path("/proc/net/route").read_text(),
            "named namespaces": Path("/run/netns").exists() and os.listdir("/run/netns"),
            "host name": os.uname().nodename,
            "temporary files": os.listdir(self._temporary),
            "system": {path: state(path) for path in SYSTEM},
        }

    def check(self) -> None:
        """Nothing of the lab is left."""
        assert running(self.mark) == []
        folders = ("/dev", "/etc", "/run", "/tmp", "/usr/bin", "/var/lib", "/root")
        assert [folder for folder in folders if Path(folder, self.mark).exists()] == []
        assert self._machine() == self._before

    def check_interruption(
        self, command: list[str], started: str, number: int, whole_group: bool, status: int,
        ready: bool = True,
    ) -> None:
        """Interrupts a lab once a command has started in it, and if wanted has printed "ready"."""
        process = subprocess.Popen(
            command,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            env=self.environment,
            start_new_session=True,
        )
        try:
            assert process.stdout is not None
            if ready:
                assert process.stdout.readline() == b"ready\n"
            wait_until(lambda: any(started in line for line in running(self.mark)), started, LIMIT)
            (os.killpg if whole_group else os.kill)(process.pid, number)
            assert process.wait(LIMIT) == status
            wait_until(lambda: not running(self.mark), "end of all processes of the lab", LIMIT)
            self.check()
        finally:
            process.kill()
            process.communicate()
