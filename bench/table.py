"""One table of what was measured: the program, what stands beside it, their ratio and its limit."""

import subprocess
import tempfile
from pathlib import Path
from statistics import median
from typing import NamedTuple

NO_LIMIT = None


class Row(NamedTuple):
    """One comparison. Without a ratio the values are only stated."""

    what: str
    ours: str
    beside: str
    ratio: float | None
    limit: float | None

    @property
    def is_met(self) -> bool:
        return self.limit is None or self.ratio <= self.limit

    def __str__(self) -> str:
        ratio = "" if self.ratio is None else f"{self.ratio:.3f}"
        limit = "" if self.limit is None else f"{self.limit:.2f}" + ("" if self.is_met else " missed")
        return f"| {self.what} | {self.ours} | {self.beside} | {ratio} | {limit} |"


def compare(what: str, ours: list, name: str, beside: list, limit: float | None, unit) -> Row:
    """The ratio is the median of the ratios turn by turn, which a machine that slows down or speeds
    up meanwhile does not change."""
    ratio = median(one / other for one, other in zip(ours, beside))
    return Row(what, unit(median(ours)), f"{name}: {unit(median(beside))}", ratio, limit)


def milliseconds(seconds: float) -> str:
    return f"{seconds * 1000:.1f} ms" if seconds < 1 else f"{seconds * 1000:.0f} ms"


def kilobytes(size: float) -> str:
    return f"{size:.0f} kB"


def megabytes(kilobytes: float) -> str:
    return f"{kilobytes / 1024:.1f} MB"


def command_rows(benchmarks: list[dict]) -> list[Row]:
    """Runs of `/bin/bash -c true`; each repetition is a turn."""
    names = {run["run_name"].split("/iterations")[0] for run in benchmarks}
    seconds = {
        name: [
            run["real_time"] / 1e9
            for run in sorted(benchmarks, key=lambda run: run.get("repetition_index", -1))
            if run["run_type"] == "iteration" and run["run_name"].split("/iterations")[0] == name
        ]
        for name in names
    }
    rows = []
    for mode in ("status", "capture"):
        ours, what = seconds[f"runCommand/{mode}"], f"`runShellCommand`, {mode}"
        rows.append(compare(what, ours, "bare `posix_spawn`", seconds["bareSpawn"], 1.05, milliseconds))
        for name, title in (("popenAndRead", "`popen`"), ("system", "`system`"), ("taskClass", "`NSTask`")):
            rows.append(compare(what, ours, title, seconds[name], NO_LIMIT, milliseconds))
    return rows


def sizes(program: Path) -> tuple[float, float]:
    """An executable without its symbols, and the whole bundle with that, in kB."""
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(["strip", "-o", stripped.name, program], check=True)
        executable = Path(stripped.name).stat().st_size
    others = [file for file in program.parent.rglob("*") if file.is_file() and file != program]
    return executable / 1024, (executable + sum(file.stat().st_size for file in others)) / 1024


def size_rows(ours: Path, beside: Path) -> list[Row]:
    rows = zip(("executable, stripped", "bundle with it"), sizes(ours), sizes(beside))
    return [compare(what, [a], beside.name, [b], NO_LIMIT, kilobytes) for what, a, b in rows]


def print_table(executables, commands, start, used, login, applied) -> bool:
    """Whether every limit is met."""
    rows = command_rows(commands)
    for title, limit in (("One Window", 1.10), ("No Menu", NO_LIMIT), ("Code Window", NO_LIMIT)):
        rows.append(compare("start to login window", start["ours"], title, start[title], limit, milliseconds))
    for i, what in enumerate(("peak memory", "private memory")):
        ours, beside = ([use[i] for use in used[name]] for name in ("ours", "One Window"))
        rows.append(compare(what, ours, "One Window", beside, 1.10, megabytes))
    for name, title, limit in (
        ("shells", "script, `bash -c` for each line", 1.05),
        ("plain", "script of the bare lines", NO_LIMIT),
    ):
        rows.append(compare("Apply, click to exit", applied["ours"], title, applied[name], limit, milliseconds))
    rows.append(compare("Quit, click to exit", applied["quit"], "empty script", applied["empty"], NO_LIMIT, milliseconds))
    rows += size_rows(executables["ours"], executables["One Window"])

    print("| what | ours | beside | ratio | limit |\n|---|---|---|---|---|")
    print("\n".join(map(str, rows)))
    print("\n| from the click on OK in the login window | takes |\n|---|---|")
    for phase, seconds in login.items():
        print(f"| {phase} | {milliseconds(median(seconds))} |")
    print(f"| in all | {milliseconds(median(map(sum, zip(*login.values()))))} |")
    return all(row.is_met for row in rows)
