"""Draws the theme: tiles, images and colours that give GNUstep's controls the look of macOS.

Started by script/theme. Everything is drawn from vectors below, in points; one point is one pixel.
"""

import argparse
import subprocess
from collections.abc import Mapping
from pathlib import Path
from typing import Any, NamedTuple

ACCENT = "#0a7aff"
WINDOW = "#ececec"
MENU = "#f6f6f6"
RING = "#7bb3f6"  # the accent at 50 % on the window
TEXT = "#262626"  # black at 85 %
DISABLED_TEXT = "#a5a5a5"


class Insets(NamedTuple):
    """Distances from the edges of a rectangle."""

    left: float
    top: float
    right: float
    bottom: float


class Tile(NamedTuple):
    """A control's picture, stretched at its middle to the size of the control."""

    name: str
    width: int
    height: int
    svg: str
    stretch: Insets  # what keeps its size
    content: Insets  # around the control's text


def rect(x: float, y: float, width: float, height: float, radius: float, style: str) -> str:
    return (
        f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="{radius}" ry="{radius}"'
        f" {style}/>"
    )


def gradient(name: str, top: str, bottom: str) -> str:
    return (
        f'<linearGradient id="{name}" x1="0" y1="0" x2="0" y2="1">'
        f'<stop offset="0" stop-color="{top}"/><stop offset="1" stop-color="{bottom}"/>'
        "</linearGradient>"
    )


def ring(x: float, y: float, width: float, height: float, radius: float) -> str:
    """The ring around the control that has the keyboard. It has one colour, since it may be drawn
    again over itself."""
    style = f'fill="none" stroke="{RING}" stroke-width="3"'
    return rect(x - 1.5, y - 1.5, width + 3, height + 3, radius + 1.5, style)


def bezel(box: tuple[float, float, float, float], fill: tuple[str, str], edge: str) -> str:
    """A raised rounded rectangle with a thin edge and a faint shadow."""
    x, y, width, height = box
    shadow = f'fill="{edge}" fill-opacity="0.12"'
    line = f'fill="{edge}" fill-opacity="0.25"'
    return (
        gradient("fill", *fill)
        + rect(x - 0.5, y, width + 1, height + 1, 5.5, shadow)
        + rect(x - 0.5, y - 0.5, width + 1, height + 1, 5.5, line)
        + rect(x, y, width, height, 5, 'fill="url(#fill)"')
    )


# The looks of a push button: colours from top to bottom, and of its edge.
PUSH_BUTTONS = {
    "": (("#ffffff", "#ffffff"), "#000000"),
    "Highlighted": (("#e4e4e4", "#e4e4e4"), "#000000"),
    "Disabled": (("#f5f5f5", "#f5f5f5"), "#606060"),
}
DEFAULT_BUTTONS = {
    "": (("#4a9dff", "#0a74f8"), "#003a80"),
    "Highlighted": (("#2f86f0", "#0560d8"), "#003a80"),
    "Disabled": (("#f5f5f5", "#f5f5f5"), "#606060"),
}


def with_focus(looks: Mapping[str, tuple[Any, ...]]) -> dict[str, tuple[Any, ...]]:
    """Each look also with the ring, by the names that GNUstep has for the states of a control."""
    all_looks = {state: (*look, False) for state, look in looks.items()}
    all_looks["FirstResponder"] = (*looks[""], True)
    all_looks["HighlightedFirstResponder"] = (*looks["Highlighted"], True)
    all_looks["Selected"] = all_looks["Highlighted"]
    all_looks["SelectedFirstResponder"] = all_looks["HighlightedFirstResponder"]
    return all_looks


def push_buttons(name: str, looks: Mapping[str, tuple[Any, ...]]) -> list[Tile]:
    """Buttons of 20 points within frames of 32, as on macOS."""
    tiles = []
    box = (6, 4, 16, 20)
    for state, (fill, edge, has_focus) in with_focus(looks).items():
        svg = bezel(box, fill, edge) + (ring(*box, 5) if has_focus else "")
        stretch, content = Insets(13, 13, 13, 15), Insets(10, 4, 10, 8)
        tiles.append(Tile(name + state, 28, 32, svg, stretch, content))
    return tiles


def arrows(x: float, y: float, fill: tuple[str, str], stroke: str) -> str:
    """The two arrows at the right end of a pop-up button, in a coloured square of 16 points."""
    line = f'fill="none" stroke="{stroke}" stroke-width="1.5" stroke-linecap="round"'
    return (
        gradient("arrows", *fill)
        + rect(x, y, 16, 16, 4, 'fill="url(#arrows)"')
        + f'<path d="M {x + 5} {y + 6.3} l 3 -3 l 3 3" stroke-linejoin="round" {line}/>'
        + f'<path d="M {x + 5} {y + 9.7} l 3 3 l 3 -3" stroke-linejoin="round" {line}/>'
    )


def pop_up_buttons() -> list[Tile]:
    """Pop-up buttons of 20 points within frames of 25, as on macOS."""
    tiles = []
    box = (3, 1, 42, 20)
    for state, (fill, edge, has_focus) in with_focus(PUSH_BUTTONS).items():
        blue, white = (("#4a9dff", "#0a74f8"), "#ffffff")
        if state == "Disabled":
            blue, white = (("#e0e0e0", "#e0e0e0"), "#a5a5a5")
        svg = bezel(box, fill, edge) + arrows(27, 3, blue, white)
        # The frame has a point above the bezel: the ring covers two points of it there.
        svg += ring(3, 3, 42, 18, 4) if has_focus else ""
        stretch, content = Insets(10, 12, 22, 12), Insets(3, 1, 3, 4)
        tiles.append(Tile("PopUpButton" + state, 48, 25, svg, stretch, content))
    return tiles


def text_field() -> Tile:
    """The edge of a text field; its inside is drawn by the field."""
    svg = (
        rect(0.5, 0.5, 11, 11, 0, 'fill="#ffffff" stroke="#c8c8c8"')
        + '<path d="M 0 11.5 h 12" stroke="#b4b4b4"/>'
    )
    return Tile("NSBezelBorder", 12, 12, svg, Insets(3, 3, 3, 3), Insets(2, 2, 2, 2))


def focus_ring() -> Tile:
    box = (3, 3, 14, 14)
    return Tile("NSFocusRing", 20, 20, ring(*box, 2), Insets(7, 7, 7, 7), Insets(3, 3, 3, 3))


def menu() -> list[Tile]:
    """The menu of a pop-up button, and its items. An item's picture lies on the menu's."""
    none = Insets(0, 0, 0, 0)
    frame = rect(0.5, 0.5, 11, 11, 0, f'fill="{MENU}" stroke="#bcbcbc"')
    tiles = [Tile("GSMenuVerticalBackground", 12, 12, frame, Insets(4, 4, 4, 4), none)]
    highlight = rect(4, 0, 12, 20, 4, f'fill="{ACCENT}"')
    for state in ("", "FirstResponder", "Disabled"):
        tiles.append(Tile("GSMenuVerticalItem" + state, 20, 20, "", Insets(9, 6, 9, 6), none))
    for state in ("Highlighted", "Selected"):
        for focus in ("", "FirstResponder"):
            name = "GSMenuVerticalItem" + state + focus
            tiles.append(Tile(name, 20, 20, highlight, Insets(9, 6, 9, 6), none))
    return tiles


TILES = [
    *push_buttons("NSRoundedBezelStyle", PUSH_BUTTONS),
    *push_buttons("DefaultButton", DEFAULT_BUTTONS),
    *pop_up_buttons(),
    text_field(),
    focus_ring(),
    *menu(),
]


def check_box(mark: bool) -> str:
    box = (1.5, 1.5, 13, 13)
    line = 'fill="#000000" fill-opacity="0.25"'
    fill = ("#4a9dff", "#0a74f8") if mark else ("#ffffff", "#ffffff")
    svg = (
        gradient("fill", *fill)
        + rect(1, 1, 14, 14, 3.5, line)
        + rect(*box, 3, 'fill="url(#fill)"')
    )
    if mark:
        svg += (
            '<path d="M 4.8 8.4 l 2.3 2.6 l 4.1 -6" fill="none" stroke="#ffffff"'
            ' stroke-width="1.8" stroke-linecap="round" stroke-linejoin="round"/>'
        )
    return svg


def menu_mark(colour: str) -> str:
    return (
        f'<path d="M 1.5 6 l 2.6 3 l 4.4 -6.5" fill="none" stroke="{colour}"'
        ' stroke-width="1.6" stroke-linecap="round" stroke-linejoin="round"/>'
    )


def arrow(outline: str, colour: str) -> str:
    return f'<path d="{outline}" fill="{colour}"/>'


# Name, width, height, drawing.
IMAGES = [
    ("common_SwitchOff", 18, 16, check_box(mark=False)),
    ("common_SwitchOn", 18, 16, check_box(mark=True)),
    ("GSMenuSelected", 10, 11, menu_mark(TEXT)),
    ("common_2DCheckMarkH", 10, 11, menu_mark("#ffffff")),
    ("GSMenuMixed", 10, 11, f'<path d="M 1.5 5.5 h 7" stroke="{TEXT}" stroke-width="1.6"/>'),
    ("GSMenuArrow", 8, 10, arrow("M 2 1 l 4 4 l -4 4 z", TEXT)),
    ("common_3DArrowLeft", 8, 10, arrow("M 6 1 l -4 4 l 4 4 z", TEXT)),
    ("common_3DArrowUp", 10, 8, arrow("M 1 6 l 4 -4 l 4 4 z", TEXT)),
    ("common_3DArrowDown", 10, 8, arrow("M 1 2 l 4 4 l 4 -4 z", TEXT)),
    # The arrows of pop-up buttons are part of their tiles; this keeps room for them.
    ("common_Nibble", 18, 16, ""),
]

# Every colour that GNUstep asks for by name: it would add a missing one, and cannot where the file is
# not writable.
COLOURS = {
    "alternateRowBackgroundColor": "#f4f5f5",
    "alternateSelectedControlColor": ACCENT,
    "alternateSelectedControlTextColor": "#ffffff",
    "controlBackgroundColor": "#ffffff",
    "controlColor": WINDOW,
    "controlDarkShadowColor": "#c4c4c4",
    "controlHighlightColor": "#f5f5f5",
    "controlLightHighlightColor": "#ffffff",
    "controlShadowColor": "#cfcfcf",
    "controlTextColor": TEXT,
    "disabledControlTextColor": DISABLED_TEXT,
    "gridColor": "#cfcfcf",
    "headerColor": "#ffffff",
    "headerTextColor": TEXT,
    "highlightColor": "#ffffff",
    "keyboardFocusIndicatorColor": RING,
    "knobColor": "#c1c1c1",
    "labelColor": TEXT,
    "quaternaryLabelColor": "#d4d4d4",
    "rowBackgroundColor": "#ffffff",
    "scrollBarColor": "#fafafa",
    "secondaryLabelColor": "#767676",
    "secondarySelectedControlColor": "#dcdcdc",
    "selectedControlColor": "#b3d7ff",
    "selectedControlTextColor": TEXT,
    "selectedKnobColor": "#7d7d7d",
    "selectedMenuItemColor": ACCENT,
    "selectedMenuItemTextColor": "#ffffff",
    "selectedTextBackgroundColor": "#b3d7ff",
    "selectedTextColor": TEXT,
    "shadowColor": "#a0a0a0",
    "tertiaryLabelColor": "#b0b0b0",
    "textBackgroundColor": "#ffffff",
    "textColor": TEXT,
    "toolTipColor": "#f6f6f6",
    "toolTipTextColor": TEXT,
    "windowBackgroundColor": WINDOW,
    "windowFrameColor": "#c4c4c4",
    "windowFrameTextColor": TEXT,
}


def draw(svg: str, width: int, height: int, file: Path) -> None:
    text = (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}">{svg}</svg>'
    )
    command = ["rsvg-convert", "--output", str(file)]
    subprocess.run(command, input=text.encode(), check=True)


def nine_patch(tile: Tile) -> str:
    """The tile within a frame of one point, in which lines tell GNUstep what to stretch (left and
    top) and where the control's text goes (right and bottom)."""
    wide, high = tile.width + 2, tile.height + 2
    marks: list[tuple[float, float, float, float]] = []
    for insets, across, down in ((tile.stretch, 0, 0), (tile.content, high - 1, wide - 1)):
        length = tile.width - insets.left - insets.right
        marks.append((insets.left + 1, across, length, 1))
        length = tile.height - insets.top - insets.bottom
        marks.append((down, insets.top + 1, 1, length))
    lines = (rect(*mark, 0, 'fill="#000000" shape-rendering="crispEdges"') for mark in marks)
    # A nested drawing is clipped: what it paints outside would count as lines.
    drawing = f'<svg x="1" y="1" width="{tile.width}" height="{tile.height}">{tile.svg}</svg>'
    return drawing + "".join(lines)


def write_colours(file: Path) -> None:
    """A colour list in its text form: a count, then kind, red, green, blue, opacity and name."""
    lines = [str(len(COLOURS))]
    for name, colour in COLOURS.items():
        red, green, blue = (round(byte / 255, 4) for byte in bytes.fromhex(colour[1:]))
        lines.append(f"0 {red} {green} {blue} 1 {name}")
    file.write_text("\n".join(lines) + "\n")


def write_info(file: Path) -> None:
    """The theme's property list in text form: its tiles by name."""
    tiles = [
        f'    {tile.name} = {{ FileName = "{tile.name}.png"; NinePatch = YES; }};' for tile in TILES
    ]
    lines = ["{", "  GSThemeName = Mac;", "  GSThemeTiles = {", *sorted(tiles), "  };", "}"]
    file.write_text("\n".join(lines) + "\n")


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=Path)
    folder = parser.parse_args().folder
    (folder / "ThemeTiles").mkdir(parents=True)
    (folder / "ThemeImages").mkdir()
    for tile in TILES:
        file = folder / "ThemeTiles" / f"{tile.name}.png"
        draw(nine_patch(tile), tile.width + 2, tile.height + 2, file)
    for name, width, height, svg in IMAGES:
        draw(svg, width, height, folder / "ThemeImages" / f"{name}.png")
    write_colours(folder / "ThemeColors.clr")
    write_info(folder / "Info-gnustep.plist")


if __name__ == "__main__":
    main()
