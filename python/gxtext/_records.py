"""Records of fields, as Python's values and as JSON."""

from __future__ import annotations

import json
import math
import os
import re
from collections.abc import Mapping
from typing import Any, ClassVar, TypeVar

Self = TypeVar("Self", bound="Record")


def camel(name: str) -> str:
    """The name that a style file has for a Python name: "cast_from" is "castFrom"."""
    return re.sub(r"_(\w)", lambda match: match[1].upper(), name)


def plain(value: Any) -> Any:
    """The value as the module json takes it. Numbers that JSON has not become strings, which are refused
    where a number is wanted, with their place."""
    if isinstance(value, Record):
        return value.to_dict()
    if isinstance(value, Mapping):
        return {str(name): plain(each) for name, each in value.items()}
    if isinstance(value, (list, tuple)):
        return [plain(each) for each in value]
    if isinstance(value, float) and not math.isfinite(value):
        return str(value)
    if value is None or isinstance(value, (str, int, float)):
        return value
    if isinstance(value, os.PathLike):
        return os.fspath(value)
    if hasattr(value, "item"):  # a number of NumPy
        return plain(value.item())
    raise TypeError(f"a style has no value of the type {type(value).__name__}")


def to_json(value: Any) -> str:
    return json.dumps(plain(value))


def _frozen(value: Any) -> Any:
    return tuple(map(_frozen, value)) if isinstance(value, list) else value


class Record:
    """Fields that were given; what is left out has its default. Immutable."""

    __slots__ = ("_fields",)
    _type: ClassVar[str] = ""
    _effects: ClassVar[dict[str, type[Record]]] = {}
    _parts: ClassVar[dict[str, type[Record]]] = {}
    """Of fields that hold records without a type, by the field's name."""

    _fields: dict[str, Any]

    def __init_subclass__(cls) -> None:
        if cls._type:
            Record._effects[cls._type] = cls

    def _take(self, fields: Mapping[str, Any], unknown: Mapping[str, Any]) -> None:
        given = {name: _frozen(value) for name, value in fields.items() if value is not None}
        # Under the names that they would have, for the check to name them.
        given.update((camel(name), value) for name, value in unknown.items())
        object.__setattr__(self, "_fields", given)

    def _get(self, name: str, default: Any) -> Any:
        return self._fields.get(name, default)

    def to_dict(self) -> dict[str, Any]:
        """The record as a style file says it."""
        fields = {name: plain(value) for name, value in self._fields.items()}
        return {"type": self._type, **fields} if self._type else fields

    @classmethod
    def _of(cls: type[Self], fields: Mapping[str, Any]) -> Self:
        record = cls.__new__(cls)
        record._take({name: value_of(name, each) for name, each in fields.items() if name != "type"}, {})
        return record

    def __setattr__(self, name: str, value: Any) -> None:
        raise AttributeError(f"a {type(self).__name__} does not change; make another one")

    def __eq__(self, other: object) -> bool:
        return type(other) is type(self) and other.to_dict() == self.to_dict()

    def __hash__(self) -> int:
        return hash(to_json(self))

    def __repr__(self) -> str:
        snake = {re.sub("([A-Z])", lambda m: "_" + m[1].lower(), n): v for n, v in self._fields.items()}
        return f"{type(self).__name__}({', '.join(f'{name}={value!r}' for name, value in snake.items())})"

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self)._of, (self.to_dict(),)


class Effect(Record):
    """What is drawn of a text or around it."""

    __slots__ = ()


def value_of(name: str, value: Any) -> Any:
    """A field's value of a style file as Python's users have it."""
    if isinstance(value, list):
        return tuple(value_of(name, each) for each in value)
    if not isinstance(value, Mapping):
        return value
    kind = Record._effects.get(str(value.get("type"))) or Record._parts.get(name)
    return kind._of(value) if kind else value
