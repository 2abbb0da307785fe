"""A small program that passes every check, to be broken in one place at a time."""

import shutil
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
SAMPLE = Path(__file__).with_name("sample")
sys.path.insert(0, str(ROOT / "tools/macos_check"))


class Sample:
    """The program's sources, its build folder, and what the checks say of it."""

    def __init__(self, folder):
        self.source, self.build = folder / "source", folder / "build"
        self.changed = {}
        shutil.rmtree(self.source, ignore_errors=True)
        shutil.copytree(SAMPLE, self.source)
        template = (self.source / "CMakeLists.txt.in").read_text(encoding="utf-8")
        (self.source / "CMakeLists.txt").write_text(template.replace("@REPOSITORY@", str(ROOT)),
                                                    encoding="utf-8")

    def replace(self, name, old, new):
        """Changes a file until the end of the test."""
        file = self.source / name
        text = file.read_text(encoding="utf-8")
        assert text.count(old) == 1, f"{old} occurs {text.count(old)} times in {name}"
        self.changed.setdefault(file, text)
        file.write_text(text.replace(old, new), encoding="utf-8")

    def add_rows(self, *rows):
        """Adds rows to the list of API until the end of the test."""
        last = "AppKit\t10.0\t-\textern int NSApplicationMain(int argc, const char *argv[]);\n"
        self.replace("api.tsv", last, last + "".join("\t".join(row) + "\n" for row in rows))

    def restore(self):
        for file, text in self.changed.items():
            file.write_text(text, encoding="utf-8")
        self.changed.clear()

    def findings(self):
        """What script/check-macos would say of the sample."""
        done = subprocess.run(
            [sys.executable, ROOT / "tools/macos_check/check.py", "--source", self.source,
             "--build", self.build, "--api", self.source / "api.tsv"],
            text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=600)
        found = [line.removeprefix("finding: ") for line in done.stderr.splitlines()]
        assert done.returncode == (1 if found else 0), done.stdout + done.stderr
        return found


@pytest.fixture(scope="session")
def built_once():
    return Sample(ROOT / "build/macos/self-test")


@pytest.fixture
def sample(built_once):
    yield built_once
    built_once.restore()
