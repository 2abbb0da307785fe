"""One lab, seen from the machine that makes it."""

import os
import uuid
from pathlib import Path
from subprocess import CompletedProcess
from typing import Any

import pytest
from driver.commands import run
from driver.display import Display
from driver.paths import LAB

pytest.register_assert_rewrite("outside_lab")

from outside_lab import BUILD, RUN, Trace, each_interruption

CHANGES = """
    touch /dev/$MARK /etc/$MARK /run/$MARK /tmp/$MARK /usr/bin/$MARK /var/lib/$MARK ~root/$MARK
    useradd $MARK
    (setsid sleep 1000 &)
"""
STUBBORN = f'trap "" HUP INT TERM; {CHANGES} echo ready; sleep 1000'


def lab(*command: str, **options: Any) -> CompletedProcess[str]:
    """Runs a command in a new lab."""
    return run(*RUN, *command, **options)


def test_exit_status_and_streams_of_the_command_are_passed_on() -> None:
    result = lab("/bin/bash", "-c", "cat; echo err >&2; exit 42", input="text\n")
    assert (result.returncode, result.stdout, result.stderr) == (42, "text\n", "err\n")
    assert lab("true").returncode == 0
    assert lab("no-such-command").returncode == 127


def test_sources_cannot_be_changed_from_inside_and_results_can_be_left_in_the_build_folder() -> None:
    name = f"lab-{uuid.uuid4()}"
    result = lab("/bin/bash", "-c", f"touch '{LAB}/{name}' || touch '{BUILD}/{name}'")
    assert "Read-only file system" in result.stderr
    assert not (LAB / name).exists()
    (BUILD / name).unlink()


def test_nothing_is_left_after_a_normal_end(tmp_path: Path) -> None:
    trace = Trace(tmp_path)
    result = lab("/bin/bash", "-c", f"{CHANGES} exit 3", env=trace.environment)
    assert result.returncode == 3, result.stderr
    trace.check()


@each_interruption
def test_nothing_is_left_after_an_interruption(
    tmp_path: Path, number: int, whole_group: bool, status: int
) -> None:
    command = [*RUN, "/bin/bash", "-c", STUBBORN]
    Trace(tmp_path).check_interruption(command, "sleep", number, whole_group, status)


def test_other_file_systems_of_this_machine_are_there_and_stay_unchanged(tmp_path: Path) -> None:
    trace = Trace(tmp_path)
    mounted = 'mount --bind /usr /usr; mount --bind /etc/hostname /etc/hostname; exec "$@"'
    command = ["unshare", "--mount", "/bin/bash", "-c", mounted, "-", *RUN, "/bin/bash", "-c"]
    result = run(*command, "touch /usr/bin/$MARK && ls /usr/bin/$MARK", env=trace.environment)
    assert (result.returncode, result.stdout) == (0, f"/usr/bin/{trace.mark}\n"), result.stderr
    trace.check()


def test_without_root_and_sudo_one_line_says_so() -> None:
    # An ordinary user cannot read sources below a private home: inside a lab they can be moved.
    script = f'cp -R "{LAB}" "{LAB.parent}/tools" /opt/; rm /usr/bin/sudo; exec /opt/lab/login carol /opt/lab/run true'
    result = lab("/bin/bash", "-c", script)
    assert result.returncode == 1
    assert result.stderr == "lab: needs root, and there is no sudo to get it\n"


def test_where_namespaces_are_not_allowed_one_line_says_so() -> None:
    result = run("setpriv", "--bounding-set=-sys_admin", "--inh-caps=-sys_admin", *RUN, "true")
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
    result = run(RUN[0], "--build", tmp_path, "true")
    assert result.returncode == 1
    assert result.stderr == f"lab: {tmp_path}/lab/lab_intercept is missing: build the program first\n"


def test_an_ordinary_user_gets_root_through_sudo_and_housekeeping_stays_out_of_the_journal() -> None:
    script = f"""
        cp -R "{LAB}" "{LAB.parent}/tools" /opt/
        sed -i '/%admin/s/ALL$/NOPASSWD: ALL/' /etc/sudoers
        exec /opt/lab/login alice /opt/lab/run --build "{BUILD}" -- \\
          /bin/bash -c 'id -u; cat /var/lab/journal'
    """
    result = lab("/bin/bash", "-c", script)
    assert (result.returncode, result.stdout, result.stderr) == (0, "0\n", "")


def test_programs_in_the_lab_reach_the_display_only_when_asked_to() -> None:
    display = Display()
    question = ["xwininfo", "-root"]
    with_display = [RUN[0], "--display", *RUN[1:], *question]
    try:
        assert lab(*question, env=display.environment).returncode == 1
        assert run(*with_display, env=display.environment).returncode == 0
    finally:
        display.close()
    remote = run(*with_display, env=os.environ | {"DISPLAY": "localhost:10"})
    assert remote.returncode == 1
    assert remote.stderr == (
        "lab: --display needs a local X display, and DISPLAY is 'localhost:10'\n"
    )
