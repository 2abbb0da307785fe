"""Measures the program beside its yardsticks, inside the lab; prints what table.py makes of it.

Started by script/bench. Everything is measured in turns, so that what disturbs the machine disturbs
all alike.
"""

import argparse
import json
import re
import shlex
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from expected_commands import server_plist
from driver.interface import Interface
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, SERVER_PLIST, STATE, Machine
from driver.paths import LAB
from driver.screen import Display, Program
from observer import IN_MODIFY, IN_OPEN, FileWatch, Observer, end_of
from table import print_table

ALICE = ACCOUNTS["alice"]
ZENTAVO = EDITIONS["Zentavo"]
# All on the same window: the program, and those of bench/CMakeLists.txt.
EXECUTABLES = {"ours": ZENTAVO.program} | {
    title: ZENTAVO.program.parents[1] / f"{title}.app" / title
    for title in ("One Window", "No Menu", "Code Window")
}
OLD = server_plist("fr", "192.0.2.1", "4000", True)
NEW = server_plist("fr", "192.0.2.1", "4000", False)
BASH_LINE = ("/bin/bash", "-c")
LOGIN_PHASES = (
    "click, password check, group look-up",
    "interface file, texts, stored settings",
    "profile command",
    "showing the window",
)
REST = 0.5  # seconds after which a program with its window has nothing more to do
WRITES_AFTER = "unload -w /Library/LaunchDaemons"  # the last command before the file


def session() -> dict[str, str]:
    """The environment of a login session of alice."""
    output = subprocess.run([LAB / "login", "alice", "env", "-0"], capture_output=True, check=True)
    return dict(line.split("=", 1) for line in output.stdout.decode().split("\0") if line)


class Bench:
    """The machine, its display, and alice in front of it."""

    def __init__(self, folder: Path):
        self.machine = Machine()
        self.display = Display()
        self.observer = Observer(self.display)
        self._folder = folder
        self._environment = session() | {"DISPLAY": self.display.name, "LANG": "en_US.UTF-8"}

    def close(self) -> None:
        self.display.close()

    def spawn(self, *command: object) -> subprocess.Popen:
        """Starts a command as alice, with nothing in between."""
        return subprocess.Popen(
            [str(word) for word in command],
            user=ALICE.name,
            group="staff",
            extra_groups=["admin"],
            cwd=f"/Users/{ALICE.name}",
            env=self._environment,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )

    def program(self) -> Program:
        return Program(self.display, self._folder)

    def reset(self) -> None:
        """The state in which every Apply begins: both jobs run."""
        self.machine.reset()
        self.machine.load(AGENT, DAEMON)
        self.machine.write_server_plist(OLD)

    def check_applied(self) -> None:
        """Whoever did it, the machine is the same afterwards."""
        assert self.machine.loaded() == {AGENT, DAEMON}
        assert SERVER_PLIST.read_bytes() == NEW
        assert sorted(file.name for file in ZENTAVO.settings.iterdir()) == ["daemon.settings.xml"]


def in_turns(runs: int, measures: dict) -> dict[str, list]:
    """Calls all measures as often as told, forwards and backwards; the first time only warms up."""
    results = {name: [] for name in measures}
    order = list(measures)
    for i in range(runs + 1):
        for name in order:
            value = measures[name]()
            if i > 0:
                results[name].append(value)
        order.reverse()
    return results


def memory(pid: int) -> tuple[int, int]:
    """Peak memory of a process, and what it alone has written, in kB."""
    status = Path(f"/proc/{pid}/status").read_text()
    rollup = Path(f"/proc/{pid}/smaps_rollup").read_text()
    peak = int(re.search(r"^VmHWM:\s+(\d+)", status, re.MULTILINE)[1])
    private = int(re.search(r"^Private_Dirty:\s+(\d+)", rollup, re.MULTILINE)[1])
    return peak, private


def measure_start(bench: Bench, runs: int) -> tuple[dict, dict]:
    """Seconds from the start to the mapped window, and memory once it is at rest."""
    login = Interface("MainMenu", ZENTAVO.program.parent / "Resources")
    used = {name: [] for name in EXECUTABLES}

    def start(name: str) -> float:
        bench.observer.forget()
        began = time.monotonic()
        with bench.spawn(EXECUTABLES[name]) as process:
            shown = bench.observer.wait_for_window((round(login.width), round(login.height)))
            # Killed while it still starts, it would leave a lock that the next one waits for.
            time.sleep(REST)
            used[name].append(memory(process.pid))
            process.kill()
        return shown - began

    bench.reset()
    times = in_turns(runs, {name: lambda name=name: start(name) for name in EXECUTABLES})
    return times, used


def measure_login(bench: Bench, runs: int) -> dict[str, list[float]]:
    """Where the time goes between the click on OK and the mapped settings window; seconds."""
    resources = ZENTAVO.program.parent / "Resources"
    settings = Interface("ServerWindowController", resources)
    size = (round(settings.width), round(settings.height))

    def log_in() -> list[float]:
        """The moments between which the phases lie."""
        bench.reset()
        program = bench.program()
        try:
            window = program.login_window()
            window.click("username")
            window.type(ALICE.name)
            window.press("Tab")
            window.type(ALICE.password)
            bench.display.xdotool("mousemove", *window.place("OkButton"))
            bench.observer.forget()
            interface_file = FileWatch(resources / "ServerWindowController.xib", IN_OPEN)
            journal = FileWatch(STATE / "journal", IN_MODIFY)
            moments = [bench.observer.click(), interface_file.wait(), journal.wait()]
            moments.append(end_of(bench.machine.records()[0]["pid"]))
            return [*moments, bench.observer.wait_for_window(size)]
        finally:
            program.kill()

    def log_in_seen() -> list[float]:
        while True:
            try:
                return log_in()
            except ProcessLookupError:
                pass  # looked too late: the command had already ended

    logins = in_turns(runs, {"login": log_in_seen})["login"]
    return {
        phase: [moments[i + 1] - moments[i] for moments in logins]
        for i, phase in enumerate(LOGIN_PHASES)
    }


def click_to_end(bench: Bench, button: str) -> float:
    """Seconds from the click on Apply or Quit, with the reset chosen, to the program's end."""
    bench.reset()
    program = bench.program()
    window = program.log_in()
    window.click("reset_settings")
    bench.display.xdotool("mousemove", *window.place(button))
    clicked = bench.observer.click()
    ended = end_of(program.pid)
    assert program.wait() == 0
    return ended - clicked


def apply(bench: Bench) -> float:
    seconds = click_to_end(bench, "Apply_button")
    bench.check_applied()
    return seconds


def lines_of_apply(bench: Bench) -> list[str]:
    """The command lines that the last Apply gave to bash, in their order."""
    lines = [c.argv[2] for c in bench.machine.journal() if c.argv[:2] == BASH_LINE]
    assert len(lines) == 14, lines
    return lines


def write_script(file: Path, lines: list[str], shell_per_line: bool) -> None:
    """A plain script that does what Apply did."""
    text = []
    for line in lines:
        text.append(f"/bin/bash -c {shlex.quote(line)}" if shell_per_line else line)
        if WRITES_AFTER in line:
            text.append(f"printf %s {shlex.quote(NEW.decode())} > {SERVER_PLIST}")
    file.write_text("\n".join(text) + "\n")
    file.chmod(0o644)


def run_script(bench: Bench, file: Path) -> float:
    began = time.monotonic()
    with bench.spawn("/bin/bash", file) as process:
        return end_of(process.pid) - began


def apply_by_script(bench: Bench, file: Path) -> float:
    bench.reset()
    seconds = run_script(bench, file)
    bench.check_applied()
    return seconds


def measure_apply(bench: Bench, runs: int, folder: Path) -> dict[str, list[float]]:
    """Seconds of an Apply and of scripts of the same command lines; of either without any."""
    apply(bench)
    lines = lines_of_apply(bench)
    shells, plain, empty = (folder / name for name in ("shells.sh", "plain.sh", "empty.sh"))
    write_script(shells, lines, shell_per_line=True)
    write_script(plain, lines, shell_per_line=False)
    write_script(empty, [], shell_per_line=False)
    return in_turns(
        runs,
        {
            "ours": lambda: apply(bench),
            "shells": lambda: apply_by_script(bench, shells),
            "plain": lambda: apply_by_script(bench, plain),
            "quit": lambda: click_to_end(bench, "Quit_button"),
            "empty": lambda: run_script(bench, empty),
        },
    )


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("commands", type=Path, help="what commands_bench has measured, as JSON")
    parser.add_argument("runs", type=int)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        Path(folder).chmod(0o755)
        bench = Bench(Path(folder))
        try:
            start, used = measure_start(bench, options.runs)
            login = measure_login(bench, options.runs // 2)
            applied = measure_apply(bench, options.runs, Path(folder))
        finally:
            bench.close()
    commands = json.loads(options.commands.read_text())["benchmarks"]
    return 0 if print_table(EXECUTABLES, commands, start, used, login, applied) else 1


if __name__ == "__main__":
    sys.exit(main())
