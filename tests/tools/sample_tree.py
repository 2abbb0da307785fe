"""Small trees for the checks to look at."""

from collections.abc import Mapping
from pathlib import Path


def write_tree(folder: Path, sources: Mapping[str, str]) -> None:
    """Writes each text to the path that it is under."""
    for path, text in sources.items():
        file = folder / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")
