"""A display on which windows have frames, and pictures of them."""

import re
import subprocess
import time
from collections import deque
from pathlib import Path

from .display import Display, Geometry
from .waiting import wait_until

OPENBOX = Path(__file__).with_name("openbox")
BLINK = 1.5  # seconds in which the insertion point blinks at least once


class FramedDisplay(Display):
    """A display with a window manager. Keys go to the active window, not to the one under the pointer."""

    def __init__(self) -> None:
        super().__init__()
        self._manager = subprocess.Popen(
            ["openbox", "--config-file", OPENBOX / "rc.xml"],
            env=self.environment | {"XDG_DATA_HOME": str(OPENBOX)},
            stderr=subprocess.DEVNULL,
        )
        ready = ["xprop", "-root", "-notype", "_NET_SUPPORTING_WM_CHECK"]
        wait_until(lambda: "0x" in self._output(*ready).decode(), "window manager")

    def close(self) -> None:
        self._manager.terminate()
        self._manager.wait()
        super().close()

    def _output(self, *command: str) -> bytes:
        return subprocess.run(command, env=self.environment, capture_output=True, check=False).stdout

    def geometry(self, window: str) -> Geometry | None:
        """Within a frame, where xdotool counts the frame twice."""
        text = self._output("xwininfo", "-id", window).decode()
        names = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        found = [re.search(rf"{name}: +(-?\d+)", text) for name in names]
        values = [int(match[1]) for match in found if match]
        return Geometry(*values) if len(values) == len(names) else None

    def _shot(self, window: str) -> bytes:
        return self._output("import", "-frame", "-window", window, "-depth", "8", "ppm:-")

    def save_picture(self, window: str, file: Path) -> None:
        """Writes a picture of a window, with its frame, once only the insertion point changes.

        The picture shows the insertion point: it is the darkest of the shots.
        """
        shots: deque[tuple[float, bytes]] = deque()
        start = time.monotonic()
        while (now := time.monotonic()) - start < BLINK or not self._is_steady(shots):
            if now - start > 20:
                raise TimeoutError(f"{file.name}: the window keeps changing")
            shots.append((now, self._shot(window)))
            while now - shots[0][0] > BLINK:
                shots.popleft()
        darkest = min({shot for _, shot in shots}, key=sum)
        file.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["convert", "ppm:-", "-strip", f"png:{file}"], input=darkest, check=True)

    @staticmethod
    def _is_steady(shots: deque[tuple[float, bytes]]) -> bool:
        """Whether the shots are all the same, except for one thing that blinks."""
        pictures = [shot for _, shot in shots]
        return len(set(pictures)) <= 2 and pictures[0] in pictures[len(pictures) // 2 :]
