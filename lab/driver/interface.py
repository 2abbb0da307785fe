"""Where the controls of an interface file are, so that tests name outlets, not pixels."""

import xml.etree.ElementTree as ElementTree
from pathlib import Path
from typing import NamedTuple
from xml.etree.ElementTree import Element

from .paths import REPOSITORY


class Box(NamedTuple):
    """A rectangle in its window's content; y grows downwards."""

    x: float
    y: float
    width: float
    height: float

    @property
    def middle(self) -> tuple[int, int]:
        return round(self.x + self.width / 2), round(self.y + self.height / 2)


def _rectangle(rect: Element) -> Box:
    return Box(*(float(rect.attrib[name]) for name in Box._fields))


class Interface:
    """The one window of an interface file."""

    def __init__(self, name: str, folder: Path = REPOSITORY / "resources"):
        self._name = name
        self._root = ElementTree.parse(folder / f"{name}.xib").getroot()
        self._parents = {child: parent for parent in self._root.iter() for child in parent}
        content = _rectangle(self._find(".//window/rect[@key='contentRect']"))
        self.width, self.height = content.width, content.height

    def _find(self, path: str) -> Element:
        element = self._root.find(path)
        if element is None:
            raise LookupError(f"{self._name}.xib has no {path}")
        return element

    def _frames(self, element: Element | None) -> list[Box]:
        """The frames of an element and of its ancestors, innermost first."""
        frames = []
        while element is not None and element.tag != "window":
            if (frame := element.find("rect[@key='frame']")) is not None:
                frames.append(_rectangle(frame))
            element = self._parents.get(element)
        return frames

    def box(self, outlet: str) -> Box:
        """The place of the control (or of a cell's control) that an outlet names."""
        connection = self._find(f".//outlet[@property='{outlet}']")
        frames = self._frames(self._find(f".//*[@id='{connection.attrib['destination']}']"))
        own = frames[0]
        bottom = sum(frame.y for frame in frames)
        x = sum(frame.x for frame in frames)
        return Box(x, self.height - bottom - own.height, own.width, own.height)
