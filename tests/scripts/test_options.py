"""Every script and every option of it: in a copy of the tree in which expensive commands only record
how they were called."""

import os
import re
import shutil
import subprocess
from pathlib import Path

import pytest
from driver.commands import run
from driver.display import Display
from driver.interface import Interface
from driver.paths import REPOSITORY
from driver.waiting import wait_until

BUILD = Path(os.environ.get("BUILD", REPOSITORY / "build"))
# Called by other programs only, never by a person: simulated commands of the lab, the compiler of the
# cross-build.
NOT_FOR_PEOPLE = ("lab/simulated/", "platform/macos/toolchain/c++", "tests/macos/apple_tools/")


def tracked(*patterns: str) -> list[str]:
    listing = ["git", "ls-files", "--cached", "--others", "--exclude-standard", "--", *patterns]
    output = subprocess.run(listing, cwd=REPOSITORY, capture_output=True, text=True, check=True)
    return [name for name in output.stdout.splitlines() if (REPOSITORY / name).exists()]


def is_script(name: str) -> bool:
    with (REPOSITORY / name).open("rb") as file:
        return file.read(2) == b"#!" and not name.startswith(NOT_FOR_PEOPLE)


SCRIPTS = [name for name in tracked() if is_script(name)]
# Its options are those of ctest.
PASSES_OPTIONS_ON = {"script/test"}

RECORD = """#!/bin/bash
printf '%s' "${0#"$TREE/"}" >> "$TREE/calls"
printf ' %s' "$@" >> "$TREE/calls"
echo >> "$TREE/calls"
"""
ON_PATH = ("apt-get", "cmake", "ctest", "npm", "sudo")


class Tree:
    """A copy of the scripts. The given commands, and those that are expensive everywhere, are replaced."""

    def __init__(self, folder: Path):
        self.folder, self.output = folder, ""
        used = tracked("script", "tools", "fuzz", "resources", "platform/macos/toolchain")
        for name in (*SCRIPTS, *used):
            (folder / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(REPOSITORY / name, folder / name)
        (folder / "build").mkdir()
        shutil.copy2(BUILD / "editions.tsv", folder / "build")
        (folder / "build/build.ninja").touch()
        self.replace(*(f"bin/{name}" for name in ON_PATH))
        for target in (REPOSITORY / "fuzz/corpus").iterdir():
            self.replace(f"build/fuzz/fuzz/fuzz_{target.name}")

    def replace(self, *names: str, text: str = RECORD) -> None:
        for name in names:
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            (self.folder / name).write_text(text)
            (self.folder / name).chmod(0o755)

    def run(self, *command: str, status: int = 0) -> list[str]:
        """Runs a script from another folder and returns the calls that it made."""
        script, *arguments = command
        calls = self.folder / "calls"
        calls.write_text("")
        path = f"{self.folder}/bin:{os.environ['PATH']}"
        environment = os.environ | {"TREE": str(self.folder), "PATH": path}
        result = run(self.folder / script, *arguments, cwd="/", env=environment)
        self.output = result.stdout
        assert result.returncode == status, result.stdout + result.stderr
        return calls.read_text().splitlines()


@pytest.fixture
def tree(tmp_path: Path) -> Tree:
    return Tree(tmp_path)


def call(script: str, *arguments: str) -> subprocess.CompletedProcess[str]:
    return run(REPOSITORY / script, *arguments, cwd="/")


@pytest.mark.parametrize("option", ["--help", "-h"])
@pytest.mark.parametrize("script", SCRIPTS)
def test_help_prints_the_usage(script: str, option: str) -> None:
    result = call(script, option)
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout.startswith(f"usage: {script}")


@pytest.mark.parametrize("script", [name for name in SCRIPTS if name not in PASSES_OPTIONS_ON])
def test_an_unknown_option_is_refused_with_the_usage(script: str) -> None:
    result = call(script, "--no-such-option")
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr.startswith(f"usage: {script}")


@pytest.mark.parametrize("command", [
    "script/bench 1", "script/bench 5 6", "script/check-macos --self-test x", "script/fuzz 0",
    "script/fuzz 5 6", "script/fleet-bench 0", "script/fleet-bench 3 5x", "script/fleet-bench 3 5 0",
])
def test_wrong_numbers_and_too_many_arguments_are_refused(command: str) -> None:
    script, *arguments = command.split()
    result = call(script, *arguments)
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr.startswith(f"usage: {script}")


CI_STEPS = "script/lint script/test script/check-macos script/fuzz script/coverage script/faults"
# Script and arguments, what is replaced for it, and calls that it makes, in this order.
# tests/macos runs script/check-macos --self-test, script/package and script/report-mac.
RUNS = [
    (".ci/run", CI_STEPS, "lint;test;check-macos;fuzz 30;coverage;faults"),
    ("script/bench", "build/bench/bench/commands_bench", r"commands_bench .*=90 ;measure.py .* 30$"),
    ("script/bench 5", "build/bench/bench/commands_bench", r"commands_bench .*=15 ;measure.py .* 5$"),
    ("script/bootstrap", "bin/dpkg-query", r"apt-get update;apt-get install .* clang "),
    ("script/build", "", "--target all "),
    ("script/build Zentavo", "", "--target Zentavo$"),
    ("script/build Oskel Fennrow", "", "--target Quorvix Fennrow$"),
    ("script/demo", "script/build", "script/build;lab/run -- .* Zentavo --language en --pictures /"),
    ("script/demo --edition Oskel", "script/build", "lab/run -- .* Quorvix "),
    ("script/demo --language de", "script/build", "lab/run -- .* --language de "),
    ("script/demo --by-hand", "script/build", "lab/run --display -- .* --by-hand$"),
    ("script/fleet-bench", "script/build lab/fleet", "fleet 1 -- .* table 3 10 50;fleet 50 -- .* growth 1 50$"),
    ("script/fleet-bench 1 2", "script/build lab/fleet", "fleet 2 -- .* table 1 10 50;fleet 2 -- .* growth"),
    ("script/fuzz", "", "--target fuzz_targets;fuzz_utf8 -max_total_time=1[0-9] "),
    ("script/fuzz 10", "", "--target fuzz_targets;fuzz_utf8 -max_total_time=[1-9] "),
    ("script/fuzz", "fuzz/new.cpp build/fuzz/fuzz/fuzz_new", "fuzz_new .* fuzz/corpus/new$"),
    ("script/lint shell", "bin/git bin/xargs", " shellcheck$"),
    ("script/lint shell format", "bin/git bin/xargs", " shellcheck$; clang-format "),
    ("script/sanitize", "", "cmake --preset instrumented;ctest .*unit;ctest .*window"),
    ("script/stress", "script/test", r"script/test -R \^stress"),
    ("script/test", "script/build", "ctest --test-dir build .* --parallel 2$"),
    ("script/test -R unit", "script/build", "ctest .* -R unit$"),
]


@pytest.mark.parametrize(("command", "replaced", "expected"), RUNS, ids=[run[0] for run in RUNS])
def test_a_script_runs_with_its_options(
    tree: Tree, command: str, replaced: str, expected: str
) -> None:
    if command != "script/bootstrap":
        tree.replace("script/bootstrap")
    tree.replace("lab/run", *replaced.split())
    calls = tree.run(*command.split())
    for pattern in expected.split(";"):
        found = [i for i, line in enumerate(calls) if re.search(pattern, line)]
        assert found, f"no call like {pattern!r} in {calls}"
        calls = calls[found[0] + 1 :]


@pytest.mark.parametrize(("missed", "status"), [(5, 0), (6, 1)])
def test_coverage_runs_the_tests_and_fails_below_95_percent(
    tree: Tree, missed: int, status: int
) -> None:
    tree.replace("script/sanitize", "bin/llvm-profdata-14")
    tree.replace("bin/llvm-cov-14", text=f"#!/bin/bash\necho TOTAL - - - - - - 100 {missed}\n")
    calls = tree.run("script/coverage", status=status)
    assert calls[0].strip() == "script/sanitize"
    assert f"| `app/` | 100 | {100 - missed} | {100 - missed}.0 % |" in tree.output


@pytest.mark.parametrize(
    ("log", "tried", "status"), [("12 faults tried\n\n3 faults tried", 15, 0), ("", 0, 1)]
)
def test_the_numbers_of_faults_are_added_up_and_none_at_all_is_a_failure(
    tree: Tree, log: str, tried: int, status: int
) -> None:
    file = tree.folder / "build/Testing/Temporary/LastTest.log"
    file.parent.mkdir(parents=True)
    file.write_text(log)
    tree.replace("script/test")
    assert tree.run("script/faults", status=status)[0].startswith("script/test -C Faults -R ^e2e")
    assert tree.output == f"{tried} faults tried\n"


def test_continuous_integration_stops_at_the_first_failure(tree: Tree) -> None:
    tree.replace(*CI_STEPS.split())
    tree.replace("script/test", text="exit 1")
    assert [line.strip() for line in tree.run(".ci/run", status=1)] == ["script/lint"]


def test_npm_packages_are_installed_once(tree: Tree) -> None:
    folders = (tree.folder / "platform/macos/toolchain", tree.folder / "build/packages")
    install = ("tools/install_npm", *map(str, folders))
    npm = tree.folder / "bin/npm"
    recorded = npm.read_text()
    npm.write_text("#!/bin/bash\necho no network; exit 1\n")
    tree.run(*install, status=1)
    npm.write_text(recorded)
    assert [line.split()[:2] for line in tree.run(*install)] == [["bin/npm", "--prefix"]]
    assert tree.run(*install) == []


def test_mutations_are_listed(tree: Tree) -> None:
    tree.replace("script/bootstrap")
    tree.run("script/mutate", "--list", "--only", "^rm f")
    assert tree.output == "rm forced  (agent/settings_reset.cpp)\n"


def test_an_unknown_check_fails(tree: Tree) -> None:
    tree.replace("script/bootstrap")
    tree.run("script/lint", "no_such_check", status=1)


def test_editions_are_listed_by_vendor_and_found_by_product() -> None:
    table = (BUILD / "editions.tsv").read_text().splitlines()[1:]
    every = call("script/editions", "--build", str(BUILD)).stdout.splitlines()
    assert every == [row.split("\t")[0] for row in table]
    found = call("script/editions", "--build", str(BUILD), "Oskel", "Zentavo", "Quorvix")
    assert found.stdout.splitlines() == ["Quorvix", "Zentavo", "Quorvix"]


@pytest.mark.parametrize("script", ["script/build", "script/editions", "script/demo --edition"])
def test_an_unknown_edition_is_refused(tree: Tree, script: str) -> None:
    tree.replace("script/bootstrap", "lab/run")
    calls = tree.run(*script.split(), "Oskl", status=2)
    assert not any("Oskl" in line for line in calls)


def test_the_icon_is_drawn(tree: Tree) -> None:
    icons = [tree.folder / f"resources/AppIcon.{ending}" for ending in ("icns", "png")]
    for icon in icons:
        icon.unlink()
    tree.run("script/icon")
    assert [icon.read_bytes()[:4] for icon in icons] == [b"icns", b"\x89PNG"]


def test_the_theme_that_is_drawn_replaces_the_old_one(tree: Tree) -> None:
    theme = tree.folder / "platform/gnustep/theme"
    (theme / "Resources/Old").mkdir(parents=True)
    (theme / "draw.py").write_text(
        "import pathlib, sys\n"
        'drawn = pathlib.Path(sys.argv[1], "ThemeImages")\n'
        "drawn.mkdir(parents=True)\n"
        '(drawn / "new.png").touch()\n'
    )
    tree.replace("bin/optipng")
    (call,) = tree.run("script/theme")
    assert call.endswith("/Resources/ThemeImages/new.png")
    assert [file.name for file in (theme / "Resources").rglob("*")] == ["ThemeImages", "new.png"]


def test_pictures_that_have_changed_replace_the_old_ones_and_others_go(tree: Tree) -> None:
    tree.replace("script/build")
    taken = "mkdir -p build/pictures; echo new > build/pictures/changed.png; echo same > build/pictures/same.png"
    tree.replace("lab/run", text=f"#!/bin/bash\n{taken}\n")
    kept = tree.folder / "docs/pictures"
    kept.mkdir(parents=True)
    for name in ("changed", "same", "gone"):
        (kept / f"{name}.png").write_text("same\n")
    tree.run("script/pictures")
    assert tree.output == "docs/pictures/changed.png\n"
    assert {file.name: file.read_text() for file in kept.iterdir()} == {
        "changed.png": "new\n",
        "same.png": "same\n",
    }


def test_the_demo_by_hand_opens_the_program_on_the_users_display() -> None:
    display = Display()
    x, y = Interface("MainMenu").box("QuitButton").middle

    def quit_the_program() -> bool:
        title = "^Oskel Configuration Utility$"
        for window in display.xdotool("search", "--onlyvisible", "--name", title).split():
            if place := display.geometry(window):
                display.xdotool("mousemove", place[0] + x, place[1] + y, "click", 1)
        return demo.poll() is not None

    demo = subprocess.Popen(
        [REPOSITORY / "script/demo", "--edition", "Oskel", "--by-hand"],
        env=display.environment,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    )
    try:
        wait_until(quit_the_program, "end of the demo", 180)
        output = demo.communicate()[0]
    finally:
        demo.kill()
        display.close()
    assert demo.returncode == 0, output
    assert "Apply and Quit end the program" in output
    assert output.endswith("exit status: 0\n")


COMMAND = re.compile(r"(?<![\w/.])((?:script|lab|\.ci)/[\w-]+)(?![\w./-])([^`#|;\n]*)")


@pytest.mark.parametrize("document", tracked("*.md"))
def test_commands_in_the_documents_exist_with_their_options(document: str) -> None:
    for script, arguments in COMMAND.findall((REPOSITORY / document).read_text()):
        assert script in SCRIPTS, f"{document} shows {script}"
        for option in re.findall(r" (--\w[\w-]*)", arguments.split(" -- ")[0]):
            assert option in call(script, "--help").stdout, f"{document} shows {script} {option}"


def commands_for_one_test() -> list[str]:
    """Those of CONTRIBUTING.md; the last needs a build of script/fuzz."""
    text = (REPOSITORY / "CONTRIBUTING.md").read_text()
    *commands, _ = text.split("To run one test alone")[1].split("```")[1].splitlines()[1:]
    return commands


@pytest.mark.parametrize("command", commands_for_one_test())
def test_a_documented_command_for_one_test_finds_a_test(command: str) -> None:
    listing = "--collect-only" if "pytest" in command else "--gtest_list_tests"
    result = run("/bin/bash", "-c", f"{command} {listing}", cwd=REPOSITORY)
    assert result.returncode == 0, result.stdout + result.stderr
    assert re.search(r"^  \w|::\w|<Function", result.stdout, re.MULTILINE), result.stdout
