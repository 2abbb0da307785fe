"""Each rule about the files of a bundle finds what it is for."""

import plistlib
import shutil
from collections.abc import Callable
from pathlib import Path
from typing import Any

import bundle_files
import pytest
from conftest import TITLE, Sample

Break = Callable[[Path], Any]


@pytest.fixture
def files(sample: Sample, bundle: Path) -> bundle_files.BundleFiles:
    return bundle_files.BundleFiles(bundle, sample.source)


def findings(files: bundle_files.BundleFiles) -> list[str]:
    return [finding for rule in bundle_files.RULES.values() for finding in rule(files)]


def with_property(key: str, value: Any) -> Break:
    """Sets a value of the property list, or removes it."""

    def change(contents: Path) -> None:
        file = contents / "Info.plist"
        properties = plistlib.loads(file.read_bytes())
        properties[key] = value
        if value is None:
            del properties[key]
        file.write_bytes(plistlib.dumps(properties))

    return change


def with_text(name: str, old: str, new: str) -> Break:
    def change(contents: Path) -> None:
        text = (contents / name).read_text(encoding="utf-8")
        assert old in text
        (contents / name).write_text(text.replace(old, new), encoding="utf-8")

    return change


def without_icon_type(contents: Path) -> None:
    file = contents / "Resources/AppIcon.icns"
    file.write_bytes(file.read_bytes().replace(b"ic09", b"xxxx"))


def with_link(contents: Path) -> None:
    (contents / "Info.plist").rename(contents.parent / "elsewhere")
    (contents / "Info.plist").symlink_to("../elsewhere")


FRENCH = "Resources/fr.lproj/InfoPlist.strings"
KEY = "NSLocalNetworkUsageDescription"
BREAKS: dict[str, Break] = {
    "Info.plist is not a property list": lambda c: (c / "Info.plist").write_text("<plist>"),
    "names an NSMainNibFile": with_property("NSMainNibFile", "MainMenu"),
    "NSHighResolutionCapable is False": with_property("NSHighResolutionCapable", False),
    "LSApplicationCategoryType is public.app-category.games":
        with_property("LSApplicationCategoryType", "public.app-category.games"),
    "CFBundleLocalizations is ['en', 'fr'], the program has ['de', 'en', 'es', 'fr', 'it']":
        with_property("CFBundleLocalizations", ["en", "fr"]),
    "has strings in ['de', 'en', 'es', 'fr'], the program has ['de', 'en', 'es', 'fr', 'it']":
        lambda c: shutil.rmtree(c / "Resources/it.lproj"),
    "fr.lproj/InfoPlist.strings cannot be read: line 1": with_text(FRENCH, '";', '"'),
    f"fr.lproj/InfoPlist.strings has no {KEY}": lambda c: (c / FRENCH).write_text(f'"{KEY}" = "";'),
    "NSOther is translated, but not in Info.plist": with_text(FRENCH, KEY, "NSOther"),
    "icon has no ic09": without_icon_type,
    "lacks Resources/AppIcon.icns": lambda c: (c / "Resources/AppIcon.icns").unlink(),
    "lacks MacOS/configure-agent": lambda c: (c / "MacOS/configure-agent").unlink(),
    "lacks Resources/configure-agent.1": lambda c: (c / "Resources/configure-agent.1").unlink(),
    "lacks Resources/MainMenu.xib": lambda c: (c / "Resources/MainMenu.xib").unlink(),
    "holds Resources/notes.txt, which does not belong there":
        lambda c: (c / "Resources/notes.txt").touch(),
    f"MacOS/{TITLE} has permissions 644, not 755": lambda c: (c / "MacOS" / TITLE).chmod(0o644),
    "Resources/MainMenu.xib has permissions 755, not 644":
        lambda c: (c / "Resources/MainMenu.xib").chmod(0o755),
    "Info.plist is a link": with_link,
}
for name in bundle_files.PROPERTIES:
    BREAKS[f"{name} is None"] = with_property(name, None)


def test_the_bundle_as_it_is_has_no_finding(files: bundle_files.BundleFiles) -> None:
    assert findings(files) == []


@pytest.mark.parametrize("finding", BREAKS)
def test_a_break_is_found(files: bundle_files.BundleFiles, finding: str) -> None:
    BREAKS[finding](files.contents)
    assert finding in findings(files)


def test_every_rule_is_seen_to_fail(files: bundle_files.BundleFiles, tmp_path: Path) -> None:
    failed = set()
    for number, change in enumerate(BREAKS.values()):
        copy = bundle_files.BundleFiles(tmp_path / str(number) / files.path.name, files.source)
        shutil.copytree(files.path, copy.path)
        change(copy.contents)
        failed |= {name for name, rule in bundle_files.RULES.items() if list(rule(copy))}
    assert failed == set(bundle_files.RULES)
