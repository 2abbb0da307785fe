"""Where the controls of an interface file are, so that tests name outlets and no pixels."""

import xml.etree.ElementTree as ElementTree
from pathlib import Path
from typing import NamedTuple

SOURCES = Path(__file__).resolve().parents[2] / "resources"


class Box(NamedTuple):
    """A rectangle in its window's content; y grows downwards."""

    x: float
    y: float
    width: float
    height: float

    @property
    def middle(self) -> tuple[int, int]:
        return round(self.x + self.width / 2), round(self.y + self.height / 2)


class Interface:
    """The one window of an interface file."""

    def __init__(self, name: str, folder: Path = SOURCES):
        self._root = ElementTree.parse(folder / f"{name}.xib").getroot()
        self._parents = {child: parent for parent in self._root.iter() for child in parent}
        content = self._root.find(".//window/rect[@key='contentRect']")
        self.width, self.height = float(content.get("width")), float(content.get("height"))

    def box(self, outlet: str) -> Box:
        """The place of the control (or of a cell's control) that an outlet names."""
        connection = self._root.find(f".//outlet[@property='{outlet}']")
        element = self._root.find(f".//*[@id='{connection.get('destination')}']")
        x = bottom = 0.0
        size = None
        while element is not None and element.tag != "window":
            frame = element.find("rect[@key='frame']")
            if frame is not None:
                x += float(frame.get("x"))
                bottom += float(frame.get("y"))
                size = size or (float(frame.get("width")), float(frame.get("height")))
            element = self._parents.get(element)
        width, height = size
        return Box(x, self.height - bottom - height, width, height)
