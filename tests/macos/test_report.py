"""What script/report-mac and script/bootstrap say on a Mac, with replacements for Apple's tools."""

import shlex
import shutil
from pathlib import Path

import pytest
from conftest import ROOT, TITLE, AppleTools, Mac

CTEST = """echo "100% tests passed on $(hostname -s) by $(id -un) in $HOME"
exit 8"""


@pytest.fixture
def tools(tmp_path: Path) -> AppleTools:
    """A copy of the scripts in the folder "tree", with nothing built."""
    for name in ("script", "tools"):
        shutil.copytree(ROOT / name, tmp_path / "tree" / name)
    tools = AppleTools(tmp_path / "tools")
    replace_command(tools, "ctest", CTEST)
    return tools


def replace_command(tools: AppleTools, name: str, script: str) -> None:
    (tools.bin / name).write_text(f"#!/bin/bash\n{script}\n")
    (tools.bin / name).chmod(0o755)


def report(tools: AppleTools, home: str = "/Users/somebody") -> str:
    file = tools.folder / "report.txt"
    done = tools.run(tools.folder.parent / "tree/script/report-mac", file, HOME=home,
                     MAC_NOTARY_PROFILE="a-profile", SECRET="a-secret")
    assert (done.returncode, done.stdout) == (0, f"{file}\n"), done.stderr
    return file.read_text()


def test_the_report_says_what_has_not_been_built(tools: AppleTools) -> None:
    text = report(tools)
    for what, script in (("tests", "build"), ("bundles", "build"), ("packages", "package")):
        assert f"== {what}\nnot built: run script/{script}\n" in text
    called = {c[0] for c in tools.calls()}
    assert {"sw_vers", "xcodebuild", "ibtool"} <= called


def test_the_report_holds_test_results_and_the_checks_of_bundles_and_packages(
        tools: AppleTools, built_mac: Mac) -> None:
    build = tools.folder.parent / "tree/build"
    shutil.copytree(built_mac.bundle, build / "apps" / f"{TITLE}.app")
    (build / "CTestTestfile.cmake").touch()
    packages = build / "package/packages"
    packages.mkdir(parents=True)
    for name in ("Utility.pkg", "Utility.dmg"):
        (packages / name).touch()
    tools.fail("hdiutil verify")
    text = report(tools)
    assert "100% tests passed" in text and "(exit status 8)" in text
    app = f"build/apps/{TITLE}.app"
    for title in (f"signature of {app}", f"property list of {app}", f"files of {app}",
                  f"architectures of {app}/Contents/MacOS/{TITLE}",
                  "signature of build/package/packages/Utility.pkg"):
        assert f"== {title}\n" in text
    assert f"{app}/Contents/Resources/MainMenu.nib" in text
    assert "checksum of build/package/packages/Utility.dmg\nhdiutil: verify failed\n(exit status 1)" in text


@pytest.mark.parametrize("user, computer, home", [
    ("jdoe", "janes-mac", "/Users/somebody"),
    ("jane", "janes-mac", "/Users/jane"),
    ("janedoe", "jane", "/Users/janedoe"),
    (r"LAB\j.doe", "mac[1]", "/Volumes/R&D/jdoe"),
    ("j*doe", "m|c", "/Users/^j$"),
    ("jörg", "büro", "/Users/jörg"),
])
def test_the_report_names_neither_the_user_nor_the_computer_nor_any_secret(
        tools: AppleTools, user: str, computer: str, home: str) -> None:
    replace_command(tools, "id", f"printf '%s\\n' {shlex.quote(user)}")
    replace_command(tools, "hostname", f"printf '%s\\n' {shlex.quote(computer)}")
    (tools.folder.parent / "tree/build").mkdir()
    (tools.folder.parent / "tree/build/CTestTestfile.cmake").touch()
    text = report(tools, home)
    assert "tests passed on <computer> by <user> in ~\n" in text
    for name in (user, computer, home, "a-profile", "a-secret"):
        assert name not in text


def test_the_report_is_in_the_build_folder_unless_a_file_is_given(tools: AppleTools) -> None:
    done = tools.run(tools.folder.parent / "tree/script/report-mac")
    assert done.stdout == f"{tools.folder.parent}/tree/build/report-mac.txt\n"
    assert "== system" in Path(done.stdout.strip()).read_text()


def test_the_report_needs_a_mac(tools: AppleTools) -> None:
    with tools.without("uname"):
        done = tools.run(tools.folder.parent / "tree/script/report-mac")
    assert (done.returncode, done.stderr) == (1, "script/report-mac: needs a Mac\n")


@pytest.mark.parametrize("fault, missing, named", [
    ("", "", ""),
    ("xcrun --find", "", "a working ibtool"),
    ("ibtool --version", "", "a working ibtool"),
    ("", "gtest/gtest.h", "GoogleTest"),
    ("", "nlohmann/json.hpp", "nlohmann-json"),
])
def test_bootstrap_names_what_is_missing(
        tools: AppleTools, fault: str, missing: str, named: str) -> None:
    for header in {"gtest/gtest.h", "nlohmann/json.hpp"} - {missing}:
        file = tools.folder / "include" / header
        file.parent.mkdir(parents=True)
        file.touch()
    replace_command(tools, "brew", f"echo {shlex.quote(str(tools.folder))}")
    tools.fail(fault)
    done = tools.run(tools.folder.parent / "tree/script/bootstrap")
    assert done.returncode == (1 if named else 0)
    assert done.stderr.count("missing:") == (1 if named else 0) and named in done.stderr
