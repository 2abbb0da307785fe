"""Checks that the links and the file names in the Markdown documents exist.

A link is relative to its document and may name a heading. A name in backquotes that begins with a
folder of the tree is relative to the root, even when arguments follow it; a pattern or a name without
its suffix is fine.
"""

import re
import subprocess
import sys
from pathlib import Path

LINK = re.compile(r"\]\((?!https?:|mailto:)([^)#\s]*)(?:#([^)\s]+))?\)")
HEADING = re.compile(r"^#+ (.*)", re.MULTILINE)
NAME = re.compile(r"`((?:\.?\w+)/[\w./+*-]*)[^`]*`")


def tracked(root: Path) -> list[str]:
    """The files of the tree, new ones included."""
    command = ["git", "ls-files", "--cached", "--others", "--exclude-standard"]
    done = subprocess.run(command, cwd=root, check=True, text=True, capture_output=True)
    return [name for name in done.stdout.splitlines() if (root / name).exists()]


def exists(root: Path, name: str) -> bool:
    """Whether a file or folder has that name, pattern, or name without suffix."""
    return any(root.glob(name.rstrip("/"))) or any(root.glob(name.rstrip("/") + ".*"))


def has_heading(document: Path, anchor: str) -> bool:
    """Whether a heading has that anchor: its words in lower case, joined by hyphens."""
    headings = HEADING.findall(document.read_text(encoding="utf-8"))
    words = (re.sub(r"[^\w -]", "", heading).lower() for heading in headings)
    return anchor in [text.replace(" ", "-") for text in words]


def check(root: Path) -> list[str]:
    """Every finding in the tree at `root`."""
    names = tracked(root)
    folders = {name.split("/")[0] for name in names if "/" in name}
    findings = []
    for document in (name for name in names if name.endswith(".md")):
        text = (root / document).read_text(encoding="utf-8")
        for target, anchor in LINK.findall(text):
            file = (root / document).parent / target if target else root / document
            if not file.exists():
                findings.append(f"{document}: links to {target}, which does not exist")
            elif anchor and not has_heading(file, anchor):
                findings.append(f"{document}: links to {target}#{anchor}, which does not exist")
        for name in NAME.findall(text):
            if name.split("/")[0] in folders and not exists(root, name):
                findings.append(f"{document}: names {name}, which does not exist")
    return findings


if __name__ == "__main__":
    sys.exit("\n".join(check(Path(__file__).resolve().parents[1])) or 0)
