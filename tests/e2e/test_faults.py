"""Faults during Apply: in each command that it runs, in the folder and the file that it writes, and the
program killed. Unless killed it runs to its end; the file is always the old or the new one."""

import os
import re
import signal
import subprocess
import time
from collections.abc import Callable, Iterator
from pathlib import Path

import pytest
from apply_model import NOISE, ApplyModel, Place
from driver.machine import PREFERENCES, SERVER_PLIST, Machine
from driver.program import Program, Window
from driver.waiting import wait_until
from expected_commands import server_plist

pytest.register_assert_rewrite("faults")

from faults import CLEAN, COMMANDS, NEW, OLD, Ready, Start, after_apply, entries

LAST_BEFORE_FILE = CLEAN.shells_before_file - 1
ELSEWHERE = PREFERENCES.parent / "elsewhere"
PAGE = os.sysconf("SC_PAGE_SIZE")
HANG = 2
Tried = Callable[[object], None]


def place_name(place: Place) -> str:
    return f"{place.shell + 1:02}.{place.command}-{Path(COMMANDS[place].argv[0]).name}"


def other_files() -> list[str]:
    """The other files in its folder."""
    return [file.name for file in PREFERENCES.iterdir() if file != SERVER_PLIST]


@pytest.fixture(scope="session")
def tried(request: pytest.FixtureRequest) -> Iterator[Tried]:
    """Collects the faults that were tried; prints how many."""
    faults: list[object] = []
    yield faults.append
    capture = request.config.pluginmanager.get_plugin("capturemanager")
    with capture.global_and_fixture_disabled():
        print(f"\n{len(faults)} faults tried")


@pytest.fixture
def ready(machine: Machine, start: Start) -> Ready:
    return Ready(machine, start)


each_command = pytest.mark.parametrize("place", COMMANDS, ids=place_name)
each_shell = pytest.mark.parametrize(
    "place", [place for place in COMMANDS if place.command == 0], ids=place_name
)


def test_the_matrix_has_all_commands() -> None:
    assert len(CLEAN.shells) == 14
    assert len(COMMANDS) == len(CLEAN.journal) == 57


@each_command
@pytest.mark.parametrize(
    "fault",
    [
        {"exit": 1},
        {"signal": signal.SIGTERM},
        {"signal": signal.SIGKILL},
        {"stderr": len(NOISE)},
    ],
    ids=["exit", "SIGTERM", "SIGKILL", "noisy"],
)
def test_a_disturbed_command_skips_no_other_step(
    ready: Ready, tried: Tried, place: Place, fault: dict[str, int]
) -> None:
    noisy = "stderr" in fault
    ready.add_fault(place, **fault)
    ready.apply()
    ready.check_end(ApplyModel(place, ends=not noisy, noisy=noisy))
    assert ready.was_disturbed()
    assert SERVER_PLIST.read_bytes() == NEW
    assert other_files() == []
    tried((place, fault))


@pytest.mark.parametrize("number", sorted({place.command for place in COMMANDS}))
def test_hanging_commands_are_waited_for(ready: Ready, tried: Tried, number: int) -> None:
    # One command of each shell in turn, which leaves the others as they are.
    places = [place for place in COMMANDS if place.command == number]
    for place in places:
        ready.add_fault(place, delay=HANG)
    began = time.monotonic()
    ready.apply()
    for i, place in enumerate(places):
        wait_until(lambda: ready.was_disturbed(i), "call of the command")
        assert time.monotonic() - began > i * HANG
        assert len(ready.children()) == 1
        assert SERVER_PLIST.read_bytes() == (OLD if place.shell <= LAST_BEFORE_FILE else NEW)
        assert other_files() == []
        tried((place, "hangs"))
    ready.check_end()
    assert time.monotonic() - began > len(places) * HANG
    assert SERVER_PLIST.read_bytes() == NEW
    assert other_files() == []


@each_shell
def test_when_it_is_killed_the_running_shell_is_the_last_one(
    ready: Ready, tried: Tried, place: Place
) -> None:
    ready.add_fault(place, signal=signal.SIGSTOP)
    ready.apply()
    child = wait_until(ready.stopped_child, "stopped shell")
    assert len(ready.children()) == 1
    ready.program.kill()
    os.kill(child, signal.SIGCONT)
    ready.wait_for_processes()
    ready.check_state_after(place.shell)
    assert ready.program.output.splitlines() == CLEAN.shells[place.shell].output
    assert SERVER_PLIST.read_bytes() == (OLD if place.shell <= LAST_BEFORE_FILE else NEW)
    assert other_files() == []
    tried((place, "death"))


def trace_file_accesses(ready: Ready, *options: str) -> list[str]:
    """Applies, and returns the system calls that have to do with files or descriptors, from the end
    of the last shell before the file on."""
    ready.add_fault(Place(LAST_BEFORE_FILE, 0), signal=signal.SIGSTOP)
    ready.apply()
    child = wait_until(ready.stopped_child, "stopped shell")
    command = ["strace", "--trace=%file,%desc", f"--attach={ready.program.pid}", *options]
    with subprocess.Popen(
        command, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True
    ) as tracer:
        assert tracer.stderr is not None
        assert "attached" in tracer.stderr.readline()
        os.kill(child, signal.SIGCONT)
        return re.findall(r"^(\w+)\(", tracer.stderr.read(), re.MULTILINE)


def test_when_it_is_killed_while_it_writes_the_file_is_complete(
    ready: Ready, machine: Machine, start: Start, tried: Tried
) -> None:
    calls = trace_file_accesses(ready)
    ready.check_end()
    for i, call in enumerate(calls):
        machine.reset()
        ready = Ready(machine, start)
        # The tracer kills before the system does anything.
        kill = f"--inject={call}:signal=KILL:when={calls[: i + 1].count(call)}"
        assert trace_file_accesses(ready, kill) == calls[: i + 1]
        assert ready.program.wait() == -signal.SIGKILL
        ready.wait_for_processes()
        ready.check_state_after(LAST_BEFORE_FILE)
        content = SERVER_PLIST.read_bytes()
        assert content in (OLD, NEW)
        assert len(other_files()) <= 1
        tried(("death", i))
        if content == NEW:
            break
    # Before that, at least a temporary file was created, written and renamed.
    assert content == NEW
    assert i > 3


@pytest.fixture
def restored() -> Iterator[None]:
    """Makes the folder an ordinary one again."""
    yield
    subprocess.run(["umount", PREFERENCES], stderr=subprocess.DEVNULL, check=False)
    subprocess.run(["rm", "-rf", PREFERENCES, ELSEWHERE], check=True)


# What is done to folder and file, and the error, or the permissions of the new file.
STATES: dict[str, tuple[str, str | int]] = {
    "folder missing": ("rm $FILE; rmdir $FOLDER", "No such file or directory"),
    "folder without permission": ("chmod 555 $FOLDER", "Permission denied"),
    "folder on a read-only volume": (
        "mount --bind $FOLDER $FOLDER; mount -o remount,bind,ro $FOLDER",
        "Read-only file system",
    ),
    "folder linked": ("mv $FOLDER $ELSEWHERE; ln -s $ELSEWHERE $FOLDER", 0o644),
    "folder linked to nothing": (
        "rm $FILE; rmdir $FOLDER; ln -s $ELSEWHERE $FOLDER",
        "No such file or directory",
    ),
    "folder is a file": ("rm $FILE; rmdir $FOLDER; touch $FOLDER", "Not a directory"),
    "file missing": ("rm $FILE", 0o644),
    "file present": ("test -f $FILE", 0o644),
    "file read-only": ("chmod 444 $FILE", 0o444),
    "file of root": ("chown root:root $FILE; chmod 600 $FILE", 0o600),
    "file with a second name": ("ln $FILE $ELSEWHERE", 0o644),
    "file linked": ("mv $FILE $ELSEWHERE; ln -s $ELSEWHERE $FILE", 0o644),
    "file linked to nothing": ("rm $FILE; ln -s $ELSEWHERE $FILE", 0o644),
    "file is a folder": ("rm $FILE; mkdir $FILE", "Is a directory"),
    "file is a folder with content": ("rm $FILE; mkdir $FILE; touch $FILE/x", "Is a directory"),
}


@pytest.mark.parametrize("state", STATES)
def test_the_file_is_new_or_nothing_has_changed(
    ready: Ready, restored: None, tried: Tried, state: str
) -> None:
    script, result = STATES[state]
    paths = {"FOLDER": str(PREFERENCES), "FILE": str(SERVER_PLIST), "ELSEWHERE": str(ELSEWHERE)}
    subprocess.run(["/bin/bash", "-e", "-c", script], env=os.environ | paths, check=True)
    before = entries()
    ready.apply()
    if isinstance(result, str):
        ready.check_end(error=result)
        assert entries() == before
    else:
        ready.check_end()
        assert entries() == after_apply(before, result, NEW)
    tried(state)


@pytest.mark.parametrize(
    ("pages", "names", "fits"),
    [(0, 9, False), (1, 9, False), (2, 9, False), (3, 0, False), (3, 9, True)],
    ids=["full", "a_third_fits", "two_thirds_fit", "no_name_fits", "everything_fits"],
)
def test_a_file_that_does_not_fit_is_not_begun(
    machine: Machine,
    start: Start,
    restored: None,
    tried: Tried,
    monkeypatch: pytest.MonkeyPatch,
    pages: int,
    names: int,
    fits: bool,
) -> None:
    # A window counts as open when its field is white, which a field with so long a text is not.
    def settings_window(program: Program) -> Window:
        return program.window("ServerWindowController", "port")

    monkeypatch.setattr(Program, "settings_window", settings_window)
    server = "h" * 2 * PAGE
    ready = Ready(machine, start, server_plist("fr", server, "4000", True))
    ready.window.choose("mode", 1)
    SERVER_PLIST.unlink()
    group = PREFERENCES.stat().st_gid
    options = f"mode=775,gid={group},size={(pages + 2) * PAGE},nr_inodes={names + 3}"
    subprocess.run(["mount", "-t", "tmpfs", "-o", options, "faults", PREFERENCES], check=True)
    machine.write_server_plist(OLD)
    (PREFERENCES / "filler").write_bytes(bytes(PAGE))
    free = os.statvfs(PREFERENCES)
    assert (free.f_bavail, free.f_ffree) == (pages, names)
    before = entries()
    # The pop-up has the keyboard.
    ready.window.click("Apply_button")
    if fits:
        ready.check_end()
        new = server_plist("fr", server, "4000", False)
        assert entries() == after_apply(before, 0o644, new)
    else:
        ready.check_end(error="No space left on device")
        assert entries() == before
        tried((pages, names))
