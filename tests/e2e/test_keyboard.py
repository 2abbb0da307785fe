"""Everything that the windows offer, with the keyboard alone. Alt is the Command key here."""

from collections.abc import Callable, Iterator

import pytest
from driver.editions import EDITIONS
from driver.keyboard import KeyboardDisplay, choose_with_keys, has_selected_text, wait_for_keyboard
from driver.machine import SERVER_PLIST, Machine, listen
from driver.program import Program, Window
from expected_commands import ALICE, apply_by_alice, port_test, profile_check, server_plist

QUORVIX = EDITIONS["Quorvix"]
LOGIN = profile_check("alice", ALICE, QUORVIX)
OLD = server_plist("en", "192.0.2.1", "4000", False)


@pytest.fixture(scope="module")
def display() -> Iterator[KeyboardDisplay]:
    result = KeyboardDisplay()
    yield result
    result.close()


@pytest.fixture
def program(machine: Machine, start: Callable[..., Program]) -> Program:
    """The program over stored settings, with its login window open."""
    machine.write_server_plist(OLD)
    program = start(edition="Quorvix")
    program.login_window()
    return program


@pytest.fixture
def window(program: Program, display: KeyboardDisplay) -> Window:
    """The settings window, whose server field has the keyboard."""
    login = program.login_window()
    login.type_login("alice", ALICE.password)
    login.press("Return")
    settings = program.settings_window()
    wait_for_keyboard(display, settings)
    return settings


@pytest.mark.parametrize("way", [["Return"], ["Tab", "Tab", "space"]], ids=["Return", "button"])
def test_every_setting_is_changed_tested_and_applied(
    machine: Machine, program: Program, window: Window, way: list[str]
) -> None:
    with listen("192.0.2.10") as server:
        port = server.getsockname()[1]
        window.press("shift+Tab", "shift+Tab")
        choose_with_keys(window, 3)  # German
        window.press("Tab")
        choose_with_keys(window, 1, "space")  # a host name
        window.press("Tab")
        window.type("fileserver")
        window.press("Tab")
        window.type(str(port))
        window.press("Tab")
        choose_with_keys(window, 1)  # try the port
        window.press("Tab", "space")
        window.wait_until(lambda: window.status() == "reachable", "success of the test")
    window.press("Tab", "space")  # reset the agent's settings
    window.press(*way)
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist("de", "fileserver", str(port), False)
    test = port_test("alice", "fileserver", port)
    assert machine.journal() == LOGIN + test + apply_by_alice(QUORVIX, stops=(), reset=True)


@pytest.mark.parametrize("key", ["Return", "KP_Enter", "Escape"])
def test_keys_of_an_open_menu_are_its_own(
    machine: Machine, program: Program, window: Window, key: str
) -> None:
    window.press("shift+Tab")
    choose_with_keys(window, 1, key)
    # To Quit: server, port, kind of test, Test, reset; the profile's check box is passed over.
    window.press("Tab", "Tab", "Tab", "Tab", "Tab", "Tab", "space")
    assert program.wait() == 0
    assert machine.journal() == LOGIN
    assert SERVER_PLIST.read_bytes() == OLD


@pytest.mark.parametrize("keys", [["Tab"] * 8, ["shift+Tab"] * 8], ids=["forward", "backward"])
def test_tab_goes_round_the_controls_and_back_to_the_first(
    program: Program, window: Window, display: KeyboardDisplay, keys: list[str]
) -> None:
    window.press(keys[0])
    window.wait_until(lambda: not has_selected_text(display, window, "servername"), "next control")
    window.press(*keys)
    wait_for_keyboard(display, window)
    window.press("Tab", "Tab", "Tab", "Tab", "Tab", "space")
    assert program.wait() == 0


def test_a_copy_of_the_server_replaces_the_port(program: Program, window: Window) -> None:
    window.type("4711")
    window.press("alt+a", "alt+c", "alt+v")
    window.press("alt+a")
    window.type("192.0.2.9")
    window.press("Tab", "alt+a", "alt+v", "Return")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist("en", "192.0.2.9", "4711", False)


def test_command_q_ends_the_program_where_escape_does_not(program: Program, window: Window) -> None:
    window.press("Escape")
    window.type("lost")
    assert program.poll() is None
    window.press("alt+q")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == OLD


@pytest.mark.parametrize("keys", [["Escape"], ["Tab", "Tab", "space"]], ids=["Escape", "button"])
def test_quit_in_the_login_window(machine: Machine, program: Program, keys: list[str]) -> None:
    login = program.login_window()
    login.type("alice")
    login.press(*keys)
    assert program.wait() == 0
    assert machine.journal() == []
