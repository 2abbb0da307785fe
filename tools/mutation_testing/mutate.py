"""Plants single mistakes in a copy of the tree and checks that a test catches each of them.

Started by script/mutate. A mutation replaces one text in one file. It is caught when the build or a
test fails, and survives otherwise. For one that makes no observable difference the table says why it
may survive; it is an error if it is caught after all, so that the reasons stay true.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import time
import tomllib
from dataclasses import dataclass
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]
TABLE = Path(__file__).with_name("mutations.toml")
WORK = ROOT / "build" / "mutate"


class Suite(NamedTuple):
    """What to build and run. The names are GoogleTest's filter."""

    target: str
    tests: str
    names: str


# In the order of their cost: most mistakes are caught before the window tests are built.
QUICK = (
    Suite("tests/unit/all", "^unit", "*"),
    Suite("tests/window/all", "^window", "-*Fit*:*DeathTest*"),
    Suite("all", "^(window|platform)", "*"),
)
END_TO_END = Suite("all", "^e2e\\.(login|connection|apply|languages|keyboard)", "*")


@dataclass(frozen=True)
class Mutation:
    """One row of the table."""

    name: str
    file: str
    original: str
    replacement: str = ""
    may_survive: str = ""

    def apply(self, source: Path) -> None:
        """Changes the file in the copy. The original text must occur exactly once."""
        path = source / self.file
        text = path.read_text(encoding="utf-8")
        if (count := text.count(self.original)) != 1:
            raise SystemExit(f"{self.name}: the original text occurs {count} times in {self.file}")
        path.write_text(text.replace(self.original, self.replacement), encoding="utf-8")

    def revert(self, source: Path) -> None:
        """Takes the file from the tree again; a new time stamp makes the build see it."""
        shutil.copy(ROOT / self.file, source / self.file)


def read_table(path: Path) -> list[Mutation]:
    with path.open("rb") as file:
        tables = tomllib.load(file)
    mutations = [
        Mutation(name, file, *row) for file, rows in tables.items() for name, row in rows.items()
    ]
    names = [mutation.name for mutation in mutations]
    if repeated := {name for name in names if names.count(name) > 1}:
        raise SystemExit(f"names that occur twice: {', '.join(sorted(repeated))}")
    return mutations


class Copy:
    """A copy of the tree with a build of its own."""

    def __init__(self, folder: Path) -> None:
        self.source, self.build = folder / "source", folder / "build"

    def refresh(self) -> None:
        """Makes the copy equal to the tree; unchanged files keep their time stamps."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=ROOT,
            check=True,
            stdout=subprocess.PIPE,
        ).stdout
        wanted = {Path(os.fsdecode(name)) for name in listed.split(b"\0") if name}
        self.source.mkdir(parents=True, exist_ok=True)
        for path in self.source.rglob("*"):
            if not path.is_dir() and path.relative_to(self.source) not in wanted:
                path.unlink()
        for name in wanted:
            copy = self.source / name
            if not copy.exists() or copy.read_bytes() != (ROOT / name).read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / name, copy)
        if not (self.build / "build.ninja").exists():
            self._run(["cmake", "-S", str(self.source), "-B", str(self.build), "-G", "Ninja"])

    def caught_by(self, suite: Suite) -> str:
        """What catches the mistake: the build, or the first test that fails; empty when all pass."""
        if not self._run(["cmake", "--build", str(self.build), "--target", suite.target]):
            return "the build"
        command = ["ctest", "--test-dir", str(self.build), "--stop-on-failure", "--timeout", "300"]
        command += ["--no-tests=error", "--output-on-failure", "-R", suite.tests]
        if self._run(command, {"GTEST_FILTER": suite.names, "GTEST_FAIL_FAST": "1"}):
            return ""
        log = (self.build / "last.log").read_text(encoding="utf-8", errors="replace")
        failed = re.search(r"^\[  FAILED  \] (\S+?),? |^FAILED \S+::(\S+)", log, re.MULTILINE)
        if failed:
            return str(failed[1] or failed[2])
        failed = re.search(r"Test +#\d+: (\S+) .*\*\*\*", log)
        return str(failed[1]) if failed else suite.tests

    def _run(self, command: list[str], environment: dict[str, str] | None = None) -> bool:
        self.build.mkdir(parents=True, exist_ok=True)
        with (self.build / "last.log").open("wb") as log:
            done = subprocess.run(
                command,
                env=os.environ | (environment or {}),
                stdin=subprocess.DEVNULL,
                stdout=log,
                stderr=subprocess.STDOUT,
                check=False,
            )
        return done.returncode == 0


def caught_by(copy: Copy, suites: list[Suite]) -> str:
    """What catches the mistake in the copy; empty when nothing does."""
    return next((catcher for suite in suites if (catcher := copy.caught_by(suite))), "")


def try_all(copy: Copy, mutations: list[Mutation], suites: list[Suite]) -> int:
    """Prints a line for each mutation; returns how many went against the table."""
    unexpected = 0
    for mutation in mutations:
        began = time.monotonic()
        mutation.apply(copy.source)
        try:
            catcher = caught_by(copy, suites)
        finally:
            mutation.revert(copy.source)
        outcome = f"caught by {catcher}" if catcher else f"SURVIVED {mutation.may_survive}".strip()
        if bool(catcher) == bool(mutation.may_survive):
            unexpected += 1
            outcome += " (unexpected)"
        took = time.monotonic() - began
        print(f"{took:5.0f} s  {mutation.name}: {outcome}", flush=True)
    return unexpected


def main() -> int:
    parser = argparse.ArgumentParser(prog="script/mutate")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--only", default="", metavar="PATTERN")
    options = parser.parse_args()

    mutations = [row for row in read_table(TABLE) if re.search(options.only, row.name)]
    if options.list:
        print("\n".join(f"{mutation.name}  ({mutation.file})" for mutation in mutations))
        return 0
    suites = [*QUICK, *([] if options.quick else [END_TO_END])]
    copy = Copy(WORK)
    copy.refresh()
    if catcher := caught_by(copy, suites):
        print(f"script/mutate: without a mutation already fails: {catcher}", file=sys.stderr)
        return 1
    unexpected = try_all(copy, mutations, suites)
    excused = sum(1 for mutation in mutations if mutation.may_survive)
    print(f"{len(mutations)} mutations, {excused} of which may survive, {unexpected} unexpected")
    return 1 if unexpected or not mutations else 0


if __name__ == "__main__":
    sys.exit(main())
