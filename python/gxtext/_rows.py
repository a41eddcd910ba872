"""Many texts at once."""

from __future__ import annotations

import functools
import os
from collections import deque
from collections.abc import Callable, Iterable, Iterator, Mapping
from concurrent.futures import Future, ThreadPoolExecutor
from typing import Any, NamedTuple, TypeVar

from ._errors import Error, TextError
from ._native import Picture
from ._renderer import File, Renderer
from ._style import Style

Value = TypeVar("Value")


class Rendered(NamedTuple):
    """What became of a row."""

    id: Any
    """The row's "id", or its number, counted from 1."""
    picture: Picture | None
    value: Any
    """What `finish` made of it."""
    error: Error | None
    """Why there is no picture, or no value."""


def _of_type(value: Any, kind: type[Value], place: str) -> Value:
    if isinstance(value, kind):
        return value
    reason = f"of the type {type(value).__name__}"
    raise TextError(f"{place}: {reason}; allowed: {kind.__name__}", place, reason, kind.__name__)


def row_style(
    style: Style, row: Mapping[str, Any], load: Callable[[str], Style] = Style.load
) -> tuple[Style, str | None]:
    """The style and the text of a row. All but "id", "text" and "style" are values by their paths."""
    own, text = row.get("style"), row.get("text")
    if isinstance(own, (str, os.PathLike)):
        style = load(os.fspath(own))
    elif own is not None:
        style = _of_type(own, Style, "the style")
    if text is not None:
        _of_type(text, str, "the text")
    values = {name: value for name, value in row.items() if name not in ("id", "text", "style")}
    return (style.with_values(values) if values else style), text


def render_many(
    rows: Iterable[str | Mapping[str, Any]],
    style: Style,
    *,
    fonts: File | Iterable[File] | Renderer | None = None,
    workers: int | None = None,
    finish: Callable[[Any, Picture], Any] | None = None,
) -> Iterator[Rendered]:
    """Renders rows on threads; what becomes of them comes in their order, while they are still being read, so
    that memory stays flat however many there are.

    rows: texts, or mappings with a "text", an "id" if wanted, a "style" of its own (a Style or a file), and any
    field of the style format by its path: {"id": 7, "text": "Hello", "color": "#FF0000", "effects[0].size": 6}.
    fonts: as Renderer takes them, or a renderer.
    workers: threads, one a processor if left out.
    finish: called on the thread with the row's id and its picture, for its value:
    lambda id, picture: picture.save(f"out/{id}.png").

    A row that cannot be drawn has its error; all other exceptions, those of `finish` too, are raised at its
    turn."""
    renderer = fonts if isinstance(fonts, Renderer) else Renderer(fonts)
    return _results(rows, style, renderer, workers or len(os.sched_getaffinity(0)), finish)


def _results(
    rows: Iterable[str | Mapping[str, Any]],
    style: Style,
    renderer: Renderer,
    count: int,
    finish: Callable[[Any, Picture], Any] | None,
) -> Iterator[Rendered]:
    load = functools.lru_cache(maxsize=64)(Style.load)

    def render(number: int, row: str | Mapping[str, Any]) -> Rendered:
        fields = {"text": row} if isinstance(row, str) else row
        name = fields.get("id", number)
        picture = None
        try:
            picture = renderer.render(*row_style(style, fields, load))
            return Rendered(name, picture, finish(name, picture) if finish else None, None)
        except Error as error:
            return Rendered(name, picture, None, error)

    waiting: deque[Future[Rendered]] = deque()
    with ThreadPoolExecutor(count, thread_name_prefix="gxtext") as pool:
        try:
            for number, row in enumerate(rows, 1):
                waiting.append(pool.submit(render, number, row))
                if len(waiting) > 2 * count:
                    yield waiting.popleft().result()
            while waiting:
                yield waiting.popleft().result()
        finally:
            for future in waiting:
                future.cancel()
