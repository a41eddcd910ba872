"""From a style and a text to a picture."""

from __future__ import annotations

import os
from collections.abc import Iterable
from typing import Any

from . import _native
from ._errors import TextError
from ._native import Picture
from ._style import Style
from ._values import Arrangement

File = str | os.PathLike[str]

# A child of a fork must find no lock of the library held.
os.register_at_fork(
    before=_native.before_fork,
    after_in_parent=_native.after_fork_in_parent,
    after_in_child=_native.after_fork_in_child,
)


def _native_style(style: Style) -> _native.Style:
    if not isinstance(style, Style):
        raise TypeError(f"a style is wanted, not a value of the type {type(style).__name__}")
    return style._held


def _encoded(text: str | None) -> bytes | None:
    if text is not None and not isinstance(text, str):
        raise TypeError(f"a text is wanted, not a value of the type {type(text).__name__}")
    try:
        return None if text is None else text.encode()
    except UnicodeEncodeError as error:
        reason = f"character {error.start} is half of a surrogate pair"
        raise TextError(f"the text: {reason}", "the text", reason, "") from None


class Renderer:
    """Draws texts in styles.

    fonts: a folder of fonts, and of folders of them, or a list of font files, the first of which draws what
    names no family: then nothing else is consulted, and the pictures are the same on every machine. The fonts
    that are installed when left out. Fonts are loaded once and kept.

    The same style, text and font files give the same bytes, on every machine and thread. One renderer may be
    used by any number of threads at the same time: the interpreter's lock is released while it works. It may
    be sent to other processes, where it opens the same fonts anew, and lives on in forked ones.

    Raises FontError for a folder that holds no font and for a file that is none."""

    def __init__(self, fonts: File | Iterable[File] | None = None) -> None:
        if fonts is None:
            self._fonts: str | list[str] | None = None
            self._native = _native.Renderer.installed()
        elif isinstance(fonts, (str, os.PathLike)):
            self._fonts = os.fspath(fonts)
            is_file = os.path.isfile(fonts)
            self._native = (
                _native.Renderer.files([self._fonts]) if is_file else _native.Renderer.folder(self._fonts)
            )
        else:
            self._fonts = [os.fspath(file) for file in fonts]
            self._native = _native.Renderer.files(self._fonts)

    def render(self, style: Style, text: str | None = None, *, strict: bool = False) -> Picture:
        """Lays out and draws a text, the style's own if none is given. Line breaks start new lines.

        Characters that no font has are drawn as empty boxes and listed in Picture.missing; with `strict` they
        raise TextError. Raises FontError for a font that is not there or cannot be used, TextError for a text
        that is missing, empty or malformed or a line beyond 65,535 pixels, PictureError for a picture beyond
        67,108,864 pixels, StyleError or PictureError for a pattern that cannot be read, and MemoryError; the
        renderer is good for the next text in every case."""
        picture = self._native.render(_native_style(style), _encoded(text))
        if strict and picture.missing:
            reason = f"no font has {picture.missing!r}"
            raise TextError(f"the text: {reason}", "the text", reason, "")
        return picture

    def arrange(self, style: Style, text: str | None = None) -> Arrangement:
        """Lays out without drawing. Raises like render()."""
        return self._native.arrange(_native_style(style), _encoded(text))

    @property
    def families(self) -> list[str]:
        """Names of the families that a style may ask for, in alphabetical order."""
        return self._native.families()

    def __repr__(self) -> str:
        return f"gxtext.Renderer(fonts={self._fonts!r})"

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (self._fonts,)
