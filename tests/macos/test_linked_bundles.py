"""What the checks of linked files find in bundles that were changed after the build, or by another list."""

import dataclasses
import plistlib
import shutil
from pathlib import Path

import api
import macho
import pytest
from check import Bundle, Checks
from conftest import ROOT, TITLE, Sample
from cross_build import CrossBuild


@pytest.fixture
def rows(sample: Sample) -> list[api.Row]:
    return api.read(sample.source / "api.tsv")


def checks(source: Path, sample: Sample, rows: list[api.Row], *bundles: Path) -> Checks:
    scratch = sample.build / "scratch"
    shutil.rmtree(scratch, ignore_errors=True)
    scratch.mkdir()
    return Checks(CrossBuild(source, sample.build, rows, []), [Bundle(b, scratch) for b in bundles])


def set_identifier(bundle: Path, identifier: str) -> None:
    file = bundle / "Contents/Info.plist"
    file.write_bytes(plistlib.dumps({**plistlib.loads(file.read_bytes()), "CFBundleIdentifier": identifier}))


@pytest.mark.parametrize("name", [TITLE, "configure-agent"])
def test_an_executable_without_one_architecture_is_found(
        sample: Sample, rows: list[api.Row], bundle: Path, name: str) -> None:
    assert list(checks(sample.source, sample, rows, bundle).check_architectures()) == []
    executable = bundle / "Contents/MacOS" / name
    macho.tool("lipo", executable, "-thin", "arm64", "-output", executable)
    (finding,) = checks(sample.source, sample, rows, bundle).check_architectures()
    assert f"('{name}', 'arm64')" in finding and f"('{name}', 'x86_64')" not in finding


def test_two_bundles_with_the_same_identifier_are_found(
        sample: Sample, rows: list[api.Row], bundle: Path, tmp_path: Path) -> None:
    other = tmp_path / "other" / bundle.name
    shutil.copytree(bundle, other)
    both = checks(sample.source, sample, rows, bundle, other)
    assert list(both.check_identifiers()) == [
        "bundle identifiers are not unique: ['org.example.sample', 'org.example.sample']"]
    set_identifier(other, "org.example.other")
    assert list(checks(sample.source, sample, rows, bundle, other).check_identifiers()) == []


def test_an_edition_without_a_bundle_and_a_bundle_without_an_edition_are_found(
        sample: Sample, rows: list[api.Row], bundle: Path) -> None:
    other = checks(ROOT, sample, rows, bundle)
    other.bundles[0].title = "Other"
    missing = [f"{name} Configuration Utility" for name in ("Fennrow", "Oskel", "Tollwick", "Zentavo")]
    assert list(other.check_editions()) == [
        "Other: no edition", *(f"{title}: no bundle" for title in missing)]


def test_a_symbol_listed_for_another_library_is_found(
        sample: Sample, rows: list[api.Row], bundle: Path) -> None:
    moved = [dataclasses.replace(r, dylib="Foundation") if r.name == "NSApplicationMain" else r
             for r in rows]
    assert list(checks(sample.source, sample, rows, bundle).check_symbols()) == []
    assert list(checks(sample.source, sample, moved, bundle).check_symbols()) == [
        f"{TITLE} ({architecture}): _NSApplicationMain comes from AppKit, listed for Foundation"
        for architecture in ("arm64", "x86_64")]


@pytest.mark.parametrize("row", ["AppKit\t10.0\textern void NSBeep(void);",
                                 "AppKit\t10.0\t-\textern void NSBeep(void);\ttwo"])
def test_a_row_with_other_columns_is_refused(tmp_path: Path, row: str) -> None:
    table = tmp_path / "api.tsv"
    table.write_text(f"# A comment.\n{row}\n")
    with pytest.raises(SystemExit, match=":2: expected 4 columns"):
        api.read(table)
