"""Styles: what a text is to look like."""

from __future__ import annotations

import json
import os
import pathlib
from collections.abc import Mapping
from typing import Any, NamedTuple

from . import _native
from ._fields import StyleFields
from ._records import camel, to_json, value_of


class Style(StyleFields):
    # The rest of the text is that of the fields.
    __slots__ = ("_held",)
    _held: _native.Style

    def _take(self, fields: Mapping[str, Any], unknown: Mapping[str, Any]) -> None:
        super()._take(fields, unknown)
        self._keep(_native.Style.from_json(to_json(self._fields).encode(), ""))

    def _keep(self, native: _native.Style) -> None:
        object.__setattr__(self, "_held", native)

    @classmethod
    def _wrap(cls, native: _native.Style) -> Style:
        style = cls.__new__(cls)
        style._keep(native)
        return style

    def __getattr__(self, name: str) -> Any:
        if name != "_fields":
            raise AttributeError(f"a style has no {name!r}")
        fields = {each: value_of(each, value) for each, value in json.loads(self.to_json()).items()}
        object.__setattr__(self, "_fields", fields)
        return fields

    @classmethod
    def load(cls, file: str | os.PathLike[str]) -> Style:
        """Reads a style file. Fonts and patterns with relative names lie in its folder.

        Raises StyleError with all of its mistakes, FileError when it cannot be read."""
        return cls._wrap(_native.Style.from_file(file))

    @classmethod
    def from_json(cls, text: str | bytes, source: str | os.PathLike[str] = "") -> Style:
        """Reads the text of a style file. `source` is the file that messages name and in whose folder
        fonts and patterns with relative names lie. Raises StyleError with all mistakes."""
        data = text.encode(errors="surrogatepass") if isinstance(text, str) else text
        return cls._wrap(_native.Style.from_json(data, source))

    def to_json(self) -> str:
        """The text of a style file: what differs from the defaults.

        Raises StyleError for a style that scaled() took beyond what a file may say."""
        return self._held.to_json()

    def save(self, file: str | os.PathLike[str]) -> None:
        """Writes a style file. Raises what to_json() does, and OSError."""
        text = self.to_json()
        with open(file, "w", encoding="utf-8") as out:
            out.write(text)

    def to_dict(self) -> dict[str, Any]:
        """The style as the module json reads its file."""
        fields: dict[str, Any] = json.loads(self.to_json())
        return fields

    def replace(self, **fields: Any) -> Style:
        """A copy with these fields, named like those of Style(); None makes one what it is by default."""
        return self.with_values({camel(name): value for name, value in fields.items()})

    def with_values(self, values: Mapping[str, Any]) -> Style:
        """A copy with values set by their paths in a style file, one after the other:
        {"effects[0].size": 6, "fontFeatures": "'smcp' on"}. The index after a list's last element appends;
        None makes a field what it is by default. Raises StyleError with the path of the mistake."""
        return self._wrap(self._held.with_values([(path, to_json(value)) for path, value in values.items()]))

    def scaled(self, factor: float) -> Style:
        """A copy with every length `factor` (0.01 to 100) times as long: font size, padding, width, the
        effects' sizes and distances. They may become longer than a file allows: such a style can be drawn
        but not written. Raises Error for another factor, StyleError for lengths past what can be drawn."""
        return self._wrap(self._held.scaled(factor))

    @property
    def source(self) -> str:
        """The file that it was read from, or ""."""
        source = self._held.source
        return "" if source == pathlib.Path() else os.fspath(source)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Style) and self._held == other._held

    def __hash__(self) -> int:
        return hash(self.to_json())

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self).from_json, (self.to_json(), self.source)


Style.__doc__ = f"""{StyleFields.__doc__}
    A value that is checked like a style file: Style(size=-1) raises StyleError with the path, the reason and
    what is allowed. What is left out or None has its default."""


class Loss(NamedTuple):
    """A field that a style does not say as the file did."""

    path: str
    """JSON path: "$.dropShadow[0].noise"."""
    kind: str
    """"approximated", or "dropped"."""
    reason: str
    """A sentence."""


class ImportedStyle(NamedTuple):
    style: Style
    losses: tuple[Loss, ...]


def import_layer_style(effects: str | bytes | Mapping[str, Any], source: str = "") -> ImportedStyle:
    """The layer effects of an image editor as a style, with what it does not say as they did.

    `effects` is in the shape of the type LayerEffectsInfo of the package ag-psd, or the JSON of it.
    `source` is what messages call it. Raises StyleError for what is no JSON object."""
    text = to_json(effects) if isinstance(effects, Mapping) else effects
    data = text.encode(errors="surrogatepass") if isinstance(text, str) else text
    style, losses = _native.import_layer_style(data, source)
    return ImportedStyle(Style._wrap(style), tuple(Loss(*loss) for loss in losses))
