"""Many labs on a network of their own, seen from the machine that makes them."""

from pathlib import Path
from subprocess import CompletedProcess
from typing import Any

import pytest
from driver.commands import run
from driver.paths import LAB

pytest.register_assert_rewrite("outside_lab")

from outside_lab import BUILD, RUN, Trace, each_interruption

FLEET = [str(LAB / "fleet"), "--build", str(BUILD)]


def fleet(count: int, script: str, **options: Any) -> CompletedProcess[str]:
    """Runs a script next to new machines."""
    return run(*FLEET, count, "--", "/bin/bash", "-c", script, timeout=120, **options)


def fleet_after(change: str) -> CompletedProcess[str]:
    """Runs lab/fleet in a lab in which something was changed before."""
    return run(*RUN, "/bin/bash", "-c", f'{change}; exec "{LAB}/fleet" --build "{BUILD}" 1 -- echo ran')


def test_each_machine_has_its_own_address_and_state_and_takes_the_administrators_ssh(
    tmp_path: Path,
) -> None:
    trace = Trace(tmp_path)
    script = """
        for mac in mac1 mac2 mac3; do
          ssh alice@$mac 'ip -brief -4 address show eth0 | grep -o "[0-9.]*/24"; id -un; mkdir /tmp/own; ls -d /tmp/own'
        done
        ssh root@mac1 true || echo "no root"
    """
    result = fleet(3, script, env=trace.environment)
    each = [f"198.51.100.{number}/24\nalice\n/tmp/own\n" for number in (1, 2, 3)]
    assert result.stdout == "".join(each) + "no root\n", result.stderr
    trace.check()


def test_the_administrator_becomes_root_with_the_password_only() -> None:
    script = """
        ssh alice@mac1 sudo -n id -u || echo refused
        ssh alice@mac1 sudo -S -p prompt id -u <<< alice-pw
    """
    result = fleet(1, script)
    assert result.stdout == "refused\n0\n", result.stderr


def test_machines_reach_each_other_and_nothing_outside() -> None:
    script = """
        ssh alice@mac1 'nc -z -w 2 198.51.100.2 22 && echo neighbour; ip route'
        ip -brief link | cut -d" " -f1 | cut -d@ -f1 | sort | tr "\\n" " "
    """
    result = fleet(2, script)
    assert "neighbour\n" in result.stdout
    assert "default" not in result.stdout
    assert result.stdout.endswith("fleet lo mac1 mac2 "), result.stdout


def test_standard_input_and_the_exit_status_of_the_command_are_passed_on() -> None:
    result = fleet(1, "cat; exit 42", input="text\n")
    assert (result.returncode, result.stdout) == (42, "text\n"), result.stderr


@pytest.mark.parametrize(
    "arguments",
    [*([count, "--", "true"] for count in ("0", "201", "-1", "x", "1x", "")), ["1"], []],
    ids=str,
)
def test_anything_but_a_command_and_1_to_200_machines_gets_the_usage(arguments: list[str]) -> None:
    result = run(*FLEET, *arguments)
    assert result.returncode == 2
    assert "usage: lab/fleet" in result.stderr


def test_a_machine_that_does_not_start_is_named() -> None:
    result = fleet_after("cp /bin/false /usr/sbin/sshd")
    assert (result.returncode, result.stdout) == (1, "")
    assert result.stderr.startswith("lab: mac1 ended"), result.stderr


def test_a_missing_sshd_is_named() -> None:
    result = fleet_after("rm /usr/sbin/sshd")
    assert result.returncode == 1
    assert result.stderr == "lab: needs sshd: install the package openssh-server\n"


@each_interruption
@pytest.mark.parametrize("ready", [True, False], ids=["while it runs", "while it starts"])
def test_nothing_is_left_after_an_interruption(
    tmp_path: Path, number: int, whole_group: bool, status: int, ready: bool
) -> None:
    script = "(setsid sleep 1000 &); echo ready; sleep 1000"
    command = [*FLEET, "3", "--", "/bin/bash", "-c", script]
    Trace(tmp_path).check_interruption(command, "fleet-machine", number, whole_group, status, ready)
