"""How bundles are made on a Mac, with replacements for the two tools that only a Mac has."""

from pathlib import Path

import pytest
from bundle_files import program_languages
from conftest import ROOT, TITLE, Mac, Sample


def test_the_bundle_is_sealed_with_all_its_files(mac: Mac) -> None:
    sealed = (mac.bundle / "Contents/_CodeSignature/CodeResources").read_text().splitlines()
    assert sealed == sorted([
        "Info.plist", f"MacOS/{TITLE}", "MacOS/configure-agent", "Resources/AppIcon.icns",
        "Resources/MainMenu.nib", "Resources/configure-agent.1",
        *(f"Resources/{language}.lproj/InfoPlist.strings" for language in program_languages(ROOT))])


def test_an_identity_signs_the_tool_and_then_the_bundle_with_hardened_runtime_and_timestamp(
        mac: Mac) -> None:
    assert mac.first_calls_of("codesign") == [
        ["codesign", "--force", "--sign", "Developer ID Application: Sample", "--options", "runtime",
         "--timestamp", str(sealed)]
        for sealed in (mac.bundle / "Contents/MacOS/configure-agent", mac.bundle)]


def test_interface_files_are_compiled_for_the_minimum_system(mac: Mac) -> None:
    (call,) = mac.first_calls_of("ibtool")
    assert call[call.index("--minimum-deployment-target") + 1] == "11.0"


def test_a_changed_resource_is_sealed_again(mac: Mac, sample: Sample) -> None:
    sample.replace("resources/MainMenu.xib", 'title="Press"', 'title="Push"')
    mac.build()
    assert len(mac.tools.calls("ibtool")) == len(mac.tools.calls("codesign")) == 1


def test_nothing_is_done_twice(mac: Mac) -> None:
    mac.build()
    mac.tools.forget_calls()
    mac.build()
    assert mac.tools.calls() == []


@pytest.mark.parametrize("on_a_mac", [True, False])
def test_a_warning_stops_a_build_but_not_on_a_mac(mac: Mac, tmp_path: Path, on_a_mac: bool) -> None:
    mac.configure(ROOT, tmp_path, f"-DCMAKE_CROSSCOMPILING={'OFF' if on_a_mac else 'ON'}",
                  "-DBUILD_TESTING=OFF")
    commands = (tmp_path / "compile_commands.json").read_text()
    assert "-Wextra" in commands
    assert ("-Werror " in commands) != on_a_mac
