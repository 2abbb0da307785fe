#!/usr/bin/env python3
"""Replaces each of Apple's command-line tools by whose name it is called.

Each call is appended to $APPLE_TOOLS/calls, a line of JSON. Packages and images are real archives, in
Apple's own format where a Debian package writes it: an installer package is a xar archive whose payload
is a compressed cpio archive, without the bill of materials; a disk image is a tar archive.

$APPLE_TOOLS/faults lists what must go wrong, one per line: "<tool> <first argument> [times]" makes
such calls fail, "pkgbuild empty" leaves the payload out.
"""

import json
import os
import plistlib
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path
from xml.sax.saxutils import quoteattr

STATE = Path(os.environ["APPLE_TOOLS"])
OPTIONS_WITHOUT_VALUE = {"-quiet", "-ov", "-readonly", "-nobrowse", "-force", "--timestamp"}


def archive(file: Path, folder: Path, *options: str) -> None:
    subprocess.run(["bsdtar", *options, "-cf", str(file), "-C", str(folder), "."], check=True)


def extract(file: Path, folder: Path) -> None:
    folder.mkdir(parents=True, exist_ok=True)
    subprocess.run(["bsdtar", "-xpf", str(file), "-C", str(folder)], check=True)


def options(arguments: list[str]) -> tuple[dict[str, str], list[str]]:
    """Options with their values, and what is left."""
    named, rest = {}, []
    words = iter(arguments)
    for word in words:
        if word in OPTIONS_WITHOUT_VALUE:
            named[word] = ""
        elif word.startswith("-") and word != "-":
            named[word] = next(words)
        else:
            rest.append(word)
    return named, rest


def must_fail(tool: str, word: str) -> bool:
    """Whether this call must fail; counts down faults that have a limit."""
    file = STATE / "faults"
    lines = file.read_text().splitlines() if file.exists() else []
    for number, line in enumerate(lines):
        fault = line.split()
        if fault[:2] != [tool, word] or fault[2:] == ["0"]:
            continue
        if len(fault) > 2:
            lines[number] = f"{tool} {word} {int(fault[2]) - 1}"
            file.write_text("\n".join(lines))
        return True
    return False


def ibtool(arguments: list[str]) -> None:
    if arguments == ["--version"]:
        print("ibtool: replaced")
        return
    Path(arguments[arguments.index("--compile") + 1]).write_text("compiled\n")


def codesign(arguments: list[str]) -> None:
    target = Path(arguments[-1])
    signature = target / "Contents/_CodeSignature/CodeResources"
    if "--verify" in arguments:
        if not signature.exists():
            sys.exit(f"{target}: code object is not signed at all")
    elif target.is_dir():
        inside = sorted(str(f.relative_to(target / "Contents")) for f in target.rglob("*")
                        if f.is_file() and f != signature)
        signature.parent.mkdir(exist_ok=True)
        signature.write_text("\n".join(inside) + "\n")


def pkgbuild(arguments: list[str]) -> None:
    named, (output,) = options(arguments)
    root = Path(named["--root"])
    components = plistlib.loads(Path(named["--component-plist"]).read_bytes()) \
        if "--component-plist" in named else []
    fixed = {c["RootRelativeBundlePath"] for c in components if not c.get("BundleIsRelocatable", True)}
    relocatable = [a.name for a in root.glob("*.app") if a.name not in fixed]
    bundles = "".join(f"<bundle id={quoteattr(name)}/>\n" for name in relocatable)
    with tempfile.TemporaryDirectory() as scratch:
        package = Path(scratch)
        (package / "PackageInfo").write_text(
            f"<pkg-info identifier={quoteattr(named['--identifier'])}"
            f" version={quoteattr(named['--version'])}"
            f" install-location={quoteattr(named['--install-location'])}>\n"
            f"<relocate>\n{bundles}</relocate>\n</pkg-info>\n")
        empty = package / "empty"
        empty.mkdir()
        archive(package / "Payload", empty if must_fail("pkgbuild", "empty") else root,
                "--format", "odc", "-z")
        empty.rmdir()
        archive(Path(output), package, "--format", "xar")


def productbuild(arguments: list[str]) -> None:
    named, (output,) = options(arguments)
    with tempfile.TemporaryDirectory() as scratch:
        product = Path(scratch)
        shutil.copy(named["--distribution"], product / "Distribution")
        shutil.copytree(named["--resources"], product / "Resources")
        for component in Path(named["--package-path"]).glob("*.pkg"):
            extract(component, product / component.name)
        archive(Path(output), product, "--format", "xar")


def pkgutil(arguments: list[str]) -> None:
    if arguments[0] != "--expand-full":
        return
    folder = Path(arguments[2])
    extract(Path(arguments[1]), folder)
    for payload in folder.rglob("Payload"):
        packed = payload.rename(payload.with_name("packed"))
        extract(packed, payload)
        packed.unlink()


def hdiutil(arguments: list[str]) -> None:
    named, rest = options(arguments[1:])
    if arguments[0] == "create":
        archive(Path(rest[0]), Path(named["-srcfolder"]))
    elif arguments[0] == "attach":
        extract(Path(rest[0]), Path(named["-mountpoint"]))
    elif arguments[0] == "detach":
        shutil.rmtree(rest[0])


def security(_: list[str]) -> None:
    file = STATE / "identities"
    print(file.read_text() if file.exists() else "     0 valid identities found")


def otool(arguments: list[str]) -> None:
    os.execvp("llvm-otool-14", ["llvm-otool-14", *arguments])


def uname(arguments: list[str]) -> None:
    print("Darwin" if arguments in ([], ["-s"]) else f"Darwin {' '.join(arguments)}")


ACTIONS = {f.__name__: f for f in (ibtool, codesign, pkgbuild, productbuild, pkgutil, hdiutil, security,
                                   otool, uname)}


def main() -> None:
    tool, arguments = Path(sys.argv[0]).name, sys.argv[1:]
    with (STATE / "calls").open("a", encoding="utf-8") as calls:
        calls.write(json.dumps([tool, *arguments]) + "\n")
    if arguments and must_fail(tool, arguments[0]):
        sys.exit(f"{tool}: {arguments[0]} failed")
    # Those without an action only succeed: lipo, plutil, sleep, spctl, xcrun.
    if tool in ACTIONS:
        ACTIONS[tool](arguments)


main()
