"""Builds the program for both processors and joins the two into universal bundles."""

import json
import re
import shutil
import subprocess
from collections.abc import Sequence
from pathlib import Path

import api
import macho

ROOT = Path(__file__).resolve().parents[2]
ARCHITECTURES = ("arm64", "x86_64")
TOOLCHAIN = ROOT / "platform/macos/toolchain.cmake"
TEST_HEADERS = ("gtest", "gmock", "nlohmann")


class BuildFailed(Exception):
    """Carries the messages of the compiler and the linker."""

    def errors(self) -> list[str]:
        found = re.findall(r"^.*\berror: .*$", str(self), re.MULTILINE)
        return found or str(self).splitlines()[-20:]


def run(*command: str | Path) -> str:
    done = subprocess.run([str(part) for part in command], text=True, errors="replace",
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        raise BuildFailed(done.stdout)
    return done.stdout


class CrossBuild:
    """One build tree per architecture, and the universal bundles made of both."""

    def __init__(self, source: Path, folder: Path, rows: Sequence[api.Row],
                 test_rows: Sequence[api.Row]) -> None:
        self.source, self.folder, self.rows, self.test_rows = source, folder, rows, test_rows
        self.api_folder = folder / "api"
        self.test_headers = folder / "test-headers"
        self.apps = folder / "apps"

    def tree(self, architecture: str) -> Path:
        return self.folder / architecture

    def configure(self) -> None:
        api.write_headers(self.api_folder, self.rows, self.test_rows)
        # Only these: the folder that Debian has them in also holds its own C library's headers.
        self.test_headers.mkdir(parents=True, exist_ok=True)
        for name in TEST_HEADERS:
            if not (self.test_headers / name).is_symlink():
                (self.test_headers / name).symlink_to(Path("/usr/include") / name)
        for architecture in ARCHITECTURES:
            self.configure_tree(architecture)

    def options(self, architecture: str) -> list[str]:
        """How CMake is told to compile for macOS."""
        return ["-G", "Ninja", f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}",
                f"-DMAC_ARCHITECTURE={architecture}", f"-DMAC_API={self.api_folder}",
                f"-DGTest_DIR={Path(__file__).with_name('test_headers')}",
                f"-DMAC_TEST_HEADERS={self.test_headers}"]

    def configure_tree(self, architecture: str) -> None:
        tree = self.tree(architecture)
        cache = tree / "CMakeCache.txt"
        if not cache.exists() or cache.stat().st_mtime < TOOLCHAIN.stat().st_mtime:
            run("cmake", "--fresh", "-S", self.source, "-B", tree, "-DCMAKE_BUILD_TYPE=Release",
                *self.options(architecture))
        run("ninja", "-C", tree, "build.ninja")

    def objects(self, architecture: str, of_tests: bool) -> list[str]:
        """The object files of the tests, or those of the program, relative to the tree."""
        targets = run("ninja", "-C", self.tree(architecture), "-t", "targets", "all")
        objects = re.findall(r"^(.+\.o): ", targets, re.MULTILINE)
        return [o for o in objects if o.startswith("tests/") == of_tests]

    def compile(self, of_tests: bool) -> int:
        """Compiles every source of the tests, or of the program; returns how many those are."""
        objects: list[str] = []
        for architecture in ARCHITECTURES:
            objects = self.objects(architecture, of_tests)
            if objects:
                run("ninja", "-C", self.tree(architecture), "-k", "0", *objects)
        return len(objects)

    def link(self) -> None:
        """Links the program's executables and joins them; everything must be compiled."""
        # Only the objects say what the C++ library must supply.
        wanted: set[str] = set()
        for architecture in ARCHITECTURES:
            tree = self.tree(architecture)
            objects = self.objects(architecture, of_tests=False)
            wanted |= macho.undefined([tree / o for o in objects])
        api.write_stubs(self.api_folder, self.rows, sorted(wanted))
        for architecture in ARCHITECTURES:
            run("ninja", "-C", self.tree(architecture))
        shutil.rmtree(self.apps, ignore_errors=True)
        for bundle in sorted(self.tree("arm64").glob("apps/*.app")):
            self.join(bundle)

    def join(self, bundle: Path) -> None:
        universal = self.apps / bundle.name
        shutil.copytree(bundle, universal)
        for executable in sorted((bundle / "Contents/MacOS").iterdir()):
            inside = executable.relative_to(bundle)
            macho.tool("lipo", "-create", "-output", universal / inside,
                       *(self.tree(a) / "apps" / bundle.name / inside for a in ARCHITECTURES))

    def sources(self) -> str:
        """The text of every file in a folder of the program's compiled sources."""
        commands = json.loads((self.tree("arm64") / "compile_commands.json").read_text())
        folders = {Path(c["file"]).parent for c in commands}
        return "\n".join(f.read_text(encoding="utf-8") for folder in sorted(folders)
                         if not folder.is_relative_to(self.source / "tests")
                         for f in sorted(folder.iterdir()) if f.suffix in (".h", ".mm", ".cpp"))
