"""The table of results: the program, a baseline, the ratio of both and its limit."""

import subprocess
import tempfile
from collections.abc import Callable, Mapping, Sequence
from pathlib import Path
from statistics import median
from typing import Any, NamedTuple

NO_LIMIT = None
Values = Sequence[float]


class Row(NamedTuple):
    """One comparison."""

    what: str
    ours: str
    baseline: str
    ratio: float
    limit: float | None
    can_be_met: bool = True

    @property
    def is_missed(self) -> bool:
        return self.limit is not None and self.can_be_met and self.ratio > self.limit

    def __str__(self) -> str:
        limit = "" if self.limit is None else f"{self.limit:.2f}"
        limit += " missed" if self.is_missed else "" if self.can_be_met else " cannot be met"
        return f"| {self.what} | {self.ours} | {self.baseline} | {self.ratio:.3f} | {limit} |"


def median_ratio(ours: Values, baseline: Values) -> float:
    """The median of the ratios of neighbouring measurements, which a machine that slows down or
    speeds up during the run does not change."""
    ratios: list[float] = [one / other for one, other in zip(ours, baseline)]
    return median(ratios)


def compare(
    what: str,
    ours: Values,
    title: str,
    baseline: Values,
    limit: float | None,
    unit: Callable[[float], str],
) -> Row:
    ratio = median_ratio(ours, baseline)
    return Row(what, unit(median(ours)), f"{title}: {unit(median(baseline))}", ratio, limit)


def milliseconds(seconds: float) -> str:
    return f"{seconds * 1000:.1f} ms"


def kilobytes(size: float) -> str:
    return f"{size:.0f} kB"


def megabytes(kilobytes: float) -> str:
    return f"{kilobytes / 1024:.1f} MB"


def command_rows(benchmarks: list[dict[str, Any]]) -> list[Row]:
    """Runs of `/bin/bash -c true`. In random order, so the ratio is that of medians."""
    medians = {
        run["run_name"].split("/iterations")[0]: run["real_time"] / 1e9
        for run in benchmarks
        if run.get("aggregate_name") == "median"
    }
    rows = []
    for mode in ("status", "capture"):
        ours = medians[f"runCommand/{mode}"]
        for name, title, limit in (
            ("bareSpawn", "bare `posix_spawn`", 1.05),
            ("taskClass", "`NSTask`", NO_LIMIT),
        ):
            what, baseline = f"`runShellCommand`, {mode}", medians[name]
            rows.append(compare(what, [ours], title, [baseline], limit, milliseconds))
    return rows


def start_rows(
    start: Mapping[str, Values], used: Mapping[str, Sequence[tuple[int, int]]]
) -> list[Row]:
    rows = []
    for title, limit in (("One Window", 1.10), ("Code Window", 1.25)):
        what, baseline = "start to login window", start[title]
        rows.append(compare(what, start["ours"], title, baseline, limit, milliseconds))
    for i, what in enumerate(("peak memory", "private memory")):
        ours, baseline = ([use[i] for use in used[name]] for name in ("ours", "One Window"))
        rows.append(compare(what, ours, "One Window", baseline, 1.10, megabytes))
    return rows


def apply_rows(applied: Mapping[str, Values]) -> list[Row]:
    what, ours = "Apply, click to exit", applied["ours"]
    shells, plain = applied["shells"], applied["plain"]
    quit_rows = applied["quit"], "empty script", applied["empty"]
    return [
        compare(what, ours, "script, `bash -c` for each line", shells, 1.05, milliseconds),
        compare(what, ours, "script of the bare lines", plain, 1.05, milliseconds)._replace(
            can_be_met=False
        ),
        compare("Quit, click to exit", *quit_rows, NO_LIMIT, milliseconds),
    ]


def tool_rows(tool: Mapping[str, Values]) -> list[Row]:
    unchanged = tool["unchanged"]
    limit = [0.150] * len(unchanged)
    return [
        compare(
            "`configure-agent`, start to exit", tool["start"], "empty program", tool["empty"], 1.5,
            milliseconds,
        ),
        compare("`configure-agent`, nothing to do", unchanged, "fixed", limit, 1.0, milliseconds),
    ]


def sizes(program: Path) -> tuple[float, ...]:
    """Sizes in kB: the executable as built, stripped, and the bundle with the stripped one."""
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(["strip", "-o", stripped.name, program], check=True)
        executable = Path(stripped.name).stat().st_size
    others = [file for file in program.parent.rglob("*") if file.is_file() and file != program]
    bundle = executable + sum(file.stat().st_size for file in others)
    return tuple(size / 1024 for size in (program.stat().st_size, executable, bundle))


def size_rows(ours: Path, baseline: Path) -> list[Row]:
    labels = ("executable, as built", "executable, stripped", "bundle with the stripped one")
    rows = zip(labels, sizes(ours), sizes(baseline))
    return [compare(what, [a], baseline.name, [b], NO_LIMIT, kilobytes) for what, a, b in rows]


def print_table(
    executables: Mapping[str, Path],
    commands: list[dict[str, Any]],
    start: Mapping[str, Values],
    used: Mapping[str, Sequence[tuple[int, int]]],
    login: Mapping[str, Values],
    applied: Mapping[str, Values],
    tool: Mapping[str, Values],
) -> bool:
    """Whether every limit is met."""
    rows = command_rows(commands) + start_rows(start, used) + apply_rows(applied) + tool_rows(tool)
    rows += size_rows(executables["ours"], executables["One Window"])
    print("| what | program | baseline | ratio | limit |\n|---|---|---|---|---|")
    print("\n".join(map(str, rows)))
    print("\n| from the click on OK in the login window | takes |\n|---|---|")
    for phase, seconds in login.items():
        print(f"| {phase} | {milliseconds(median(seconds))} |")
    print(f"| total | {milliseconds(median(map(sum, zip(*login.values()))))} |")
    return not any(row.is_missed for row in rows)
