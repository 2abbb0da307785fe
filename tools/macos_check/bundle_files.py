"""Checks the files of a bundle: everything in it that is not code."""

import plistlib
import re
import stat
import struct
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any
from xml.parsers.expat import ExpatError

ICON_TYPES = set("is32 s8mk il32 l8mk ic07 ic08 ic09 ic10 ic11 ic12 ic13 ic14".split())
TOOL = "configure-agent"
# What the property list must say; {title} is the name of the bundle.
PROPERTIES = {
    "CFBundleDevelopmentRegion": "en",
    "CFBundleDisplayName": "{title}",
    "CFBundleExecutable": "{title}",
    "CFBundleIconFile": r"\w+",
    "CFBundleIdentifier": r"[a-z]+(\.[a-z-]+){2,}",
    "CFBundleInfoDictionaryVersion": r"6\.0",
    "CFBundleName": "{title}",
    "CFBundlePackageType": "APPL",
    "CFBundleShortVersionString": r"\d+\.\d+\.\d+",
    "CFBundleVersion": r"\d+\.\d+\.\d+",
    "LSApplicationCategoryType": r"public\.app-category\.utilities",
    "LSMinimumSystemVersion": r"\d+\.\d+",
    "NSHighResolutionCapable": "True",
    "NSHumanReadableCopyright": "Copyright © .*{title}",
    "NSLocalNetworkUsageDescription": ".{20,}",
    "NSPrincipalClass": "NSApplication",
}
QUOTED = r'"((?:[^"\\]|\\.)*)"'
STRING = re.compile(rf"\s*(?:/\*.*?\*/\s*)*{QUOTED}\s*=\s*{QUOTED}\s*;", re.DOTALL)


class BundleFiles:
    """A bundle, and the sources that say what belongs into it."""

    def __init__(self, path: Path, source: Path) -> None:
        self.path, self.source, self.title = path, source, path.stem
        self.contents = path / "Contents"
        self.resources = self.contents / "Resources"

    def property_list(self) -> dict[str, Any]:
        """Empty where there is none that can be read."""
        try:
            found = plistlib.loads((self.contents / "Info.plist").read_bytes())
        except (OSError, ValueError, ExpatError):
            return {}
        return found if isinstance(found, dict) else {}

    def languages(self) -> list[str]:
        return sorted(f.stem for f in self.resources.glob("*.lproj"))

    def strings(self, language: str) -> dict[str, str]:
        """What the strings file of that language says."""
        text = (self.resources / f"{language}.lproj/InfoPlist.strings").read_text(encoding="utf-8")
        found, at = {}, 0
        while match := STRING.match(text, at):
            found[match.group(1)] = match.group(2)
            at = match.end()
        if text[at:].strip():
            raise ValueError(f"line {text.count(chr(10), 0, at) + 1}")
        return found

    def files(self) -> list[str]:
        files = (f for f in self.contents.rglob("*") if not f.is_dir())
        return sorted(str(f.relative_to(self.contents)) for f in files)


def program_languages(root: Path) -> list[str]:
    """The codes of the program's table of languages."""
    table = (root / "i18n/language.cpp").read_text(encoding="utf-8")
    return sorted(re.findall(r'\{Language::\w+, "(\w+)"\}', table))


def icon_types(path: Path) -> set[str]:
    """The types of the images in an icon file."""
    data, types, at = path.read_bytes() if path.exists() else b"", set(), 8
    while at + 8 <= len(data):
        types.add(data[at:at + 4].decode("latin-1"))
        at += max(struct.unpack_from(">I", data, at + 4)[0], 8)
    return types


def property_list_is_complete(bundle: BundleFiles) -> Iterator[str]:
    found = bundle.property_list()
    if not found:
        yield "Info.plist is not a property list"
        return
    for key, pattern in PROPERTIES.items():
        pattern = pattern.replace("{title}", re.escape(bundle.title))
        if not re.fullmatch(pattern, str(found.get(key, ""))):
            yield f"{key} is {found.get(key)}"
    # The program loads its main interface file itself.
    if "NSMainNibFile" in found:
        yield "names an NSMainNibFile"


def every_language_is_declared(bundle: BundleFiles) -> Iterator[str]:
    declared = sorted(bundle.property_list().get("CFBundleLocalizations", []))
    wanted = program_languages(Path(__file__).resolve().parents[2])
    if declared != wanted:
        yield f"CFBundleLocalizations is {declared}, the program has {wanted}"
    if bundle.languages() != wanted:
        yield f"has strings in {bundle.languages()}, the program has {wanted}"


def strings_agree(bundle: BundleFiles) -> Iterator[str]:
    translated = {}
    for language in bundle.languages():
        try:
            translated[language] = bundle.strings(language)
        except (OSError, ValueError) as error:
            yield f"{language}.lproj/InfoPlist.strings cannot be read: {error}"
    keys = set().union(*(t.keys() for t in translated.values()))
    for language, strings in translated.items():
        for key in sorted(keys):
            if not strings.get(key):
                yield f"{language}.lproj/InfoPlist.strings has no {key}"
    for key in sorted(keys - bundle.property_list().keys()):
        yield f"{key} is translated, but not in Info.plist"


def icon_is_complete(bundle: BundleFiles) -> Iterator[str]:
    icon = bundle.resources / f"{bundle.property_list().get('CFBundleIconFile')}.icns"
    for kind in sorted(ICON_TYPES - icon_types(icon)):
        yield f"icon has no {kind}"


def files_are_those_expected(bundle: BundleFiles) -> Iterator[str]:
    resources = [f.name for pattern in ("resources/*.xib", "resources/*.json", "cli/*.1")
                 for f in bundle.source.glob(pattern)]
    expected = {"Info.plist", f"MacOS/{bundle.title}", f"MacOS/{TOOL}", "Resources/AppIcon.icns",
                *(f"Resources/{name}" for name in resources),
                *(f"Resources/{code}.lproj/InfoPlist.strings" for code in bundle.languages())}
    for name in sorted(expected - set(bundle.files())):
        yield f"lacks {name}"
    for name in sorted(set(bundle.files()) - expected):
        yield f"holds {name}, which does not belong there"


def permissions_are_right(bundle: BundleFiles) -> Iterator[str]:
    for name in bundle.files():
        file = bundle.contents / name
        wanted = 0o755 if name.startswith("MacOS/") else 0o644
        mode = stat.S_IMODE(file.lstat().st_mode)
        if file.is_symlink():
            yield f"{name} is a link"
        elif mode != wanted:
            yield f"{name} has permissions {mode:o}, not {wanted:o}"


Rule = Callable[[BundleFiles], Iterator[str]]
RULES: dict[str, Rule] = {
    "property list is valid and complete": property_list_is_complete,
    "every language of the program is declared and has its strings": every_language_is_declared,
    "strings files parse and hold the same keys": strings_agree,
    "icon has every size": icon_is_complete,
    "no file is missing or stray": files_are_those_expected,
    "executables can be executed, nothing else can": permissions_are_right,
}
