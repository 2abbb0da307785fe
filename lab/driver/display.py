"""A private X display."""

import ctypes
import os
import subprocess
from pathlib import Path
from typing import NamedTuple

from .commands import run


class Geometry(NamedTuple):
    """A window on the screen."""

    left: int
    top: int
    width: int
    height: int


Colour = tuple[int, int, int]
WHITE: Colour = (255, 255, 255)


class Display:
    """An X server with one screen and no window manager: windows have no frame, keys go to the
    window under the pointer."""

    def __init__(self, size: str = "1280x900x24") -> None:
        reading, writing = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", size, "-ac", "-noreset"]
            + ["-nolisten", "tcp"],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            pass_fds=[writing],
        )
        os.close(writing)
        with os.fdopen(reading) as announced:
            number = announced.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.name = f":{number}"
        self.environment = os.environ | {"DISPLAY": self.name}
        self._x11 = ctypes.CDLL("libX11.so.6")
        for function in ("XOpenDisplay", "XGetImage"):
            getattr(self._x11, function).restype = ctypes.c_void_p
        for function in ("XGetPixel", "XDefaultRootWindow"):
            getattr(self._x11, function).restype = ctypes.c_ulong
        self._connection = ctypes.c_void_p(self._x11.XOpenDisplay(self.name.encode()))
        self._root = ctypes.c_ulong(self._x11.XDefaultRootWindow(self._connection))

    def close(self) -> None:
        self._x11.XCloseDisplay(self._connection)
        self._server.terminate()
        self._server.wait()

    def xdotool(self, *words: object) -> str:
        """Runs xdotool and returns what it prints: nothing when it fails, for example because a
        window is gone."""
        return run("xdotool", *words, env=self.environment).stdout

    def geometry(self, window: str) -> Geometry | None:
        """Place and size of a window, if it exists."""
        text = self.xdotool("getwindowgeometry", "--shell", window)
        values = dict(line.split("=") for line in text.splitlines())
        names = ("X", "Y", "WIDTH", "HEIGHT")
        return Geometry(*(int(values[name]) for name in names)) if values else None

    def pixel(self, x: int, y: int) -> Colour:
        """The colour of a point of the screen: red, green, blue."""
        all_planes, as_pixels = ctypes.c_ulong(2**64 - 1), 2
        image = ctypes.c_void_p(
            self._x11.XGetImage(self._connection, self._root, x, y, 1, 1, all_planes, as_pixels)
        )
        value = self._x11.XGetPixel(image, 0, 0)
        self._x11.XDestroyImage(image)
        return value >> 16 & 255, value >> 8 & 255, value & 255

    def screenshot(self, file: Path) -> None:
        """Writes the whole screen to a PNG file."""
        file.parent.mkdir(parents=True, exist_ok=True)
        run("import", "-window", "root", file, env=self.environment, check=True)
