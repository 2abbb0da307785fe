"""The editions of the build that the lab was made for."""

from dataclasses import dataclass
from pathlib import Path

TABLE = Path("/usr/libexec/lab/editions.tsv")


@dataclass(frozen=True)
class Edition:
    """One row of the build's editions.tsv."""

    oem: str
    name: str
    title: str
    folder: str
    profile: str
    languages: tuple[str, ...]

    @property
    def program(self) -> Path:
        return Path("/Applications/Utilities") / f"{self.title}.app" / self.title

    @property
    def settings(self) -> Path:
        return Path(self.folder) / "SystemAgent/settings"


_ROWS = [row.split("\t") for row in TABLE.read_text().splitlines() if not row.startswith("#")]
EDITIONS = {
    oem: Edition(oem, name, title, folder, profile, tuple(languages.split(",")))
    for oem, name, title, folder, profile, languages in _ROWS
}
