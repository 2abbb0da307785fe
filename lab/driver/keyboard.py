"""A display and windows that are used with the keyboard alone."""

from .display import WHITE, Display
from .program import Window

HIGHLIGHT = (179, 215, 255)
MOUSE = {"click", "mousedown", "mousemove", "mousemove_relative", "mouseup"}


class KeyboardDisplay(Display):
    """A display that refuses to move or press the mouse. It stays in the middle of the screen, where
    the program's windows open."""

    def xdotool(self, *words: object) -> str:
        assert not MOUSE & set(words), words
        return super().xdotool(*words)


def has_selected_text(display: Display, window: Window, outlet: str) -> bool:
    """Whether the text of a field is highlighted, as it is when the keyboard comes to the field.

    From the empty middle of the field to the left, either the highlight or the field's edge is next.
    """
    x, y = window.place(outlet)
    above_digits = y - 7
    while (colour := display.pixel(x, above_digits)) == WHITE:
        x -= 1
    return colour == HIGHLIGHT


def wait_for_keyboard(display: Display, window: Window) -> None:
    """Waits until the settings window has the keyboard, which starts in the server field."""
    window.wait_until(lambda: has_selected_text(display, window, "servername"), "keyboard focus")


def choose_with_keys(window: Window, steps: int, key: str = "Return") -> None:
    """Opens the pop-up that has the keyboard and chooses the item that many steps below."""
    window.press("space")
    window.wait_until(window.menu_is_open, "menu")
    window.press(*["Down"] * steps, key)
    window.wait_until(lambda: not window.menu_is_open(), "end of the menu")
