"""What script/package makes, with replacements for Apple's tools that build real archives."""

import shutil
import subprocess
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import pytest
from bundle_files import program_languages
from conftest import ROOT, TITLE, Mac

IDENTITY = "Developer ID Application: Sample"
INSTALLER = "Developer ID Installer: Sample"


@pytest.fixture(scope="module")
def packing(built_mac: Mac) -> list[list[str]]:
    """Packs once for all tests that look at what has been packed; how that called Apple's tools."""
    built_mac.tools.forget_calls()
    done = built_mac.package()
    assert done.returncode == 0, done.stderr
    return built_mac.tools.calls()


@pytest.fixture(scope="module")
def packages(built_mac: Mac, packing: list[list[str]],
             tmp_path_factory: pytest.TempPathFactory) -> Path:
    folder = tmp_path_factory.mktemp("packed") / "packages"
    shutil.copytree(built_mac.tree / "packages", folder)
    return folder


@pytest.fixture
def product(packages: Path, tmp_path: Path) -> Path:
    """The opened installer package."""
    return opened(packages / name("pkg"), tmp_path / "product")


def opened(archive: Path, folder: Path) -> Path:
    folder.mkdir()
    subprocess.run(["bsdtar", "-xpf", archive, "-C", folder], check=True)
    return folder


def contents(folder: Path) -> dict[str, tuple[bytes, int]]:
    """Content and permissions of every file."""
    return {str(f.relative_to(folder)): (f.read_bytes(), f.stat().st_mode)
            for f in folder.rglob("*") if f.is_file()}


def name(kind: str) -> str:
    return f"{TITLE.replace(' ', '-')}-1.0.0.{kind}"


def test_the_installer_package_holds_the_bundle_as_it_was_sealed(mac: Mac, product: Path,
                                                                 tmp_path: Path) -> None:
    payload = opened(product / "component.pkg/Payload", tmp_path / "payload")
    assert [f.name for f in payload.iterdir()] == [f"{TITLE}.app"]
    assert contents(payload / f"{TITLE}.app") == contents(mac.bundle)
    assert "Contents/_CodeSignature/CodeResources" in contents(mac.bundle)


def test_the_installer_puts_it_into_utilities_and_nowhere_else(product: Path) -> None:
    info = ElementTree.parse(product / "component.pkg/PackageInfo").getroot()
    assert info.attrib == {"identifier": "org.example.sample", "version": "1.0.0",
                           "install-location": "/Applications/Utilities"}
    assert info.findall("relocate/bundle") == []


def test_the_installer_says_what_it_installs_and_where_it_can(product: Path) -> None:
    root = ElementTree.parse(product / "Distribution").getroot()

    def attributes(path: str) -> dict[str, str]:
        element = root.find(path)
        assert element is not None, path
        return element.attrib

    assert root.findtext("title") == TITLE
    assert attributes("options")["hostArchitectures"] == "arm64,x86_64"
    assert attributes("volume-check/allowed-os-versions/os-version") == {"min": "11.0"}
    assert attributes("domains") == {"enable_anywhere": "false", "enable_currentUserHome": "false",
                                     "enable_localSystem": "true"}
    references = {r.get("id"): (r.text, r.get("version")) for r in root.findall("pkg-ref")}
    assert references == {"org.example.sample": ("component.pkg", "1.0.0")}
    assert attributes("choice/pkg-ref") == {"id": "org.example.sample"}
    assert [line.get("choice") for line in root.findall("choices-outline/line")] == \
        [choice.get("id") for choice in root.findall("choice")]


def test_the_installer_has_a_readme_in_every_language_of_the_program(product: Path) -> None:
    readme = ElementTree.parse(product / "Distribution").getroot().find("readme")
    assert readme is not None
    languages = program_languages(ROOT)
    folders = sorted(f.name for f in (product / "Resources").iterdir())
    assert folders == [f"{language}.lproj" for language in languages]
    strings = set()
    for language in languages:
        text = (product / f"Resources/{language}.lproj" / readme.attrib["file"]).read_text("utf-8")
        assert f"{TITLE} 1.0.0" in text and "macOS 11.0" in text and "@" not in text
        assert f'lang="{language}"' in text
        strings.add(text)
    assert len(strings) == len(languages)


def test_the_disk_image_holds_the_bundle_and_a_link_to_utilities(mac: Mac, packages: Path,
                                                                  tmp_path: Path) -> None:
    volume = opened(packages / name("dmg"), tmp_path / "volume")
    assert sorted(f.name for f in volume.iterdir()) == ["Utilities", f"{TITLE}.app"]
    assert str((volume / "Utilities").readlink()) == "/Applications/Utilities"
    assert contents(volume / f"{TITLE}.app") == contents(mac.bundle)


def test_the_disk_image_bears_the_title(packing: list[list[str]]) -> None:
    (created,) = (c for c in packing if c[:2] == ["hdiutil", "create"])
    assert created[created.index("-volname") + 1] == TITLE


def test_the_bundle_is_sealed_before_it_is_packed(mac: Mac) -> None:
    mac.tools.forget_calls()
    (mac.tree / "apps" / f"{TITLE}.app/Contents/MacOS" / TITLE).unlink()
    mac.build()
    assert mac.package().returncode == 0
    made = [c[0] for c in mac.tools.calls() if c[0] in ("codesign", "pkgbuild", "productbuild")]
    assert made[:3] == ["codesign", "pkgbuild", "productbuild"]


def test_an_opened_image_is_closed_again(packing: list[list[str]]) -> None:
    assert [c[1] for c in packing if c[0] == "hdiutil"] == ["create", "attach", "detach"]


def test_identities_sign_both_and_notarisation_staples_both(mac: Mac) -> None:
    mac.tools.add_identities(IDENTITY, INSTALLER)
    done = mac.package(MAC_SIGNING_IDENTITY=IDENTITY, MAC_INSTALLER_IDENTITY=INSTALLER,
                       MAC_NOTARY_PROFILE="utility")
    assert done.returncode == 0, done.stderr
    (product,) = mac.tools.calls("productbuild")
    assert product[product.index("--sign") + 1] == INSTALLER
    signed = [c[-1] for c in mac.tools.calls("codesign") if "--sign" in c]
    assert [Path(s).name for s in signed] == [name("dmg")]
    notarised = [(c[1], c[2], Path(c[3]).name) for c in mac.tools.calls("xcrun")]
    assert notarised == [(tool, action, name(kind)) for kind in ("pkg", "dmg") for tool, action in
                         (("notarytool", "submit"), ("stapler", "staple"))]


# ---- what goes wrong ----

def refused(mac: Mac, message: str, **environment: str) -> None:
    done = mac.package(**environment)
    assert done.returncode == 1 and message in done.stderr, done.stdout + done.stderr


# GNUstep brings a plutil of its own, so that one is never missing here.
@pytest.mark.parametrize("tool", ["codesign", "hdiutil", "lipo", "otool", "pkgbuild", "pkgutil",
                                  "productbuild", "security"])
def test_a_missing_tool_is_named(mac: Mac, tool: str) -> None:
    with mac.tools.without(tool):
        refused(mac, f"{tool} is missing")


@pytest.mark.parametrize("variable", ["MAC_SIGNING_IDENTITY", "MAC_INSTALLER_IDENTITY"])
def test_an_identity_that_the_keychain_lacks_is_named(mac: Mac, variable: str) -> None:
    mac.tools.add_identities("Developer ID Application: Somebody")
    refused(mac, 'no valid certificate "Developer ID Application: Some"',
            **{variable: "Developer ID Application: Some"})
    assert mac.tools.calls("pkgbuild") == []


def test_notarisation_needs_both_identities(mac: Mac) -> None:
    refused(mac, "MAC_NOTARY_PROFILE needs", MAC_NOTARY_PROFILE="utility", MAC_SIGNING_IDENTITY=IDENTITY)


def test_an_installer_package_without_the_program_is_found(mac: Mac) -> None:
    mac.tools.fail("pkgbuild empty")
    refused(mac, "holds no application")


def test_a_relocatable_bundle_is_found(mac: Mac) -> None:
    components = mac.tree / "package/sample/components.plist"
    text = components.read_text()
    components.write_text(text.replace("<key>BundleIsRelocatable</key>\n\t\t<false/>",
                                       "<key>BundleIsRelocatable</key>\n\t\t<true/>"))
    try:
        refused(mac, "the Installer may install it elsewhere")
    finally:
        components.write_text(text)


def test_a_busy_image_is_tried_again(mac: Mac) -> None:
    mac.tools.fail("hdiutil create 4", "hdiutil attach 1", "hdiutil detach 2")
    assert mac.package().returncode == 0
    assert [c[1] for c in mac.tools.calls("hdiutil")] == ["create"] * 5 + ["attach"] * 2 + ["detach"] * 3


def test_an_image_that_stays_busy_is_a_failure(mac: Mac) -> None:
    mac.tools.fail("hdiutil create")
    refused(mac, "hdiutil cannot create it")
    assert len(mac.tools.calls("hdiutil")) == 5


def test_an_image_is_closed_when_its_content_is_not_sealed(mac: Mac) -> None:
    mac.tools.fail("codesign --verify")
    refused(mac, "codesign: --verify failed")
    attached, detached = mac.tools.calls("hdiutil")[-2:]
    assert detached[1] == "detach"
    assert detached[-1] == attached[attached.index("-mountpoint") + 1]
    assert not Path(detached[-1]).exists()


def test_a_bundle_that_was_not_built_is_named(mac: Mac) -> None:
    kept = mac.bundle.rename(mac.bundle.with_suffix(".kept"))
    try:
        refused(mac, "has not been built")
    finally:
        kept.rename(mac.bundle)


def test_an_unknown_edition_is_named(mac: Mac) -> None:
    done = mac.package("Nobody")
    assert done.returncode == 2 and "no edition Nobody" in done.stderr


def test_other_systems_are_refused(mac: Mac) -> None:
    with mac.tools.without("uname"):
        refused(mac, "needs a Mac")
