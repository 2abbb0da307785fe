"""Checks every include of the product against the layer table in docs/architecture.md.

A file includes only headers of lower layers: never of its own, never of a higher one. The table
names every header of the product, and those sources that have no header of their own. Any other
source belongs to the layer of its header: Name.h for Name.cpp, Name.mm and Name+Category.mm. The
document also names every Objective-C++ source.
"""

import re
import sys
from pathlib import Path
from typing import NamedTuple

TABLE = Path("docs/architecture.md")
FOLDERS = ("app", "settings", "agent", "i18n", "cli")
ROW = re.compile(r"^\| *\d+ *\|")
ENTRY = re.compile(r"`(\w+/[\w+]+\.(?:h|cpp|mm))`( \(Objective-C\))?")
OBJECTIVE_CPP = re.compile(r"`(\w+/[\w+*]+\.mm)`")
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*([<"])([^">]+)[">]', re.MULTILINE)
IMPORT = re.compile(r"^\s*#\s*import\b", re.MULTILINE)


class Entry(NamedTuple):
    """One file of the table; layer 0 is the top."""

    layer: int
    is_objective_c: bool


def read_table(text: str) -> dict[str, Entry]:
    """The files of the table, by path."""
    rows = [line for line in text.splitlines() if ROW.match(line)]
    return {
        path: Entry(layer, bool(mark))
        for layer, row in enumerate(rows)
        for path, mark in ENTRY.findall(row)
    }


def own_header(source: str, table: dict[str, Entry]) -> str | None:
    """The header of a source file; a category may be in another folder than its class."""
    name = Path(source).stem.split("+")[0]
    same_folder = f"{Path(source).parent}/{name}.h"
    if same_folder in table:
        return same_folder
    return next((path for path in table if path.endswith(f"/{name}.h")), None)


def check_includes(path: str, text: str, table: dict[str, Entry]) -> list[str]:
    """What is wrong with the includes of one file that belongs to a layer."""
    own = path if path in table else own_header(path, table)
    if own is None:
        return [f"{path}: is not in the layer table and has no header that is"]
    findings = []
    for quote, included in INCLUDE.findall(text):
        if included in table:
            if included != own and table[included].layer <= table[own].layer:
                findings.append(
                    f"{path}: includes {included}, which is not in a lower layer than {own}"
                )
        elif quote == '"' or included.split("/")[0] in (*FOLDERS, "..", "."):
            findings.append(f"{path}: includes {included}, which is not in the layer table")
    return findings


def check_header(path: str, text: str, table: dict[str, Entry]) -> list[str]:
    """Whether a header is in the table and in the language that the table states."""
    if path not in table:
        return [f"{path}: is not in the layer table"]
    if table[path].is_objective_c != bool(IMPORT.search(text)):
        stated = "Objective-C" if table[path].is_objective_c else "plain C++"
        return [f"{path}: is not {stated}, as the layer table states"]
    return []


def check(root: Path) -> list[str]:
    """Every finding in the tree at `root`."""
    document = (root / TABLE).read_text(encoding="utf-8")
    table = read_table(document)
    if not table:
        return [f"{TABLE}: has no layer table"]
    findings = [f"{TABLE}: lists {path}, which does not exist"
                for path in table if not (root / path).is_file()]
    for folder in FOLDERS:
        for file in sorted((root / folder).glob("**/*")):
            path = file.relative_to(root).as_posix()
            if file.suffix not in (".h", ".cpp", ".mm"):
                continue
            if file.suffix == ".mm" and not any(map(file.match, OBJECTIVE_CPP.findall(document))):
                findings.append(f"{TABLE}: does not name {path}")
            text = file.read_text(encoding="utf-8")
            if file.suffix == ".h":
                findings += check_header(path, text, table)
                if path not in table:
                    continue
            findings += check_includes(path, text, table)
    return findings


if __name__ == "__main__":
    sys.exit("\n".join(check(Path(__file__).resolve().parents[1])) or 0)
