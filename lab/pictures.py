"""Takes the pictures of the windows, inside the lab. Started by script/pictures."""

import argparse
import subprocess
import tempfile
from pathlib import Path

from driver.editions import EDITIONS, Edition
from driver.framed import FramedDisplay
from driver.keyboard import wait_for_keyboard
from driver.machine import ACCOUNTS, Machine
from driver.program import Program

LANGUAGES = max((edition.languages for edition in EDITIONS.values()), key=len)


class Pictures:
    """Takes the pictures, one after the other."""

    def __init__(self, folder: Path, scratch: Path):
        self._folder, self._scratch = folder, scratch
        self.files: list[Path] = []
        self._display = FramedDisplay()
        self._machine = Machine()

    def close(self) -> None:
        self._display.close()

    def _take(self, window: str, edition: Edition, name: str) -> None:
        file = self._folder / f"{edition.name.lower()}-{name}.png"
        self._display.save_picture(window, file)
        self.files.append(file)

    def windows(self, edition: Edition, language: str) -> None:
        """The login window and, in the languages of the edition, the settings window."""
        self._machine.reset()
        self._machine.store_settings(language, "192.0.2.10", 6000, profile=True)
        self._machine.install_profiles(edition.profile)
        program = Program(self._display, self._scratch, edition=edition.oem)
        try:
            login = program.login_window()
            self._take(login.number, edition, f"login-{language}")
            if language in edition.languages:
                login.type_login("alice", ACCOUNTS["alice"].password)
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

    def refusal(self, edition: Edition) -> None:
        """The alert for a user who is not an administrator."""
        program = Program(self._display, self._scratch, edition=edition.oem, user="carol")
        try:
            program.wait_for_alert()
            title = f"^{edition.title}$"
            alert = self._display.xdotool("search", "--onlyvisible", "--name", title).split()[0]
            self._take(alert, edition, "refusal")
        finally:
            program.kill()


def contact_sheet(files: list[Path], sheet: Path) -> None:
    """All pictures in one: login windows, settings windows, refusals."""
    look = ["-background", "gray25"]
    groups: list[Path] = []
    for kind, columns in (("login", 5), ("settings", 5), ("refusal", 2)):
        groups.append(sheet.with_name(f"{kind}.miff"))
        tiles = [file for file in files if f"-{kind}" in file.name]
        layout = ["-tile", f"{columns}x", "-geometry", "+8+8", "-gravity", "north"]
        subprocess.run(["montage", *tiles, *look, *layout, groups[-1]], check=True)
    subprocess.run(["convert", *groups, *look, "-append", "-strip", sheet], check=True)
    for group in groups:
        group.unlink()


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=Path)
    folder = parser.parse_args().folder
    with tempfile.TemporaryDirectory() as scratch:
        pictures = Pictures(folder, Path(scratch))
        try:
            for edition in EDITIONS.values():
                for language in LANGUAGES:
                    pictures.windows(edition, language)
                pictures.refusal(edition)
        finally:
            pictures.close()
    sheet = folder / "contact-sheet.png"
    contact_sheet(pictures.files, sheet)
    subprocess.run(["optipng", "-quiet", "-strip", "all", *pictures.files, sheet], check=True)


if __name__ == "__main__":
    main()
