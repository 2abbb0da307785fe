"""Many labs on a network of their own, seen from the machine that makes them. Runs outside the lab, as root."""

import os
import signal
import subprocess
import uuid
from pathlib import Path

import pytest
from driver.waiting import wait_until

LAB = Path(__file__).resolve().parents[2] / "lab"
BUILD = Path(os.environ.get("LAB_BUILD", LAB.parent / "build"))
FLEET = [str(LAB / "fleet"), "--build", str(BUILD)]


def fleet(*arguments: str, environment: dict[str, str] | None = None) -> subprocess.CompletedProcess[str]:
    """Runs lab/fleet to its end."""
    return subprocess.run(
        [*FLEET, *arguments],
        stdin=subprocess.DEVNULL,
        capture_output=True,
        text=True,
        check=False,
        timeout=120,
        env=environment,
    )


def in_lab(script: str) -> subprocess.CompletedProcess[str]:
    """Runs a script in a single lab."""
    command = [str(LAB / "run"), "--build", str(BUILD), "--", "/bin/bash", "-c", script]
    return subprocess.run(command, capture_output=True, text=True, check=False, timeout=60)


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


class Trace:
    """A mark that all processes of a fleet inherit, and what of the fleet this machine shows."""

    def __init__(self, temporary: Path):
        self.mark = uuid.uuid4().hex
        self.environment = os.environ | {"MARK": self.mark, "TMPDIR": str(temporary)}
        self._temporary = temporary
        self._before = self._machine()

    def _machine(self) -> dict[str, object]:
        return {
            "mounts": Path("/proc/self/mountinfo").read_text(),
            "interfaces": sorted(os.listdir("/sys/class/net")),
            "routes": Path("/proc/net/route").read_text(),
            "named namespaces": Path("/run/netns").exists() and os.listdir("/run/netns"),
            "temporary files": os.listdir(self._temporary),
            "keys": [path.exists() for path in (Path("/etc/ssh/fleet_sshd_config"), Path("/run/fleet"))],
        }

    def check(self) -> None:
        assert running(self.mark) == []
        assert self._machine() == self._before


@pytest.fixture
def trace(tmp_path: Path) -> Trace:
    return Trace(tmp_path)


@pytest.fixture(autouse=True)
def root() -> None:
    assert os.geteuid() == 0, "these tests need root: sudo /usr/bin/python3 -m pytest ..."


def test_each_machine_has_its_own_address_and_state_and_takes_the_administrators_ssh(trace: Trace) -> None:
    script = """
        for mac in mac1 mac2 mac3; do
          ssh alice@$mac 'ip -brief -4 address show eth0 | grep -o "[0-9.]*/24"; id -un; mkdir /tmp/own; ls -d /tmp/own'
        done
        ssh root@mac1 true || echo "no root"
    """
    result = fleet("3", "--", "/bin/bash", "-c", script, environment=trace.environment)
    each = [f"198.51.100.{number}/24\nalice\n/tmp/own\n" for number in (1, 2, 3)]
    assert result.stdout == "".join(each) + "no root\n", result.stderr
    trace.check()


def test_the_administrator_becomes_root_with_the_password_only() -> None:
    script = """
        ssh alice@mac1 sudo -n id -u || echo refused
        ssh alice@mac1 sudo -S -p prompt id -u <<< alice-pw
    """
    result = fleet("1", "--", "/bin/bash", "-c", script)
    assert result.stdout == "refused\n0\n", result.stderr


def test_machines_reach_each_other_and_nothing_outside() -> None:
    script = """
        ssh alice@mac1 'nc -z -w 2 198.51.100.2 22 && echo neighbour; ip route'
        ip -brief link | cut -d" " -f1 | cut -d@ -f1 | sort | tr "\\n" " "
    """
    result = fleet("2", "--", "/bin/bash", "-c", script)
    assert "neighbour\n" in result.stdout
    assert "default" not in result.stdout
    assert result.stdout.endswith("fleet lo mac1 mac2 "), result.stdout


def test_standard_input_and_the_exit_status_of_the_command_are_passed_on() -> None:
    result = subprocess.run(
        [*FLEET, "1", "/bin/bash", "-c", "cat; exit 42"],
        input="text\n",
        capture_output=True,
        text=True,
        check=False,
        timeout=60,
    )
    assert (result.returncode, result.stdout) == (42, "text\n"), result.stderr


@pytest.mark.parametrize("count", ["0", "201", "-1", "x", "1x", ""])
def test_a_number_of_machines_that_is_not_from_1_to_200_gets_the_usage(count: str) -> None:
    result = fleet(count, "--", "true")
    assert result.returncode == 2
    assert "usage: lab/fleet" in result.stderr


def test_no_command_gets_the_usage() -> None:
    assert fleet("1").returncode == 2
    assert fleet().returncode == 2


def test_a_machine_that_does_not_start_is_named() -> None:
    result = in_lab(f'cp /bin/false /usr/sbin/sshd; exec "{LAB}/fleet" --build "{BUILD}" 1 -- echo ran')
    assert result.returncode == 1
    assert result.stdout == ""
    assert result.stderr.startswith("lab: mac1 ended"), result.stderr


def test_a_missing_sshd_is_named() -> None:
    result = in_lab(f'rm /usr/sbin/sshd; exec "{LAB}/fleet" --build "{BUILD}" 1 -- true')
    assert (result.returncode, result.stderr) == (
        1,
        "lab: needs sshd: install the package openssh-server\n",
    )


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
@pytest.mark.parametrize("ready", [True, False], ids=["while it runs", "while it starts"])
def test_nothing_is_left_after_an_interruption(
    trace: Trace, number: int, whole_group: bool, status: int, ready: bool
) -> None:
    process = subprocess.Popen(
        [*FLEET, "3", "--", "/bin/bash", "-c", "(setsid sleep 1000 &); echo ready; sleep 1000"],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        env=trace.environment,
        start_new_session=True,
    )
    try:
        assert process.stdout is not None
        if ready:
            assert process.stdout.readline() == b"ready\n"
        wait_until(lambda: any("fleet-machine" in line for line in running(trace.mark)), "machines")
        (os.killpg if whole_group else os.kill)(process.pid, number)
        assert process.wait(timeout=10) == status
        wait_until(lambda: not running(trace.mark), "end of all processes of the fleet")
        trace.check()
    finally:
        process.kill()
        process.communicate()
