"""A small program that passes every check, to be broken in one place at a time."""

import json
import os
import shutil
import subprocess
import sys
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

import pytest
from cross_build import CrossBuild

ROOT = Path(__file__).resolve().parents[2]
TITLE = "Zentavo Configuration Utility"
SAMPLE = Path(__file__).with_name("sample")
APPLE_TOOL = Path(__file__).with_name("apple_tools") / "apple_tool.py"
APPLE_TOOLS = ("codesign", "hdiutil", "ibtool", "lipo", "otool", "pkgbuild", "pkgutil", "plutil",
               "productbuild", "security", "sleep", "spctl", "sw_vers", "uname", "xcodebuild", "xcrun")


class Sample:
    """The program's sources, its build folder, and what the checks report about it."""

    def __init__(self, folder: Path) -> None:
        self.source, self.build = folder / "source", folder / "build"
        self.changed: dict[Path, str] = {}
        self.first_findings: list[str] = []
        shutil.rmtree(self.source, ignore_errors=True)
        shutil.copytree(SAMPLE, self.source)
        template = (self.source / "CMakeLists.txt.in").read_text(encoding="utf-8")
        (self.source / "CMakeLists.txt").write_text(template.replace("@REPOSITORY@", str(ROOT)),
                                                    encoding="utf-8")

    def replace(self, name: str | Path, old: str, new: str) -> None:
        """Changes a file until the end of the test."""
        file = self.source / name
        text = file.read_text(encoding="utf-8")
        assert text.count(old) == 1, f"{old} occurs {text.count(old)} times in {name}"
        self.changed.setdefault(file, text)
        file.write_text(text.replace(old, new), encoding="utf-8")

    def restore(self) -> None:
        for file, text in self.changed.items():
            file.write_text(text, encoding="utf-8")
        self.changed.clear()

    def findings(self) -> list[str]:
        """What script/check-macos would report about the sample."""
        done = subprocess.run(
            [sys.executable, ROOT / "tools/macos_check/check.py", "--source", self.source,
             "--build", self.build, "--api", self.source / "api.tsv",
             "--test-api", self.source / "test_api.tsv"],
            text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=600)
        found = [line.removeprefix("finding: ") for line in done.stderr.splitlines()]
        assert done.returncode == (1 if found else 0), done.stdout + done.stderr
        return found


class AppleTools:
    """A folder of replacements for Apple's tools, which record how they are called."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self.bin = folder / "bin"
        self.bin.mkdir(parents=True)
        for name in APPLE_TOOLS:
            (self.bin / name).symlink_to(APPLE_TOOL)
        self.environment = {**os.environ, "APPLE_TOOLS": str(folder),
                            "PATH": f"{self.bin}:{os.environ['PATH']}"}

    def calls(self, tool: str | None = None) -> list[list[str]]:
        """How the tools, or one of them, have been called since forget_calls()."""
        file = self.folder / "calls"
        lines = file.read_text(encoding="utf-8").splitlines() if file.exists() else []
        calls = [json.loads(line) for line in lines]
        return [c for c in calls if tool is None or c[0] == tool]

    def forget_calls(self) -> None:
        (self.folder / "calls").unlink(missing_ok=True)

    @contextmanager
    def without(self, tool: str) -> Iterator[None]:
        """While it lasts, the tool is missing."""
        (self.bin / tool).unlink()
        try:
            yield
        finally:
            (self.bin / tool).symlink_to(APPLE_TOOL)

    def fail(self, *faults: str) -> None:
        (self.folder / "faults").write_text("\n".join(faults), encoding="utf-8")

    def add_identities(self, *names: str) -> None:
        (self.folder / "identities").write_text(
            "".join(f'  {i}) 0123456789ABCDEF "{name}"\n' for i, name in enumerate(names, 1)),
            encoding="utf-8")

    def run(self, *command: str | Path, **environment: str) -> subprocess.CompletedProcess[str]:
        return subprocess.run([str(c) for c in command], env={**self.environment, **environment},
                              text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=300)


class Mac:
    """The sample configured and built as on a Mac."""

    def __init__(self, sample: Sample, folder: Path) -> None:
        self.tools, self.tree = AppleTools(folder / "tools"), folder / "tree"
        self.bundle = self.tree / "apps" / f"{TITLE}.app"
        self.cross_build = CrossBuild(sample.source, sample.build, [], [])
        self.configure(sample.source, self.tree)
        (self.tree / "editions.tsv").write_text("sample\tSample\n")
        self.build()
        self.first_calls = self.tools.calls()

    def configure(self, source: Path, tree: Path, *options: str) -> None:
        self.run("cmake", "-S", source, "-B", tree, *self.cross_build.options("arm64"),
                 f"-DIBTOOL={self.tools.bin / 'ibtool'}", f"-DCODESIGN={self.tools.bin / 'codesign'}",
                 "-DMAC_SIGNING_IDENTITY=Developer ID Application: Sample", *options)

    def first_calls_of(self, tool: str) -> list[list[str]]:
        """How the first build called one of Apple's tools."""
        return [c for c in self.first_calls if c[0] == tool]

    def run(self, *command: str | Path) -> None:
        done = self.tools.run(*command)
        assert done.returncode == 0, done.stdout + done.stderr

    def build(self) -> None:
        self.run("cmake", "--build", self.tree)

    def package(self, *arguments: str, **environment: str) -> subprocess.CompletedProcess[str]:
        return self.tools.run(ROOT / "script/package", "--built", self.tree, *(arguments or ["sample"]),
                              **environment)


@pytest.fixture(scope="session")
def built_once() -> Sample:
    sample = Sample(ROOT / "build/macos/self-test/plain")
    sample.first_findings = sample.findings()
    return sample


@pytest.fixture
def sample(built_once: Sample) -> Iterator[Sample]:
    yield built_once
    built_once.restore()


@pytest.fixture
def bundle(sample: Sample, tmp_path: Path) -> Path:
    """A copy of the sample's universal bundle."""
    copy = tmp_path / f"{TITLE}.app"
    shutil.copytree(sample.build / "apps" / copy.name, copy)
    return copy


@pytest.fixture(scope="session")
def built_mac(built_once: Sample, tmp_path_factory: pytest.TempPathFactory) -> Mac:
    """One build for all tests."""
    return Mac(built_once, tmp_path_factory.mktemp("mac"))


@pytest.fixture
def mac(built_mac: Mac) -> Iterator[Mac]:
    """The same build with no calls recorded; what a test sets up is removed afterwards."""
    built_mac.tools.forget_calls()
    yield built_mac
    built_mac.tools.fail()
    built_mac.tools.add_identities()
