"""Takes the pictures of the windows, inside the lab. Started by script/pictures."""

import argparse
import re
import subprocess
import sys
import tempfile
import time
from collections import deque
from pathlib import Path

from driver.keyboard import wait_for_keyboard
from driver.machine import ACCOUNTS, EDITIONS, Edition, Machine
from driver.screen import Display, Program
from driver.waiting import wait_until

LANGUAGES = ("en", "fr", "it", "de", "es")
OFFERED = {"Quorvix": LANGUAGES, "Zentavo": ("en", "fr"), "Fennrow": ("en",), "Tollwick": ("en", "de")}
REFUSALS = ("Quorvix", "Zentavo")  # in five languages, in two
TOTAL = len(OFFERED) * len(LANGUAGES) + sum(map(len, OFFERED.values())) + len(REFUSALS)
# A plain frame with the title and the one button that the program's windows have.
WINDOW_MANAGER = """<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <theme>
    <name>Clearlooks</name>
    <titleLayout>CL</titleLayout>
    <font place="ActiveWindow"><name>DejaVu Sans</name><size>9</size><weight>bold</weight></font>
  </theme>
</openbox_config>
"""
BLINK = 1.5  # seconds; the insertion point comes and goes once within


class FramedDisplay(Display):
    """A display on which windows have frames."""

    def __init__(self, folder: Path):
        super().__init__()
        configuration = folder / "openbox.xml"
        configuration.write_text(WINDOW_MANAGER)
        self._manager = subprocess.Popen(
            ["openbox", "--config-file", configuration],
            env=self.environment,
            stderr=subprocess.DEVNULL,
        )
        ready = ["xprop", "-root", "-notype", "_NET_SUPPORTING_WM_CHECK"]
        wait_until(lambda: "0x" in self._output(ready).decode(), "window manager")

    def close(self) -> None:
        self._manager.terminate()
        self._manager.wait()
        super().close()

    def _output(self, command: list[str]) -> bytes:
        result = subprocess.run(command, env=self.environment, capture_output=True, check=False)
        return result.stdout

    def geometry(self, window: str) -> tuple[int, int, int, int] | None:
        """Within a frame, where xdotool counts the frame twice."""
        text = self._output(["xwininfo", "-id", window]).decode()
        names = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        found = [re.search(rf"{name}: +(-?\d+)", text) for name in names]
        return tuple(int(match[1]) for match in found) if all(found) else None

    def _shot(self, window: str) -> bytes:
        return self._output(["import", "-frame", "-window", window, "-depth", "8", "ppm:-"])

    def portrait(self, window: str, file: Path) -> None:
        """Writes a picture of a window, with its frame, once nothing in it changes any more.

        Only the insertion point may; the picture shows it: dark on white, it makes the darker one.
        """
        shots: deque[tuple[float, bytes]] = deque()
        start = time.monotonic()
        while (now := time.monotonic()) - start < BLINK or not self._at_rest(shots):
            if now - start > 20:
                raise TimeoutError(f"{file.name}: the window does not come to rest")
            shots.append((now, self._shot(window)))
            while now - shots[0][0] > BLINK:
                shots.popleft()
        darkest = min({shot for _, shot in shots}, key=sum)
        subprocess.run(["convert", "ppm:-", "-strip", f"png:{file}"], input=darkest, check=True)

    @staticmethod
    def _at_rest(shots: deque) -> bool:
        """Whether the shots are all the same, but for one thing that comes and goes."""
        pictures = [shot for _, shot in shots]
        return len(set(pictures)) <= 2 and pictures[0] in pictures[len(pictures) // 2 :]


class Photographer:
    """Takes one picture after the other and counts them on a terminal."""

    def __init__(self, folder: Path, scratch: Path):
        self._folder, self._scratch = folder, scratch
        self.files: list[Path] = []
        self._display = FramedDisplay(scratch)
        self._machine = Machine()

    def close(self) -> None:
        self._display.close()

    def _take(self, window: str, edition: Edition, name: str) -> None:
        file = self._folder / f"{edition.title.split()[0].lower()}-{name}.png"
        self._display.portrait(window, file)
        self.files.append(file)
        if sys.stderr.isatty():
            print(f"\r{len(self.files)} of {TOTAL} pictures", end="", file=sys.stderr, flush=True)

    def _program(self, edition: str, **options) -> Program:
        return Program(self._display, self._scratch, edition=edition, **options)

    def windows(self, oem: str, language: str) -> None:
        """The login window and, in the languages of the edition, the settings window."""
        edition = EDITIONS[oem]
        self._machine.reset()
        self._machine.store_settings(language, "192.0.2.10", 6000, profile=True)
        self._machine.install_profiles(edition.profile)
        program = self._program(oem)
        try:
            login = program.login_window()
            self._take(login.number, edition, f"login-{language}")
            if language in OFFERED[oem]:
                login.type("alice")
                login.press("Tab")
                login.type(ACCOUNTS["alice"].password)
                login.press("Return")
                settings = program.settings_window()
                wait_for_keyboard(self._display, settings)
                # To the Test button and back to the server.
                settings.press("Tab", "Tab", "Tab", "space")
                settings.wait_until(lambda: settings.status() == "reachable", "result of the test")
                settings.press("shift+Tab", "shift+Tab", "shift+Tab")
                self._take(settings.number, edition, f"settings-{language}")
        finally:
            program.kill()

    def refusal(self, oem: str) -> None:
        """The alert for a user who is no administrator."""
        program = self._program(oem, user="carol")
        try:
            program.wait_for_alert()
            title = f"^{program.edition.title}$"
            alert = self._display.xdotool("search", "--onlyvisible", "--name", title).split()[0]
            self._take(alert, program.edition, "refusal")
        finally:
            program.kill()


def contact_sheet(files: list[Path], sheet: Path) -> None:
    """All pictures in one: login windows, settings windows, refusals."""
    look = ["-background", "gray25"]
    groups = []
    for kind, columns in (("login", 5), ("settings", 5), ("refusal", 2)):
        groups.append(sheet.with_name(f"{kind}.miff"))
        tiles = [file for file in files if f"-{kind}" in file.name]
        layout = ["-tile", f"{columns}x", "-geometry", "+8+8", "-gravity", "north"]
        subprocess.run(["montage", *tiles, *look, *layout, groups[-1]], check=True)
    subprocess.run(["convert", *groups, *look, "-append", "-strip", sheet], check=True)
    for group in groups:
        group.unlink()


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=Path)
    folder = parser.parse_args().folder
    with tempfile.TemporaryDirectory() as scratch:
        photographer = Photographer(folder, Path(scratch))
        try:
            for oem in EDITIONS:
                for language in LANGUAGES:
                    photographer.windows(oem, language)
            for oem in REFUSALS:
                photographer.refusal(oem)
        finally:
            photographer.close()
            if sys.stderr.isatty():
                print(file=sys.stderr)
    sheet = folder / "contact-sheet.png"
    contact_sheet(photographer.files, sheet)
    subprocess.run(["optipng", "-quiet", "-strip", "all", *photographer.files, sheet], check=True)


if __name__ == "__main__":
    main()
