"""How bundles are made on a Mac, with stand-ins for the two tools that only a Mac has."""

import subprocess
import tarfile

import pytest
from conftest import ROOT

TITLE = "Zentavo Configuration Utility"
# Each notes how it was called; codesign also what the bundle held then.
IBTOOL = """#!/bin/bash
echo "$*" >> "{log}/ibtool"
while [ "$1" != --compile ]; do shift; done
echo compiled > "$2"
"""
CODESIGN = """#!/bin/bash
echo "$*" >> "{log}/codesign"
bundle="${{!#}}"
mkdir -p "$bundle/Contents/_CodeSignature"
(cd "$bundle/Contents" && find . -type f | sort) > "{log}/sealed"
cp "{log}/sealed" "$bundle/Contents/_CodeSignature/CodeResources"
"""


class Mac:
    """The sample configured as on a Mac."""

    def __init__(self, sample, folder):
        self.folder, self.tree = folder, folder / "tree"
        for name, text in (("ibtool", IBTOOL), ("codesign", CODESIGN)):
            (folder / "bin").mkdir(exist_ok=True)
            (folder / "bin" / name).write_text(text.format(log=folder), encoding="utf-8")
            (folder / "bin" / name).chmod(0o755)
        compiler = ROOT / "platform/macos/toolchain/c++"
        self.run("cmake", "-S", sample.source, "-B", self.tree, "-G", "Ninja",
                 f"-DCMAKE_TOOLCHAIN_FILE={ROOT / 'platform/macos/toolchain.cmake'}",
                 f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_OBJCXX_COMPILER={compiler}",
                 "-DMAC_ARCHITECTURE=arm64", f"-DMAC_API={sample.build / 'api'}",
                 f"-DIBTOOL={folder / 'bin/ibtool'}", f"-DCODESIGN={folder / 'bin/codesign'}",
                 "-DMAC_SIGNING_IDENTITY=Developer ID Application: Sample")
        self.build()

    def run(self, *command):
        subprocess.run([str(c) for c in command], check=True)

    def build(self):
        self.run("cmake", "--build", self.tree)

    def calls(self, tool):
        return (self.folder / tool).read_text(encoding="utf-8").splitlines()


@pytest.fixture
def mac(sample, tmp_path):
    if not (sample.build / "apps").exists():
        assert sample.findings() == []  # makes the headers and stubs
    return Mac(sample, tmp_path)


def test_the_whole_bundle_is_sealed_when_it_is_complete(mac):
    assert mac.calls("sealed") == [f"./{name}" for name in sorted([
        "Info.plist", f"MacOS/{TITLE}", "Resources/AppIcon.icns", "Resources/Sample.nib"])]


def test_an_identity_brings_the_hardened_runtime_and_a_timestamp(mac):
    assert mac.calls("codesign") == [
        "--force --sign Developer ID Application: Sample --options runtime --timestamp "
        f"{mac.tree}/apps/{TITLE}.app"]


def test_interface_files_are_compiled_for_the_minimum_system(mac):
    assert len(mac.calls("ibtool")) == 1
    assert "--minimum-deployment-target 10.13" in mac.calls("ibtool")[0]


def test_a_changed_resource_is_sealed_anew(mac, sample):
    sample.replace("resources/Sample.xib", 'title="Press"', 'title="Push"')
    mac.build()
    assert len(mac.calls("ibtool")) == len(mac.calls("codesign")) == 2


def test_nothing_is_done_twice(mac):
    mac.build()
    assert len(mac.calls("ibtool")) == len(mac.calls("codesign")) == 1


def test_a_package_holds_the_bundle_as_it_was_sealed(mac):
    mac.run("cpack", "--config", mac.tree / "CPackConfig-sample.cmake", "-G", "TGZ", "-B", mac.folder)
    with tarfile.open(next(mac.folder.glob("*.tar.gz"))) as package:
        packed = {m.name.partition(f"{TITLE}.app/")[2]: package.extractfile(m).read()
                  for m in package.getmembers() if m.isfile()}
    bundle = mac.tree / "apps" / f"{TITLE}.app"
    assert packed == {str(f.relative_to(bundle)): f.read_bytes()
                      for f in bundle.rglob("*") if f.is_file()}
    assert "Contents/_CodeSignature/CodeResources" in packed
