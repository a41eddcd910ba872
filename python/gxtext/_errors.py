"""What the package raises."""

from __future__ import annotations

from collections.abc import Sequence
from typing import Any, NamedTuple


class Error(Exception):
    """Base of all of them. The message is for people: place, reason, and what is allowed."""


class StyleProblem(NamedTuple):
    """One mistake in a style."""

    path: str
    """Where it lies, as in a style file: "$.effects[2].size"; "$" for the whole."""
    reason: str
    """A sentence: "140 is out of range 0-100"."""
    allowed: str
    """What would do instead: "0-100"; empty where the reason says it all."""


class StyleError(Error, ValueError):
    """A style that is none: `problems` are its mistakes in order, at most 20 of them; `total` counts
    those that are left out too. `path`, `reason` and `allowed` are the first one's."""

    def __init__(self, message: str, problems: Sequence[StyleProblem], total: int) -> None:
        super().__init__(message)
        self.problems = tuple(problems)
        self.total = total

    @property
    def path(self) -> str:
        return self.problems[0].path

    @property
    def reason(self) -> str:
        return self.problems[0].reason

    @property
    def allowed(self) -> str:
        return self.problems[0].allowed

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (str(self), self.problems, self.total)


class SceneError(Error):
    """What goes wrong between a style and its picture: the `place` of the mistake (a file, a family, a
    part of the text), the `reason`, and what is `allowed`, empty where the reason says it all."""

    def __init__(self, message: str, place: str, reason: str, allowed: str) -> None:
        super().__init__(message)
        self.place = place
        self.reason = reason
        self.allowed = allowed

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (str(self), self.place, self.reason, self.allowed)


class FontError(SceneError):
    """A font that is not there or cannot be used."""


class TextError(SceneError, ValueError):
    """A text that is missing or malformed, or whose lines are too long or too many."""


class FileError(SceneError, OSError):
    """A file that cannot be read or written."""


class PictureError(SceneError):
    """A picture that is too large, empty or damaged."""
