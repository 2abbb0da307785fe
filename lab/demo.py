"""The demo: drives the program from login to Apply by keyboard and mouse, inside the lab, and shows
what it changed. Started by script/demo."""

import argparse
import subprocess
import sys
import tempfile
from pathlib import Path

from driver.editions import EDITIONS, Edition
from driver.framed import FramedDisplay
from driver.machine import ACCOUNTS, AGENT, DAEMON, SERVER_PLIST, Machine, listen
from driver.paths import LAB
from driver.program import Program, Window
from driver.waiting import wait_until

SERVER = "192.0.2.10"
ALICE = ACCOUNTS["alice"]


def heading(text: str) -> None:
    print(f"\n=== {text}", flush=True)


def show_state(machine: Machine) -> None:
    print(SERVER_PLIST.read_text().rstrip("\n"))
    loaded = machine.loaded()
    for job in (DAEMON, AGENT):
        print(f"{job.label}: {'loaded' if job in loaded else 'not loaded'}")


def prepare(machine: Machine, edition: Edition, language: str) -> None:
    """A machine whose agent points to a server that is gone."""
    machine.reset()
    machine.store_settings(language, "192.0.2.77", 6000)
    machine.load(DAEMON, AGENT)
    machine.install_profiles(edition.profile)


class PicturedRun:
    """A run through the program, with a picture of each step."""

    def __init__(self, program: Program, display: FramedDisplay, pictures: Path):
        self._program, self._display, self._pictures = program, display, pictures
        self._steps = 0

    def _picture(self, window: Window, what: str) -> None:
        self._steps += 1
        file = self._pictures / f"{self._steps}-{what}.png"
        self._display.save_picture(window.number, file)
        print(file, flush=True)

    def from_login_to_apply(self, port: int) -> int:
        """Returns the program's exit status."""
        login = self._program.login_window()
        self._picture(login, "login")
        login.fill("username", ALICE.name)
        login.press("Tab")
        login.type(ALICE.password)
        self._picture(login, "credentials")
        login.press("Return")
        settings = self._program.settings_window()
        self._picture(settings, "settings")
        settings.fill("servername", SERVER)
        settings.fill("port", str(port))
        settings.choose("testChoice", 1)
        settings.click("TestButton")
        wait_until(lambda: settings.status() == "reachable", "reachable")
        self._picture(settings, "tested")
        settings.click("reset_settings")
        self._picture(settings, "ready")
        settings.click("Apply_button")
        return self._program.wait()


def run_by_machine(edition: Edition, pictures: Path) -> int:
    heading("The program, driven by keyboard and mouse")
    display = FramedDisplay()
    with listen(SERVER) as server, tempfile.TemporaryDirectory() as folder:
        program = Program(display, Path(folder), edition=edition.oem)
        try:
            run = PicturedRun(program, display, pictures)
            status = run.from_login_to_apply(server.getsockname()[1])
        finally:
            program.kill()
            display.close()
        heading("What the program printed")
        print(program.output, end="")
    return status


def run_by_hand(edition: Edition) -> int:
    heading("The program is on your display")
    print(f"Log in as {ALICE.name}, password {ALICE.password}.")
    print(f"A server listens at {SERVER}, port 7000.")
    print("Apply and Quit end the program and the demo; so does Ctrl-C here.", flush=True)
    with listen(SERVER, 7000):
        return subprocess.run([LAB / "login", ALICE.name, edition.program], check=False).returncode


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--edition", required=True, choices=EDITIONS)
    parser.add_argument("--language", required=True)
    how = parser.add_mutually_exclusive_group(required=True)
    how.add_argument("--pictures", type=Path)
    how.add_argument("--by-hand", action="store_true")
    options = parser.parse_args()

    edition = EDITIONS[options.edition]
    machine = Machine()
    prepare(machine, edition, options.language)
    heading("Before")
    show_state(machine)
    if options.by_hand:
        status = run_by_hand(edition)
    else:
        status = run_by_machine(edition, options.pictures)
    heading("The commands that ran, and as whom")
    for command in machine.journal():
        print(f"{command.user:>6}  {' '.join(command.argv)}")
    heading("After")
    show_state(machine)
    print(f"exit status: {status}")
    return status


if __name__ == "__main__":
    sys.exit(main())
