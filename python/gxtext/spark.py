"""Titles on a Spark cluster: a data frame of texts in, pictures out.

    from gxtext.spark import render_titles

    pictures = render_titles(spark.read.json("titles.jsonl"), style, fonts="fonts/")
    pictures.write.parquet("pictures/")

Needs the extra `spark`, pip install 'gxtext[spark]', and the package on every executor.
"""

from __future__ import annotations

import atexit
import hashlib
import io
import os
import pathlib
import shutil
import tempfile
import zipfile
from collections.abc import Iterable, Iterator, Mapping
from dataclasses import dataclass
from typing import Any, Literal

import pyarrow
from pyspark import SparkFiles
from pyspark.sql import DataFrame
from pyspark.sql.types import BinaryType, IntegerType, StringType, StructField, StructType

from . import __version__
from ._errors import Error
from ._fields import FIELDS
from ._renderer import File, Renderer
from ._rows import row_style
from ._style import Style

_SIDES = ("left", "top", "right", "bottom")
_FONTS = (".ttf", ".otf", ".ttc", ".otc")

# A batch that goes back to Spark has no more than this of pictures, and a row.
_BATCH_BYTES = 8 << 20

_ADDED = StructType(
    [
        StructField("png", BinaryType()),
        StructField("width", IntegerType()),
        StructField("height", IntegerType()),
        StructField("margins", StructType([StructField(side, IntegerType()) for side in _SIDES])),
        StructField("missing", StringType()),
        StructField("error", StringType()),
    ]
)
_ADDED_ARROW = {
    "png": pyarrow.binary(),
    "width": pyarrow.int32(),
    "height": pyarrow.int32(),
    "margins": pyarrow.struct([(side, pyarrow.int32()) for side in _SIDES]),
    "missing": pyarrow.string(),
    "error": pyarrow.string(),
}


def render_titles(
    df: DataFrame,
    style: Style,
    *,
    fonts: File,
    text: str = "text",
    fields: Mapping[str, str] | None = None,
    compression: Literal["fast", "default", "small"] = "default",
) -> DataFrame:
    """The rows with their pictures.

    df: a text a row; null draws the style's own.
    style: shipped with the job, and the files that it names.
    fonts: a folder; shipped with the job, too. Nothing else is consulted, so that every executor gives the same
    bytes, those of Renderer(fonts).
    text: the column of the texts.
    fields: columns with values of the style by their paths: {"effects[0].size": "outline"}. Left out, all columns
    that go by the name of a field, or of a path like "effects[0].size". Null leaves the style's own.
    compression: of the PNG files.

    The columns of fields are gone; added are `png` (the file's bytes), `width` and `height` in pixels, `margins`
    (left, top, right, bottom: how far the effects reach beyond the text), `missing` (characters that no font has)
    and `error`: why a row has no picture, null where all went well. A row never fails the job.

    Each Python worker opens the fonts once and keeps them between batches and tasks. Raises ValueError for a
    column that is not there and for one that goes by the name of an added one."""
    fields = dict(fields) if fields is not None else {name: name for name in df.columns if _is_path(name)}
    for column in (text, *fields.values()):
        if column not in df.columns:
            raise ValueError(f"no column {column!r}; there are {', '.join(df.columns)}")
    kept = [field for field in df.schema if field.name not in fields.values()]
    for field in kept:
        if field.name in _ADDED.names:
            raise ValueError(f"the column {field.name!r} would be there twice")
    bundle = _ship(df.sparkSession.sparkContext, _bundle(style, fonts))
    # Spark takes "effects[0].size" for a way into a column, so that they go by numbers on the way.
    numbers = {name: str(number) for number, name in enumerate(df.columns)}
    job = _Job(
        bundle,
        __version__,
        numbers[text],
        {path: numbers[column] for path, column in fields.items()},
        {numbers[field.name]: field.name for field in kept},
        compression,
    )
    return df.toDF(*numbers.values()).mapInArrow(job, StructType([*kept, *_ADDED]))


def _is_path(name: str) -> bool:
    return name != "text" and name.split("[")[0].split(".")[0] in FIELDS


def _bundle(style: Style, fonts: File) -> bytes:
    """What an executor needs, as a zip file: the same bytes for the same files."""
    content = io.BytesIO()
    with zipfile.ZipFile(content, "w") as archive:

        def add(name: str, data: bytes) -> None:
            archive.writestr(zipfile.ZipInfo(name), data)

        folder = pathlib.Path(fonts)
        if folder.is_file():
            raise ValueError(f"{folder}: not a folder of fonts")
        files = sorted(file for file in folder.rglob("*") if file.suffix.lower() in _FONTS and file.is_file())
        Renderer(fonts)  # raises what is wrong with them here, not on an executor
        for file in files:
            add(f"fonts/{file.relative_to(folder).as_posix()}", file.read_bytes())
        shipped: dict[str, str] = {}
        for path, name in _named_files(style.to_dict(), pathlib.Path(style.source).parent):
            shipped[path] = f"{len(shipped)}-{name.name}"
            add(f"style/{shipped[path]}", name.read_bytes())
        add("style/style.json", style.with_values(shipped).to_json().encode())
    return content.getvalue()


def _named_files(value: Any, folder: pathlib.Path, path: str = "") -> Iterator[tuple[str, pathlib.Path]]:
    """The files that a style names, by their paths in it."""
    if isinstance(value, list):
        for index, each in enumerate(value):
            yield from _named_files(each, folder, f"{path}[{index}]")
    elif isinstance(value, dict):
        for name, each in value.items():
            yield from _named_files(each, folder, f"{path}.{name}" if path else name)
    elif isinstance(value, str) and (path == "font" or path.endswith(".pattern")):
        if (folder / value).is_file():
            yield path, folder / value


# By application and name: the driver serves a file as long as the application runs.
_shipped: dict[tuple[str, str], str] = {}


def _ship(context: Any, bundle: bytes) -> str:
    name = f"gxtext-{hashlib.sha256(bundle).hexdigest()[:32]}.zip"
    key = (context.applicationId, name)
    if key not in _shipped:
        folder = tempfile.mkdtemp(prefix="gxtext-")
        atexit.register(shutil.rmtree, folder, ignore_errors=True)
        file = os.path.join(folder, name)
        pathlib.Path(file).write_bytes(bundle)
        context.addFile(file)
        _shipped[key] = file
    return name


# Of a Python worker, by the bundle's name.
_opened: dict[str, tuple[Renderer, Style]] = {}


def _open(name: str) -> tuple[Renderer, Style]:
    if name not in _opened:
        archive = SparkFiles.get(name)
        folder = pathlib.Path(f"{archive}.d")
        if not folder.exists():
            # Another worker of this executor may be doing the same.
            unpacked = tempfile.mkdtemp(prefix="gxtext-", dir=folder.parent)
            with zipfile.ZipFile(archive) as content:
                content.extractall(unpacked)
            try:
                os.rename(unpacked, folder)
            except OSError:
                shutil.rmtree(unpacked, ignore_errors=True)
        _opened[name] = Renderer(folder / "fonts"), Style.load(folder / "style" / "style.json")
    return _opened[name]


def _without_nulls(value: Any) -> Any:
    """Records of a data frame have all members; those that are null are not given."""
    if isinstance(value, dict):
        return {name: _without_nulls(each) for name, each in value.items() if each is not None}
    return [_without_nulls(each) for each in value] if isinstance(value, list) else value


@dataclass
class _Job:
    """What an executor runs on its partitions."""

    bundle: str
    version: str
    text: str
    """Columns by the names that they come with, like those that follow."""
    fields: dict[str, str]
    """By path."""
    kept: dict[str, str]
    """With the names that they are to have."""
    compression: Literal["fast", "default", "small"]

    def __call__(self, batches: Iterable[pyarrow.RecordBatch]) -> Iterator[pyarrow.RecordBatch]:
        if self.version != __version__:
            raise RuntimeError(f"this executor has gxtext {__version__}, the driver {self.version}")
        renderer, style = _open(self.bundle)
        for batch in batches:
            yield from self._parts(batch, renderer, style)

    def _parts(
        self, batch: pyarrow.RecordBatch, renderer: Renderer, style: Style
    ) -> Iterator[pyarrow.RecordBatch]:
        kept = batch.select(list(self.kept)).rename_columns(list(self.kept.values()))
        rows: list[dict[str, Any]] = []
        start = size = 0
        for row in batch.select([self.text, *self.fields.values()]).to_pylist():
            rows.append(self._render(row, renderer, style))
            size += len(rows[-1].get("png") or b"")
            if size >= _BATCH_BYTES:
                yield _joined(kept.slice(start, len(rows)), rows)
                start, size, rows = start + len(rows), 0, []
        if rows:
            yield _joined(kept.slice(start, len(rows)), rows)

    def _render(self, row: dict[str, Any], renderer: Renderer, style: Style) -> dict[str, Any]:
        values = {path: _without_nulls(row[column]) for path, column in self.fields.items()}
        fields = {path: value for path, value in values.items() if value is not None}
        try:
            picture = renderer.render(*row_style(style, {**fields, "text": row[self.text]}))
            return {
                "png": picture.to_png(self.compression),
                "width": picture.width,
                "height": picture.height,
                "margins": picture.margins._asdict(),
                "missing": picture.missing,
            }
        except (Error, TypeError) as error:
            return {"error": str(error)}
        except MemoryError:
            return {"error": "out of memory"}


def _joined(kept: pyarrow.RecordBatch, rows: list[dict[str, Any]]) -> pyarrow.RecordBatch:
    added = [pyarrow.array([row.get(name) for row in rows], kind) for name, kind in _ADDED_ARROW.items()]
    return pyarrow.RecordBatch.from_arrays([*kept.columns, *added], [*kept.schema.names, *_ADDED_ARROW])
