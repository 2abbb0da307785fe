"""The lab seen from the machine that makes it. Runs outside the lab, as root."""

import os
import signal
import subprocess
import uuid
from pathlib import Path

import pytest
from driver.paths import LAB, REPOSITORY
from driver.waiting import wait_until

BUILD = Path(os.environ.get("BUILD", REPOSITORY / "build"))
RUN = [str(LAB / "run"), "--build", str(BUILD), "--"]
CHANGES = """
    touch /dev/$MARK /etc/$MARK /run/$MARK /tmp/$MARK /usr/bin/$MARK /var/lib/$MARK ~root/$MARK
    useradd $MARK
    (setsid sleep 1000 &)
"""
STUBBORN = f'trap "" HUP INT TERM; {CHANGES} echo ready; sleep 1000'
# What the lab makes or replaces inside, and must not touch outside.
SYSTEM = (
    *("/Applications", "/Library", "/Users", "/var/lab", "/usr/libexec/lab"),
    *("/etc/passwd", "/etc/group", "/etc/shadow", "/etc/sudoers", "/etc/hosts"),
    *("/etc/nsswitch.conf", "/etc/pam.d/common-auth", "/etc/GNUstep", "/dev/console"),
    *("/usr/bin/bash", "/usr/bin/sudo", "/usr/bin/stat", "/usr/bin/launchctl", "/usr/sbin/ping"),
    "/sys",
)


def run(
    *command: str, environment: dict[str, str] | None = None
) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        command,
        env=environment,
        stdin=subprocess.DEVNULL,
        capture_output=True,
        text=True,
        check=False,
        timeout=60,
    )


def lab(
    *command: str, environment: dict[str, str] | None = None
) -> subprocess.CompletedProcess[str]:
    """Runs a command in a new lab."""
    return run(*RUN, *command, environment=environment)


def state(path: str) -> tuple[int, ...] | None:
    """The state that shows whether a file was touched; None if there is no file."""
    try:
        status = os.stat(path, follow_symlinks=False)
    except FileNotFoundError:
        return None
    return status.st_ino, status.st_mode, status.st_uid, status.st_size, status.st_mtime_ns


class Trace:
    """A lab's mark, and what of it this machine shows."""

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
            "host name": os.uname().nodename,
            "temporary files": os.listdir(self._temporary),
            "system": {path: state(path) for path in SYSTEM},
        }

    def check(self) -> None:
        assert running(self.mark) == []
        folders = ("/dev", "/etc", "/run", "/tmp", "/usr/bin", "/var/lib", "/root")
        assert [folder for folder in folders if Path(folder, self.mark).exists()] == []
        assert self._machine() == self._before


@pytest.fixture
def trace(tmp_path: Path) -> Trace:
    return Trace(tmp_path)


def running(marker: str) -> list[int]:
    """Ids of the processes that have the marker in their environment."""
    ids = []
    for folder in Path("/proc").glob("[0-9]*"):
        try:
            if marker.encode() in (folder / "environ").read_bytes():
                ids.append(int(folder.name))
        except OSError:
            pass
    return ids


@pytest.fixture(autouse=True)
def root() -> None:
    assert os.geteuid() == 0, "these tests need root: sudo /usr/bin/python3 -m pytest ..."


def test_exit_status_and_streams_of_the_command_are_passed_on() -> None:
    result = lab("/bin/bash", "-c", "echo out; echo err >&2; exit 42")
    assert (result.returncode, result.stdout, result.stderr) == (42, "out\n", "err\n")
    assert lab("true").returncode == 0
    assert lab("no-such-command").returncode == 127


def test_the_command_reads_standard_input() -> None:
    command = [*RUN, "cat"]
    result = subprocess.run(command, input=b"text\n", capture_output=True, check=True, timeout=60)
    assert result.stdout == b"text\n"


def test_sources_cannot_be_changed_from_inside_and_results_can_be_left_in_the_build_folder(
    
) -> None:
    name = f"lab-{uuid.uuid4()}"
    result = lab("/bin/bash", "-c", f"touch '{LAB}/{name}' || touch '{BUILD}/{name}'")
    assert "Read-only file system" in result.stderr
    assert not (LAB / name).exists()
    (BUILD / name).unlink()


def test_nothing_is_left_after_a_normal_end(trace: Trace) -> None:
    result = lab("/bin/bash", "-c", f"{CHANGES} exit 3", environment=trace.environment)
    assert result.returncode == 3, result.stderr
    trace.check()


@pytest.mark.parametrize(
    ("number", "whole_group", "status"),
    [
        (signal.SIGINT, True, 130),
        (signal.SIGTERM, False, 143),
        (signal.SIGHUP, True, 129),
        (signal.SIGKILL, False, -9),
    ],
    ids=["Ctrl-C", "SIGTERM", "closed terminal", "SIGKILL"],
)
def test_nothing_is_left_after_an_interruption(
    trace: Trace, number: int, whole_group: bool, status: int
) -> None:
    process = subprocess.Popen(
        [*RUN, "/bin/bash", "-c", STUBBORN],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        env=trace.environment,
        start_new_session=True,
    )
    try:
        assert process.stdout is not None
        assert process.stdout.readline() == b"ready\n"
        assert len(running(trace.mark)) >= 4
        (os.killpg if whole_group else os.kill)(process.pid, number)
        assert process.wait(timeout=10) == status
        wait_until(lambda: not running(trace.mark), "end of all processes of the lab")
        trace.check()
    finally:
        process.kill()
        process.communicate()


def test_other_file_systems_of_this_machine_are_there_and_stay_unchanged(trace: Trace) -> None:
    mounted = 'mount --bind /usr /usr; mount --bind /etc/hostname /etc/hostname; exec "$@"'
    command = ["unshare", "--mount", "/bin/bash", "-c", mounted, "-", *RUN, "/bin/bash", "-c"]
    result = run(*command, "touch /usr/bin/$MARK && ls /usr/bin/$MARK", environment=trace.environment)
    assert (result.returncode, result.stdout) == (0, f"/usr/bin/{trace.mark}\n"), result.stderr
    trace.check()


def test_without_root_and_sudo_one_line_says_so() -> None:
    # An ordinary user cannot read sources below a private home: inside a lab they can be moved.
    script = f'cp -R "{LAB}" /opt/; rm /usr/bin/sudo; exec /opt/lab/login carol /opt/lab/run true'
    result = lab("/bin/bash", "-c", script)
    assert result.returncode == 1
    assert result.stderr == "lab: needs root, and there is no sudo to get it\n"


def test_where_namespaces_are_not_allowed_one_line_says_so() -> None:
    limited = ["setpriv", "--bounding-set=-sys_admin", "--inh-caps=-sys_admin", *RUN, "true"]
    result = run(*limited)
    assert result.returncode == 1
    assert result.stderr == (
        "lab: this machine does not allow new mount, process and network namespaces\n"
    )


def test_a_lab_within_a_lab_works_and_where_overlays_are_refused_one_line_says_so() -> None:
    result = lab(*RUN, "hostname")
    assert (result.returncode, result.stdout, result.stderr) == (0, "lab-mac\n", "")
    # Linux stacks two overlays, not three.
    result = lab(*RUN, *RUN, "hostname")
    assert result.returncode == 1
    assert "lab: cannot mount an overlay over the running system\n" in result.stderr


def test_a_missing_shim_is_named(tmp_path: Path) -> None:
    result = run(RUN[0], "--build", str(tmp_path), "true")
    assert result.returncode == 1
    assert result.stderr == f"lab: {tmp_path}/lab/lab_intercept is missing: build the program first\n"


def test_an_ordinary_user_gets_root_through_sudo_and_housekeeping_stays_out_of_the_journal(
    
) -> None:
    script = f"""
        cp -R "{LAB}" /opt/
        sed -i '/%admin/s/ALL$/NOPASSWD: ALL/' /etc/sudoers
        exec /opt/lab/login alice /opt/lab/run --build "{BUILD}" -- \\
          /bin/bash -c 'id -u; cat /var/lab/journal'
    """
    result = lab("/bin/bash", "-c", script)
    assert (result.returncode, result.stdout, result.stderr) == (0, "0\n", "")


def test_programs_in_the_lab_reach_the_display_only_when_asked_to() -> None:
    reading, writing = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writing), "-nolisten", "tcp"],
        pass_fds=[writing],
        stderr=subprocess.DEVNULL,
    )
    try:
        number = os.read(reading, 16).decode().strip()
        environment = os.environ | {"DISPLAY": f":{number}"}
        question = ["xwininfo", "-root"]
        assert lab(*question, environment=environment).returncode == 1
        with_display = [RUN[0], "--display", *RUN[1:], *question]
        assert run(*with_display, environment=environment).returncode == 0
        remote = run(*with_display, environment=os.environ | {"DISPLAY": "localhost:10"})
        assert remote.returncode == 1
        assert remote.stderr == (
            "lab: --display needs a local X display, and DISPLAY is 'localhost:10'\n"
        )
    finally:
        server.terminate()
        server.wait()
        os.close(reading)
        os.close(writing)
