"""Where a text lies in its picture, and which fonts draw it."""

from __future__ import annotations

from typing import NamedTuple


class Margins(NamedTuple):
    """Room for the effects around a text, in pixels."""

    left: int
    top: int
    right: int
    bottom: int


class Box(NamedTuple):
    """Pixels from the picture's upper left corner; right and bottom are the first ones outside."""

    left: int
    top: int
    right: int
    bottom: int


class Line(NamedTuple):
    """One line as it lies in the picture."""

    text: str
    """Without its line break."""
    x: int
    """Left end, in pixels."""
    baseline: int
    """Pixels from the top."""
    advance: float
    """Pixels."""
    box: Box
    """Advance by line height: what a background covers."""
    ink: Box
    """Where glyphs are drawn; may reach beyond x and advance."""
    right_to_left: bool


class Font(NamedTuple):
    """A font that takes part."""

    file: str
    font_index: int
    """Inside a collection."""
    family: str
    variations: str
    """Axis settings that it is drawn with: "'wght' 700"."""
    characters: str
    """What it draws of the text, each character once."""


class Arrangement(NamedTuple):
    """A text laid out."""

    width: int
    """Of the picture, margins included, in pixels."""
    height: int
    margins: Margins
    lines: tuple[Line, ...]
    fonts: tuple[Font, ...]
    """The style's own first, then fallbacks."""
    missing: str
    """Characters that no font has, each once."""

    @property
    def size(self) -> tuple[int, int]:
        """Width and height in pixels."""
        return self.width, self.height
