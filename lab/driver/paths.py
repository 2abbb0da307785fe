"""Folders of the sources."""

from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
LAB = REPOSITORY / "lab"
