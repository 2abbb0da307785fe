"""Waits for events of windows, files and processes without polling, and clicks without a helper
process. All times are those of time.monotonic()."""

import ctypes
import os
import select
import time
from pathlib import Path

from driver.display import Display

SUBSTRUCTURE_NOTIFY = 1 << 19
MAP_NOTIFY = 19
WINDOW_OF_MAP_EVENT = 5  # the sixth long of the event
IN_MODIFY, IN_OPEN = 2, 32
ON_ERROR = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)


@ON_ERROR
def _ignore(_display: object, _error: object) -> int:
    """A window may be gone before its size is queried."""
    return 0


class Observer:
    """A second connection to a display."""

    def __init__(self, display: Display):
        self._x11 = ctypes.CDLL("libX11.so.6")
        self._xtst = ctypes.CDLL("libXtst.so.6")
        self._x11.XOpenDisplay.restype = ctypes.c_void_p
        self._x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self._x11.XSetErrorHandler(_ignore)
        self._connection = ctypes.c_void_p(self._x11.XOpenDisplay(display.name.encode()))
        root = ctypes.c_ulong(self._x11.XDefaultRootWindow(self._connection))
        self._x11.XSelectInput(self._connection, root, ctypes.c_long(SUBSTRUCTURE_NOTIFY))
        self._x11.XSync(self._connection, True)

    def forget(self) -> None:
        """Discards all events so far."""
        self._x11.XSync(self._connection, True)

    def wait_for_window(self, size: tuple[int, int], limit: float = 20) -> float:
        """The time when a window of that size was mapped after the last `forget`."""
        event = (ctypes.c_ulong * 24)()
        end = time.monotonic() + limit
        while time.monotonic() < end:
            if not self._x11.XPending(self._connection):
                number = self._x11.XConnectionNumber(self._connection)
                select.select([number], [], [], limit)
                continue
            now = time.monotonic()
            self._x11.XNextEvent(self._connection, event)
            if event[0] & 0xFFFFFFFF != MAP_NOTIFY:
                continue
            if self._size(event[WINDOW_OF_MAP_EVENT]) == size:
                return now
        raise TimeoutError(f"no window of {size} within {limit} s")

    def _size(self, window: int) -> tuple[int, int]:
        root, x, y, width, height, border, depth = (ctypes.c_ulong() for _ in range(7))
        arguments = map(ctypes.byref, (root, x, y, width, height, border, depth))
        self._x11.XGetGeometry(self._connection, ctypes.c_ulong(window), *arguments)
        return width.value, height.value

    def click(self) -> float:
        """Clicks at the pointer; the time when the button was released."""
        for is_press in (True, False):
            self._xtst.XTestFakeButtonEvent(self._connection, 1, is_press, ctypes.c_ulong(0))
        now = time.monotonic()
        self._x11.XSync(self._connection, False)
        return now


class FileWatch:
    """Waits for the next event of a file."""

    def __init__(self, file: Path, what: int):
        libc = ctypes.CDLL(None, use_errno=True)
        self._events = libc.inotify_init()
        if libc.inotify_add_watch(self._events, str(file).encode(), what) < 0:
            raise OSError(ctypes.get_errno(), str(file))

    def wait(self) -> float:
        select.select([self._events], [], [])
        now = time.monotonic()
        os.close(self._events)
        return now


def end_of(pid: int) -> float:
    """Waits for that process to end; the time when it did."""
    process = os.pidfd_open(pid)
    select.select([process], [], [])
    now = time.monotonic()
    os.close(process)
    return now
