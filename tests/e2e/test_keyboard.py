"""Everything that the windows offer, with the keyboard alone."""

from collections.abc import Callable, Iterator

import pytest
from driver.editions import EDITIONS
from driver.keyboard import KeyboardDisplay, choose_with_keys, has_selected_text, wait_for_keyboard
from driver.machine import SERVER_PLIST, Machine, listen
from driver.program import Program, Window
from expected_commands import ALICE, apply_by_alice, port_test, profile_check, server_plist

Start = Callable[..., Program]
LogIn = Callable[..., tuple[Program, Window]]
QUORVIX = EDITIONS["Quorvix"]
LOGIN = profile_check("alice", ALICE, QUORVIX)
OLD = server_plist("en", "192.0.2.1", "4000", False)


@pytest.fixture(scope="module")
def display() -> Iterator[KeyboardDisplay]:
    result = KeyboardDisplay()
    yield result
    result.close()


@pytest.fixture
def log_in(machine: Machine, start: Start, display: KeyboardDisplay) -> LogIn:
    """Starts the program over stored settings and logs in."""

    def run(edition: str = "Quorvix") -> tuple[Program, Window]:
        machine.write_server_plist(OLD)
        program = start(edition=edition)
        login = program.login_window()
        login.type("alice")
        login.press("Tab")
        login.type(ALICE.password)
        login.press("Return")
        settings = program.settings_window()
        wait_for_keyboard(display, settings)
        return program, settings

    return run


@pytest.mark.parametrize("way", [["Return"], ["Tab", "Tab", "space"]], ids=["Return", "button"])
def test_every_setting_is_changed_tested_and_applied(
    machine: Machine, log_in: LogIn, display: KeyboardDisplay, way: list[str]
) -> None:
    program, window = log_in()
    with listen("192.0.2.10") as server:
        port = server.getsockname()[1]
        window.press("shift+Tab", "shift+Tab")
        choose_with_keys(display, window, 3)  # German
        window.press("Tab")
        choose_with_keys(display, window, 1, "space")  # a host name
        window.press("Tab")
        window.type("fileserver")
        window.press("Tab")
        window.type(str(port))
        window.press("Tab")
        choose_with_keys(display, window, 1)  # try the port
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
    machine: Machine, log_in: LogIn, display: KeyboardDisplay, key: str
) -> None:
    program, window = log_in()
    window.press("shift+Tab")
    choose_with_keys(display, window, 1, key)
    # To Quit: server, port, kind of test, Test, reset; the profile's check box is passed over.
    window.press("Tab", "Tab", "Tab", "Tab", "Tab", "Tab", "space")
    assert program.wait() == 0
    assert machine.journal() == LOGIN
    assert SERVER_PLIST.read_bytes() == OLD


@pytest.mark.parametrize("keys", [["Tab"] * 8, ["shift+Tab"] * 8], ids=["forward", "backward"])
def test_the_stops_come_round(log_in: LogIn, display: KeyboardDisplay, keys: list[str]) -> None:
    program, window = log_in()
    window.press(keys[0])
    window.wait_until(lambda: not has_selected_text(display, window, "servername"), "next stop")
    window.press(*keys)
    wait_for_keyboard(display, window)
    window.press("Tab", "Tab", "Tab", "Tab", "Tab", "space")
    assert program.wait() == 0


def test_quit_in_the_login_window(machine: Machine, start: Start) -> None:
    program = start()
    program.login_window().press("Tab", "Tab", "space")
    assert program.wait() == 0
    assert machine.journal() == []
