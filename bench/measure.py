"""Measures the program and its baselines in the lab and prints the table that table.py makes.

Started by script/bench. The measurements alternate, so that a disturbance of the machine affects
all of them.
"""

import argparse
import json
import re
import shlex
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable
from functools import partial
from pathlib import Path
from typing import TypeVar

from expected_commands import server_plist
from driver.interface import Interface
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, SERVER_PLIST, STATE, Machine
from driver.paths import LAB
from driver.display import Display
from driver.program import Program
from observer import IN_MODIFY, IN_OPEN, FileWatch, Observer, end_of
from table import print_table

Value = TypeVar("Value")
ALICE = ACCOUNTS["alice"]
ZENTAVO = EDITIONS["Zentavo"]
# The program and the baselines of bench/CMakeLists.txt.
EXECUTABLES = {"ours": ZENTAVO.program} | {
    title: ZENTAVO.program.parents[1] / f"{title}.app" / title
    for title in ("One Window", "Code Window")
}
TOOL = ZENTAVO.program.with_name("configure-agent")
EMPTY_TOOL = EXECUTABLES["One Window"].with_name("empty-tool")
OLD = server_plist("fr", "192.0.2.1", "4000", True)
NEW = server_plist("fr", "192.0.2.1", "4000", False)
BASH_LINE = ("/bin/bash", "-c")
LOGIN_PHASES = (
    "click, password check, group look-up",
    "interface file, strings, stored settings",
    "profile command",
    "showing the window",
)
REST = 0.5  # seconds after which a program that shows its window is idle
WRITES_AFTER = "unload -w /Library/LaunchDaemons"  # the last command before the file


def session() -> dict[str, str]:
    """The environment of a login session of alice."""
    output = subprocess.run([LAB / "login", "alice", "env", "-0"], capture_output=True, check=True)
    return dict(line.split("=", 1) for line in output.stdout.decode().split("\0") if line)


class Bench:
    """The lab machine, its display, and alice as the user."""

    def __init__(self, folder: Path):
        self.machine = Machine()
        self.display = Display()
        self.observer = Observer(self.display)
        self._folder = folder
        self._environment = session() | {"DISPLAY": self.display.name, "LANG": "en_US.UTF-8"}

    def close(self) -> None:
        self.display.close()

    def spawn(self, *command: object) -> subprocess.Popen[bytes]:
        """Starts a command directly as alice, without a wrapper process."""
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
        """The state before every Apply: both jobs are loaded."""
        self.machine.reset()
        self.machine.load(AGENT, DAEMON)
        self.machine.write_server_plist(OLD)

    def check_applied(self) -> None:
        """Whether the program or a script applied, the state is the same afterwards."""
        assert self.machine.loaded() == {AGENT, DAEMON}
        assert SERVER_PLIST.read_bytes() == NEW
        assert sorted(file.name for file in ZENTAVO.settings.iterdir()) == ["daemon.settings.xml"]


def alternately(runs: int, measures: dict[str, Callable[[], Value]]) -> dict[str, list[Value]]:
    """Calls all measures `runs` times, in alternating order, after one run to warm up."""
    results: dict[str, list[Value]] = {name: [] for name in measures}
    order = list(measures)
    for i in range(runs + 1):
        for name in order:
            value = measures[name]()
            if i > 0:
                results[name].append(value)
        order.reverse()
    return results


def memory(pid: int) -> tuple[int, int]:
    """Peak memory of a process and the pages that it has written, in kB."""

    def value(file: str, name: str) -> int:
        text = Path(f"/proc/{pid}/{file}").read_text()
        return int(re.findall(rf"^{name}:\s+(\d+)", text, re.MULTILINE)[0])

    return value("status", "VmHWM"), value("smaps_rollup", "Anonymous")


def measure_start(
    bench: Bench, runs: int
) -> tuple[dict[str, list[float]], dict[str, list[tuple[int, int]]]]:
    """Seconds from the start to the mapped window; memory once the program is idle."""
    login = Interface("MainMenu", ZENTAVO.program.parent / "Resources")
    used: dict[str, list[tuple[int, int]]] = {name: [] for name in EXECUTABLES}

    def start(name: str) -> float:
        bench.observer.forget()
        began = time.monotonic()
        with bench.spawn(EXECUTABLES[name]) as process:
            shown = bench.observer.wait_for_window((round(login.width), round(login.height)))
            # A program killed during its start leaves a lock that the next one waits for.
            time.sleep(REST)
            used[name].append(memory(process.pid))
            process.kill()
        return shown - began

    bench.reset()
    times = alternately(runs, {name: partial(start, name) for name in EXECUTABLES})
    return times, used


def measure_login(bench: Bench, runs: int) -> dict[str, list[float]]:
    """Seconds of each phase between the click on OK and the mapped settings window."""
    resources = ZENTAVO.program.parent / "Resources"
    settings = Interface("ServerWindowController", resources)
    size = (round(settings.width), round(settings.height))

    def log_in() -> list[float]:
        """The times at which the phases begin and end."""
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

    def log_in_observed() -> list[float]:
        while True:
            try:
                return log_in()
            except ProcessLookupError:
                pass  # too late: the command had already ended

    logins = alternately(runs, {"login": log_in_observed})["login"]
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
    """The command lines that the last Apply passed to bash, in order."""
    lines = [c.argv[2] for c in bench.machine.journal() if c.argv[:2] == BASH_LINE]
    assert len(lines) == 14, lines
    return lines


def write_script(file: Path, lines: list[str], shell_per_line: bool) -> None:
    """A bash script that does the same as Apply."""
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
    """Seconds of an Apply and of scripts of the same lines; of Quit and of an empty script."""
    apply(bench)
    lines = lines_of_apply(bench)
    shells, plain, empty = (folder / name for name in ("shells.sh", "plain.sh", "empty.sh"))
    write_script(shells, lines, shell_per_line=True)
    write_script(plain, lines, shell_per_line=False)
    write_script(empty, [], shell_per_line=False)
    return alternately(
        runs,
        {
            "ours": lambda: apply(bench),
            "shells": lambda: apply_by_script(bench, shells),
            "plain": lambda: apply_by_script(bench, plain),
            "quit": lambda: click_to_end(bench, "Quit_button"),
            "empty": lambda: run_script(bench, empty),
        },
    )


def seconds_of(*command: object) -> float:
    """Seconds of a command that root runs, from its start to its end."""
    words = [str(word) for word in command]
    began = time.monotonic()
    with subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
        ended = end_of(process.pid)
    assert process.returncode == 0
    return ended - began


def measure_tool(bench: Bench, runs: int) -> dict[str, list[float]]:
    """Seconds of the tool's start, of that of an empty program, and of an apply that finds everything
    as requested."""
    bench.reset()
    bench.machine.write_server_plist(NEW)
    apply_nothing = (TOOL, "apply", "--server", "192.0.2.1", "--json")
    return alternately(
        runs,
        {
            "start": lambda: seconds_of(TOOL, "--version"),
            "empty": lambda: seconds_of(EMPTY_TOOL),
            "unchanged": lambda: seconds_of(*apply_nothing),
        },
    )


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("commands", type=Path, help="JSON output of commands_bench")
    parser.add_argument("runs", type=int)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        Path(folder).chmod(0o755)
        bench = Bench(Path(folder))
        try:
            start, used = measure_start(bench, options.runs)
            login = measure_login(bench, options.runs // 2)
            applied = measure_apply(bench, options.runs, Path(folder))
            tool = measure_tool(bench, options.runs)
        finally:
            bench.close()
    commands = json.loads(options.commands.read_text())["benchmarks"]
    return 0 if print_table(EXECUTABLES, commands, start, used, login, applied, tool) else 1


if __name__ == "__main__":
    sys.exit(main())
