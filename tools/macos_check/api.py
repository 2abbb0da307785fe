"""The list of macOS API that the program may use (api.tsv), and what is made from it."""

import re
from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path

TABLE = Path(__file__).with_name("api.tsv")
TEST_TABLE = Path(__file__).with_name("test_api.tsv")
TARGETS = "[ x86_64-macos, arm64-macos ]"
# The libraries that have a header, and what it imports.
IMPORTS = {
    "libobjc": ("objc/objc.h", "objc/NSObjCRuntime.h"),
    "Foundation": ("objc/NSObject.h",),
    "AppKit": ("Foundation/Foundation.h",),
    "OpenDirectory": ("Foundation/Foundation.h",),
}
# Those whose headers state nullability: a pointer without "nullable" takes and gives no null.
AUDITED = ("Foundation", "AppKit")


def version(text: str) -> tuple[int, ...]:
    """A macOS version as comparable numbers; "-" counts as the oldest."""
    return tuple(int(part) for part in text.split(".")) if text != "-" else (0,)


def selector(declaration: str) -> str:
    """The selector that a method declaration names."""
    text = declaration
    while re.search(r"\([^()]*\)", text):
        text = re.sub(r"\([^()]*\)", " ", text)
    parts = re.findall(r"\w+:", text)
    return "".join(parts) or str(re.findall(r"\w+", text)[0])


@dataclass(frozen=True)
class Row:
    """One line of the list."""

    dylib: str
    introduced: str
    deprecated: str
    declaration: str
    owner: str  # class or protocol of a method, else empty
    compared: str = ""  # with how many bindings a method was compared

    @property
    def kind(self) -> str:
        first = self.declaration.split()[0]
        if first.startswith(("-", "+")):
            return "method"
        if re.fullmatch(r"[\w$]+\*?", self.declaration):
            return "symbol"
        return first.lstrip("@")  # interface, protocol, extern, typedef, enum, struct, install-name

    @property
    def name(self) -> str:
        """The selector, class, protocol or symbol (as C writes it) that the row is about."""
        if self.kind == "method":
            return selector(self.declaration)
        if self.kind in ("interface", "protocol"):
            return self.declaration.split()[1]
        if self.kind == "extern":
            return str(re.findall(r"(\w+)\s*(?:\([^*].*\))?;$", self.declaration)[0])
        return self.declaration

    @property
    def defines(self) -> list[str]:
        """The names that a row brings into the header when it is neither method nor symbol."""
        if self.kind == "typedef":
            return re.findall(r"\w+(?= =)|\w+(?=;$)", self.declaration)
        if self.declaration.startswith("static inline "):
            return re.findall(r"\w+(?=\()", self.declaration)[:1]
        return re.findall(r"\w+(?= =)", self.declaration) or [self.name]

    @property
    def extends(self) -> bool:
        """Whether this is a category: no class of its own."""
        return self.kind == "interface" and ":" not in self.declaration and "(" in self.declaration


def read(path: Path = TABLE) -> list[Row]:
    """All rows of the list, or of another file of the same form."""
    rows: list[Row] = []
    owner = ""
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        columns = line.split("\t")
        if len(columns) not in (4, 5) or columns[4:] not in ([], ["both"], ["both?"], ["one"]):
            raise SystemExit(f"{path}:{number}: expected 4 columns, or 5 with both, both? or one")
        dylib, introduced, deprecated, declarations = columns[:4]
        symbols_only = re.fullmatch(r"[\w$* ]+", declarations)
        for declaration in declarations.split() if symbols_only else [declarations]:
            row = Row(dylib, introduced, deprecated, declaration,
                      owner if declaration[0] in "-+" else "", *columns[4:])
            if row.kind in ("interface", "protocol"):
                owner = row.name
            rows.append(row)
    return rows


def install_names(rows: Sequence[Row]) -> dict[str, str]:
    """Library -> the path under which macOS has it."""
    return {r.dylib: r.declaration.split()[1] for r in rows if r.kind == "install-name"}


def symbols(rows: Sequence[Row]) -> dict[str, Row]:
    """The rows that a linked file may name as undefined symbols, in the linker's spelling."""
    named = {}
    for row in rows:
        if row.kind in ("symbol", "extern"):
            named["_" + row.name] = row
        elif row.kind == "interface" and not row.extends:
            named["_OBJC_CLASS_$_" + row.name] = row
            named["_OBJC_METACLASS_$_" + row.name] = row
    return named


def availability(row: Row) -> str:
    if row.introduced == "-":
        return ""
    deprecated = "" if row.deprecated == "-" else f",deprecated={row.deprecated}"
    return f"__attribute__((availability(macos,introduced={row.introduced}{deprecated})))"


def attributes(row: Row) -> str:
    """The declaration before a class; none before a category."""
    root = "" if ":" in row.declaration else "__attribute__((objc_root_class))"
    return "" if row.extends else f"{root}{availability(row)} "


def declarations(rows: Sequence[Row]) -> list[str]:
    """The rows as the lines of a header."""
    lines: list[str] = []
    open_block = False
    for row in rows:
        if row.kind in ("symbol", "install-name"):
            continue
        if row.kind != "method" and open_block:
            lines.append("@end")
            open_block = False
        if row.kind == "interface":
            lines.append(attributes(row) + row.declaration)
            open_block = True
        elif row.kind == "protocol":
            lines += [row.declaration, "@optional"]
            open_block = True
        elif row.kind == "method":
            lines.append(f"{row.declaration[:-1]} {availability(row)};")
        elif row.kind == "extern":
            declaration = row.declaration[:-1].replace("extern", 'extern "C"', 1)
            lines.append(f"{declaration} {availability(row)};")
        else:
            lines.append(row.declaration)
    return lines + (["@end"] if open_block else [])


def header(imports: Sequence[str], rows: Sequence[Row], nullability: bool) -> str:
    """The text of a header with these rows, which state nullability or not."""
    classes = [r.name for r in rows if r.kind == "interface" and not r.extends]
    lines = ["#pragma once", *(f"#import <{name}>" for name in imports)]
    lines += [f"@class {name};" for name in classes]
    if nullability:
        lines.append("#pragma clang assume_nonnull begin")
    lines += declarations(rows)
    if nullability:
        lines.append("#pragma clang assume_nonnull end")
    return "\n".join(lines) + "\n"


def stub(dylib: str, rows: Sequence[Row], wanted: Sequence[str] = ()) -> str:
    """The text of the library's link stub. A row that ends in * covers every symbol it matches."""
    mine = [r for r in rows if r.dylib == dylib]
    classes = [r.name for r in mine if r.kind == "interface" and not r.extends]
    plain = [n for n, r in symbols(mine).items() if not n.startswith("_OBJC_")]
    names = [n for n in plain if not n.endswith("*")]
    for prefix in (n[:-1] for n in plain if n.endswith("*")):
        names += [w for w in wanted if w.startswith(prefix)]
    quoted = ", ".join(f"'{n}'" for n in sorted(set(names)))
    lines = ["--- !tapi-tbd", "tbd-version: 4", f"targets: {TARGETS}",
             f"install-name: '{install_names(rows)[dylib]}'", "exports:",
             f"  - targets: {TARGETS}", f"    symbols: [ {quoted} ]"]
    if classes:
        lines.append(f"    objc-classes: [ {', '.join(classes)} ]")
    return "\n".join(lines + ["..."]) + "\n"


def place(folder: Path, dylib: str, rows: Sequence[Row]) -> Path:
    """Where below a folder the library has its stub, as macOS has it below /."""
    path = folder / install_names(rows)[dylib].lstrip("/")
    if dylib + ".framework" in path.parts:
        return path.parents[2] / f"{dylib}.tbd"
    return path.with_name(f"{dylib}.tbd")


def write_headers(folder: Path, rows: Sequence[Row], test_rows: Sequence[Row]) -> None:
    """The headers of the libraries, and the one that declares what only the tests call."""
    write(folder / "macos_test_api.h", header(["AppKit/AppKit.h"], test_rows, nullability=True))
    for dylib in IMPORTS:
        if dylib in install_names(rows):
            framework = place(folder, dylib, rows).parent / "Headers" / f"{dylib}.h"
            file = folder / "usr/include/objc/NSObject.h" if dylib == "libobjc" else framework
            mine = [r for r in rows if r.dylib == dylib]
            write(file, header(IMPORTS[dylib], mine, dylib in AUDITED))


def write_stubs(folder: Path, rows: Sequence[Row], wanted: Sequence[str] = ()) -> None:
    for dylib in install_names(rows):
        write(place(folder, dylib, rows), stub(dylib, rows, wanted))


def write(file: Path, text: str) -> None:
    """Leaves a file alone that has the text already, so that nothing is compiled again."""
    if not file.exists() or file.read_text(encoding="utf-8") != text:
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")
