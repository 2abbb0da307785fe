"""The demo: drives the program from login to Apply by keyboard and mouse, inside the lab, and shows
what it changed. Started by script/demo."""

import argparse
import subprocess
import sys
import tempfile
from pathlib import Path

from driver.machine import AGENT, DAEMON, EDITIONS, LAB, SERVER_PLIST, Machine, listen
from driver.screen import Display, Program
from driver.waiting import wait_until

def heading(text: str) -> None:
    print(f"\n=== {text}", flush=True)


def show_state(machine: Machine) -> None:
    print(SERVER_PLIST.read_text().rstrip("\n"))
    loaded = machine.loaded()
    for job in (DAEMON, AGENT):
        print(f"{job.label}: {'loaded' if job in loaded else 'not loaded'}")


def prepare(machine: Machine, edition: str, language: str) -> None:
    """A machine whose agent points to a server that is gone."""
    machine.reset()
    machine.store_settings(language, "192.0.2.77", 6000)
    machine.load(DAEMON, AGENT)
    machine.install_profiles(EDITIONS[edition].profile)


def drive(program: Program, display: Display, pictures: Path, port: int) -> int:
    """From login to Apply; returns the program's exit status."""
    steps = 0

    def picture(what: str) -> None:
        nonlocal steps
        steps += 1
        file = pictures / f"{steps}-{what}.png"
        display.screenshot(file)
        print(f"{file.parent.name}/{file.name}", flush=True)

    login = program.login_window()
    picture("login")
    login.fill("username", "alice")
    login.press("Tab")
    login.type("alice-pw")
    picture("credentials")
    login.press("Return")
    settings = program.settings_window()
    picture("settings")
    settings.fill("servername", "192.0.2.10")
    settings.fill("port", str(port))
    settings.choose("testChoice", 1)
    settings.click("TestButton")
    wait_until(lambda: settings.status() == "reachable", "reachable")
    picture("tested")
    settings.click("reset_settings")
    picture("ready")
    settings.click("Apply_button")
    return program.wait()


def run_by_machine(edition: str, pictures: Path) -> int:
    heading("The program, driven by keyboard and mouse")
    display = Display()
    with listen("192.0.2.10") as server, tempfile.TemporaryDirectory() as folder:
        program = Program(display, Path(folder), edition=edition)
        try:
            status = drive(program, display, pictures, server.getsockname()[1])
        finally:
            program.kill()
            display.close()
        heading("What the program printed")
        print(program.output, end="")
    return status


def run_by_hand(edition: str) -> int:
    heading("The program is on your display: log in as alice, password alice-pw")
    print("A server listens at 192.0.2.10, port 7000.", flush=True)
    with listen("192.0.2.10", 7000):
        return subprocess.run([LAB / "login", "alice", EDITIONS[edition].program]).returncode


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("--edition", default="Zentavo", choices=EDITIONS)
    parser.add_argument("--language", default="en")
    how = parser.add_mutually_exclusive_group(required=True)
    how.add_argument("--pictures", type=Path)
    how.add_argument("--by-hand", action="store_true")
    options = parser.parse_args()

    machine = Machine()
    prepare(machine, options.edition, options.language)
    heading("Before")
    show_state(machine)
    status = (
        run_by_hand(options.edition)
        if options.by_hand
        else run_by_machine(options.edition, options.pictures)
    )
    heading("The commands that ran, and as whom")
    for command in machine.journal():
        print(f"{command.user:>6}  {' '.join(command.argv)}")
    heading("After")
    show_state(machine)
    print(f"exit status: {status}")
    return status


if __name__ == "__main__":
    sys.exit(main())
