"""The editing keys, Command-Q and Escape, pressed on a real keyboard. Alt is the Command key here."""

from collections.abc import Callable, Iterator

import pytest
from driver.keyboard import KeyboardDisplay, wait_for_keyboard
from driver.machine import SERVER_PLIST, Machine
from driver.program import Program, Window
from expected_commands import ALICE, server_plist

OLD = server_plist("en", "192.0.2.1", "4000", False)


@pytest.fixture(scope="module")
def display() -> Iterator[KeyboardDisplay]:
    result = KeyboardDisplay()
    yield result
    result.close()


@pytest.fixture
def settings(
    machine: Machine, start: Callable[..., Program], display: KeyboardDisplay
) -> tuple[Program, Window]:
    """The program and its settings window, whose server field has the keyboard."""
    machine.write_server_plist(OLD)
    program = start(edition="Quorvix")
    login = program.login_window()
    login.type("alice")
    login.press("Tab")
    login.type(ALICE.password)
    login.press("Return")
    window = program.settings_window()
    wait_for_keyboard(display, window)
    return program, window


def test_cut_text_is_pasted_back_and_applied(settings: tuple[Program, Window]) -> None:
    program, window = settings
    window.press("alt+a", "alt+x", "alt+v")
    window.type("5")
    window.press("Return")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist("en", "192.0.2.15", "4000", False)


def test_a_copy_of_the_server_replaces_the_port(settings: tuple[Program, Window]) -> None:
    program, window = settings
    window.type("4711")
    window.press("alt+a", "alt+c", "alt+v")
    window.press("alt+a")
    window.type("192.0.2.9")
    window.press("Tab", "alt+a", "alt+v", "Return")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist("en", "192.0.2.9", "4711", False)


def test_command_q_ends_the_program_where_escape_does_not(
    settings: tuple[Program, Window],
) -> None:
    program, window = settings
    window.press("Escape")
    window.type("lost")
    assert program.poll() is None
    window.press("alt+q")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == OLD


def test_escape_quits_the_login_window(machine: Machine, start: Callable[..., Program]) -> None:
    program = start(edition="Quorvix")
    login = program.login_window()
    login.type("alice")
    login.press("Escape")
    assert program.wait() == 0
    assert machine.journal() == []
