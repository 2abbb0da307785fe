"""From the start of the program to the settings window, and out again."""

import functools
import shutil
import signal
import subprocess
from collections.abc import Callable, Iterator
from pathlib import Path

import pytest
from driver.display import Display
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, Machine
from driver.program import Program, Window
from expected_commands import LOGIN, profile_check

Start = Callable[..., Program]

every_edition = pytest.mark.parametrize("edition", EDITIONS)


def log_in(window: Window, user: str, password: str, with_button: bool = False) -> list[str]:
    """Logs in once what is typed is shown, so that a field emptied later is seen. Gives the fields."""
    window.click("username")
    window.type_login(user, password)
    typed = [field for field, text in [("username", user), ("password", password)] if text]
    for field in typed:
        window.wait_until(functools.partial(window.shows_text, field), f"text in {field}")
    if with_button:
        window.click("OkButton")
    else:
        window.press("Return")
    return typed


@every_edition
@pytest.mark.parametrize("key", ["Return", "space"])
def test_a_user_who_is_not_an_administrator_is_refused_before_anything_happens(
    machine: Machine, start: Start, display: Display, edition: str, key: str
) -> None:
    program = start(edition=edition, user="carol")
    program.wait_for_alert()
    display.xdotool("key", key)
    assert program.wait() == 0
    assert machine.journal() == []
    assert program.output == ""


@every_edition
def test_an_administrator_logs_in_and_quits_and_only_the_profile_is_asked_for(
    machine: Machine, start: Start, edition: str
) -> None:
    program = start(edition=edition, user="bob")
    window = program.log_in("bob", "bob-pw")
    window.click("Quit_button")
    assert program.wait() == 0
    bob = ACCOUNTS["bob"]
    assert machine.journal() == profile_check("bob", bob, EDITIONS[edition])
    assert program.output == ""


@pytest.mark.parametrize(
    ("user", "password", "button"),
    [
        ("alice", "wrong", True),
        ("alice", "alice-pw ", False),
        ("alice", "", False),
        ("", "alice-pw", True),
        ("nobody1", "alice-pw", False),
        ("carol", "carol-pw", True),
    ],
    ids=["wrong", "with a space", "no password", "no name", "unknown name", "not an administrator"],
)
def test_a_refused_login_empties_both_fields_and_a_right_one_may_follow(
    machine: Machine, start: Start, user: str, password: str, button: bool
) -> None:
    program = start()
    window = program.login_window()
    for field in log_in(window, user, password, button):
        window.wait_until(functools.partial(window.is_empty, field), f"{field} emptied")
    # The keyboard is back in an empty name field: a right login is typed without a click.
    window.type_login("alice", "alice-pw")
    window.press("Return")
    program.settings_window().click("Quit_button")
    assert program.wait() == 0
    assert machine.journal() == LOGIN


@pytest.fixture
def own_shadow_file() -> Iterator[None]:
    """Passwords in /etc/shadow, where they may expire. Each user can verify only their own there."""
    files = [Path("/etc/passwd"), Path("/etc/shadow")]
    before = [file.read_bytes() if file.exists() else None for file in files]
    subprocess.run(["pwconv"], check=True)
    yield
    for file, content in zip(files, before, strict=True):
        if content is None:
            file.unlink()
        else:
            file.write_bytes(content)


@pytest.mark.parametrize(
    ("change", "password", "accepted"),
    [
        (["true"], "bob-pw", True),
        (["chage", "--expiredate", "2020-01-01", "bob"], "bob-pw", False),
        (["chage", "--lastday", "0", "bob"], "bob-pw", False),
        (["usermod", "--lock", "bob"], "bob-pw", False),
        (["passwd", "--delete", "bob"], "", True),
        (["passwd", "--delete", "bob"], "bob-pw", False),
    ],
    ids=["usable", "expired", "password expired", "locked", "no password", "no password, one typed"],
)
def test_an_account_has_to_be_usable(
    start: Start, own_shadow_file: None, change: list[str], password: str, accepted: bool
) -> None:
    subprocess.run(change, check=True, stdout=subprocess.DEVNULL)
    program = start(user="bob")
    window = program.login_window()
    log_in(window, "bob", password)
    if accepted:
        program.settings_window().click("Quit_button")
    else:
        window.wait_until(functools.partial(window.is_empty, "username"), "name emptied")
        window.click("QuitButton")
    assert program.wait() == 0


def test_another_administrator_may_log_in_but_sudo_wants_the_runners_own_password(
    machine: Machine, start: Start
) -> None:
    machine.install_profiles(EDITIONS["Zentavo"].profile)
    program = start()
    program.log_in("bob", "bob-pw").click("Quit_button")
    assert program.wait() == 0
    assert machine.journal() == profile_check("alice", ACCOUNTS["bob"], EDITIONS["Zentavo"])


def test_profiles_that_answer_in_another_encoding_stop_the_program_without_its_secrets(
    machine: Machine, start: Start
) -> None:
    machine.add_fault("profiles", prints=b"\xe9\n")
    program = start()
    log_in(program.login_window(), "alice", "alice-pw")
    assert program.wait() == -signal.SIGABRT
    # That no password is printed is checked for every program; here the whole line is known.
    assert program.errors.splitlines()[-1] == "fatal error: output of /bin/sh is not UTF-8"
    assert "sudo" not in program.errors


def test_a_program_without_its_interface_file_says_so_and_stops(
    machine: Machine, start: Start
) -> None:
    executable = EDITIONS["Zentavo"].program
    broken = executable.parent.with_name("Broken.app")
    shutil.copytree(executable.parent, broken)
    (broken / "Resources/MainMenu.xib").unlink()
    program = start(executable=broken / executable.name)
    assert program.wait() == -signal.SIGABRT
    assert "fatal error: interface file MainMenu cannot be loaded from the bundle" in program.errors
    assert machine.journal() == []
