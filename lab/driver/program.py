"""The program, driven by real keyboard and mouse events."""

import re
import subprocess
from collections.abc import Callable
from pathlib import Path

from .display import WHITE, Colour, Display, Geometry
from .editions import EDITIONS, Edition
from .interface import Interface
from .paths import LAB
from .waiting import wait_until

MENU_HIGHLIGHT: Colour = (10, 122, 255)


class Window:
    """A visible window of the program. Controls are named by their outlets."""

    def __init__(self, display: Display, number: str, interface: Interface):
        self.number = number
        self._display = display
        self._interface = interface

    def wait_until(self, condition: Callable[[], object], what: str) -> None:
        """Waits until a condition on this window holds."""
        wait_until(condition, what)

    def place(self, outlet: str) -> tuple[int, int]:
        """The middle of a control on the screen."""
        geometry = self._display.geometry(self.number)
        if geometry is None:
            raise RuntimeError(f"the window with {outlet} is gone")
        x, y = self._interface.box(outlet).middle
        return geometry.left + x, geometry.top + y

    def colour(self, outlet: str) -> Colour:
        """The colour in the middle of a control."""
        return self._display.pixel(*self.place(outlet))

    def _region(self, outlet: str, width: int) -> list[Colour]:
        """The colours around the middle line of a control's left part."""
        x, y = self.place(outlet)
        left = x - round(self._interface.box(outlet).width / 2) + 8
        return [self._display.pixel(left + i, y + j) for i in range(width) for j in (-2, 0, 2)]

    def is_empty(self, outlet: str) -> bool:
        """Whether a text field shows no text. (The insertion point is left of the region.)"""
        return all(min(colour) > 128 for colour in self._region(outlet, 40))

    def shows_text(self, outlet: str) -> bool:
        return not self.is_empty(outlet)

    def status(self) -> str:
        """What the status image of the connection test says, by its colour."""
        colours = self._region("testStatus", 8)
        if any(green > max(red, blue) + 60 for red, green, blue in colours):
            return "reachable"
        if any(red > max(green, blue) + 60 for red, green, blue in colours):
            return "unreachable"
        return "unknown"

    def click(self, outlet: str) -> None:
        self._display.xdotool("mousemove", *self.place(outlet), "click", 1)

    def menu_is_open(self) -> bool:
        """Whether a menu of one of the pop-up buttons is open."""
        return bool(self._display.xdotool("search", "--onlyvisible", "--name", "^Window$"))

    def choose(self, outlet: str, steps: int) -> None:
        """Chooses the item of a pop-up that many steps below the current one (above: negative).

        Each item is as high as the pop-up; the one under the pointer is highlighted.
        """
        display = self._display
        x, y = self.place(outlet)
        box = self._interface.box(outlet)
        x += round(box.width / 4)
        display.xdotool("mousemove", x, y, "mousedown", 1)
        wait_until(self.menu_is_open, f"menu of {outlet}")
        wait_until(lambda: display.pixel(x, y) == MENU_HIGHLIGHT, f"current item of {outlet}")
        y += steps * round(box.height)
        display.xdotool("mousemove", x, y)
        wait_until(lambda: display.pixel(x, y) == MENU_HIGHLIGHT, f"item of {outlet}")
        display.xdotool("mouseup", 1)
        wait_until(lambda: not self.menu_is_open(), f"end of the menu of {outlet}")

    def fill(self, outlet: str, text: str) -> None:
        """Replaces the text of a field by typing."""
        self.click(outlet)
        self.press("Home", "shift+End", "BackSpace")
        self.type(text)

    def type(self, text: str) -> None:
        if text:
            self._display.xdotool("type", "--delay", 2, "--", text)

    def press(self, *keys: str) -> None:
        self._display.xdotool("key", "--delay", 2, *keys)

    def type_login(self, user: str, password: str) -> None:
        """Types both fields of the login window, from the first, which has the keyboard."""
        self.type(user)
        self.press("Tab")
        self.type(password)


class Program:
    """The program, started by an account of the lab as from its session."""

    def __init__(
        self,
        display: Display,
        folder: Path,
        edition: str = "Zentavo",
        user: str = "alice",
        arguments: tuple[str, ...] = (),
        language: str = "en_US.UTF-8",
        executable: Path | None = None,
    ):
        self.edition: Edition = EDITIONS[edition]
        self._display = display
        self._output = folder / "stdout"
        self._errors = folder / "stderr"
        with self._output.open("wb") as output, self._errors.open("wb") as errors:
            self._process = subprocess.Popen(
                [LAB / "login", user, executable or self.edition.program, *arguments],
                env=display.environment | {"LANG": language},
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=errors,
                start_new_session=True,
            )

    @property
    def pid(self) -> int:
        return self._process.pid

    @property
    def output(self) -> str:
        return self._output.read_text(errors="surrogateescape")

    @property
    def errors(self) -> str:
        return self._errors.read_text(errors="surrogateescape")

    def _windows(self) -> dict[str, Geometry]:
        """Number and geometry of the visible windows with the edition's title."""
        pattern = f"^{re.escape(self.edition.title)}$"
        numbers = self._display.xdotool("search", "--onlyvisible", "--name", pattern).split()
        windows = {number: self._display.geometry(number) for number in numbers}
        return {number: geometry for number, geometry in windows.items() if geometry}

    def window(self, name: str, field: str, limit: float = 20) -> Window:
        """Waits for the window of an interface file until its field is drawn."""
        # The bundle's own file: the sources may have changed since it was built.
        interface = Interface(name, self.edition.program.parent / "Resources")

        def visible() -> Window | None:
            self._check_running()
            for number, (_, _, *size) in self._windows().items():
                if size == [interface.width, interface.height]:
                    window = Window(self._display, number, interface)
                    return window if window.colour(field) == WHITE else None
            return None

        return wait_until(visible, f"window {name}", limit)

    def login_window(self) -> Window:
        return self.window("MainMenu", "username")

    def settings_window(self) -> Window:
        return self.window("ServerWindowController", "servername")

    def log_in(self, user: str = "alice", password: str = "alice-pw") -> Window:
        """Logs in with the keyboard and returns the settings window."""
        window = self.login_window()
        window.click("username")
        window.type_login(user, password)
        window.press("Return")
        return self.settings_window()

    def wait_for_alert(self) -> None:
        """Waits for an alert and points at it, so that it gets the keyboard."""

        def visible() -> Geometry | None:
            self._check_running()
            return next(iter(self._windows().values()), None)

        left, top, width, height = wait_until(visible, "alert", 20)
        self._display.xdotool("mousemove", left + width // 2, top + height // 2)

    def _check_running(self) -> None:
        if self._process.poll() is not None:
            raise RuntimeError(f"the program ended with {self._process.returncode}:\n{self.errors}")

    def wait(self, limit: float = 30) -> int:
        """Waits for the end of the program and returns its exit status."""
        wait_until(lambda: self.poll() is not None, "end of the program", limit)
        return self._process.returncode

    def poll(self) -> int | None:
        return self._process.poll()

    def kill(self) -> None:
        self._process.kill()
        self._process.wait()
