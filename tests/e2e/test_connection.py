"""The connection test, and input that the test or Apply does not accept: each path once. The window tests
have the whole table of input."""

from collections.abc import Callable

import pytest
from driver.machine import SERVER_PLIST, Command, Machine, listen
from driver.program import Program, Window
from expected_commands import LOGIN, ping, port_test, server_plist

OpenSettings = Callable[..., tuple[Program, Window]]
PING, PORT = 0, 1
IP_ADDRESS, HOST_NAME = 0, 1


@pytest.fixture
def settings(machine: Machine, start: Callable[..., Program]) -> OpenSettings:
    """Opens the settings window over a stored server and port, with the modes chosen."""

    def open_window(
        server: str = "192.0.2.10", port: str = "6000", mode: int = IP_ADDRESS, test: int = PING
    ) -> tuple[Program, Window]:
        machine.write_server_plist(server_plist("en", server, port, False))
        program = start()
        window = program.log_in()
        if mode == HOST_NAME:
            window.choose("mode", 1)
        if test == PORT:
            window.choose("testChoice", 1)
        assert window.status() == "unknown"
        return program, window

    return open_window


def quit_and_read_journal(machine: Machine, program: Program, window: Window) -> list[Command]:
    window.click("Quit_button")
    assert program.wait() == 0
    return machine.journal()


@pytest.mark.parametrize(
    ("server", "mode", "status"),
    [
        ("::1", IP_ADDRESS, "reachable"),
        ("192.0.2.1", IP_ADDRESS, "unreachable"),
        ("fileserver", HOST_NAME, "reachable"),
        ("unknown-server", HOST_NAME, "unreachable"),
    ],
)
def test_ping_shows_whether_the_server_answers(
    machine: Machine, settings: OpenSettings, server: str, mode: int, status: str
) -> None:
    program, window = settings(server, "70000", mode)
    window.click("TestButton")
    window.wait_until(lambda: window.status() != "unknown", "result of the test")
    assert window.status() == status
    assert quit_and_read_journal(machine, program, window) == LOGIN + ping("alice", server)
    assert program.output.startswith("0\n")


@pytest.mark.parametrize("server", ["127.0.0.1", "::1"])
def test_the_port_test_tells_a_closed_port_from_a_listening_one(
    machine: Machine, settings: OpenSettings, server: str
) -> None:
    with listen(server) as listener:
        port = listener.getsockname()[1]
        program, window = settings(server, str(port), test=PORT)
        window.click("TestButton")
        window.wait_until(lambda: window.status() == "reachable", "success of the test")
    window.click("TestButton")
    window.wait_until(lambda: window.status() == "unreachable", "failure of the test")
    journal = quit_and_read_journal(machine, program, window)
    assert journal == LOGIN + port_test("alice", server, port) + port_test("alice", server, port)
    assert [line for line in program.output.splitlines() if line.isdecimal()] == ["1", "1"]


@pytest.mark.parametrize("button", ["TestButton", "Apply_button"])
def test_a_host_name_in_address_mode_is_removed_and_nothing_else_happens(
    machine: Machine, settings: OpenSettings, button: str
) -> None:
    program, window = settings("fileserver")
    before = SERVER_PLIST.read_bytes()
    window.click(button)
    window.wait_until(lambda: window.is_empty("servername"), "server removed")
    assert window.status() == "unknown"
    assert quit_and_read_journal(machine, program, window) == LOGIN
    assert program.output == ""
    assert SERVER_PLIST.read_bytes() == before


def test_apply_replaces_an_invalid_port_and_stops_and_a_second_apply_goes_through(
    machine: Machine, settings: OpenSettings
) -> None:
    program, window = settings(port="4000")
    before = SERVER_PLIST.read_bytes()
    window.fill("port", "65536")
    window.click("Apply_button")
    window.click("TestButton")
    window.wait_until(lambda: window.status() == "reachable", "success of the test")
    assert machine.journal() == LOGIN + ping("alice", "192.0.2.10")
    assert SERVER_PLIST.read_bytes() == before
    window.press("Return")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist("en", "192.0.2.10", "6000", False)


def test_apply_trims_what_is_typed_and_stores_it_as_it_is(settings: OpenSettings) -> None:
    program, window = settings(mode=HOST_NAME)
    window.fill("servername", " a<b>&c ")
    window.fill("port", " +80")
    window.press("Return")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist("en", "a<b>&c", "+80", False)
