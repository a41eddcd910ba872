"""Titles on a real cluster of two executors, one of which dies in the middle."""

import hashlib
import os
import pathlib
import shutil
import signal
import sys
import threading
import time

import pytest

import gxtext

pyspark = pytest.importorskip("pyspark")
from gxtext.spark import render_titles  # noqa: E402

TITLES = int(os.environ.get("GXTEXT_TEST_TITLES", "400"))
PACKAGE = str(pathlib.Path(gxtext.__file__).parents[1])


@pytest.fixture(scope="module")
def spark():
    from pyspark.sql import SparkSession

    os.environ.update(SPARK_LOCAL_IP="127.0.0.1", SPARK_LOCAL_HOSTNAME="127.0.0.1", PYSPARK_PYTHON=sys.executable)
    lean = "-XX:TieredStopAtLevel=1 -XX:+UseSerialGC"  # to start is most of what the machines do
    session = (
        SparkSession.builder.master("local-cluster[2,1,1024]")
        .config("spark.driver.host", "127.0.0.1")
        .config("spark.driver.bindAddress", "127.0.0.1")
        .config("spark.ui.enabled", "false")
        .config("spark.ui.showConsoleProgress", "false")
        .config("spark.executorEnv.PYTHONPATH", PACKAGE)
        .config("spark.driver.extraJavaOptions", lean)
        .config("spark.executor.extraJavaOptions", lean)
        .config("spark.sql.codegen.wholeStage", "false")
        .getOrCreate()
    )
    session.sparkContext.setLogLevel("OFF")
    yield session
    # A cluster in a process keeps what its executors were sent.
    work = pathlib.Path(pyspark.__file__).parent / "work" / session.sparkContext.applicationId
    session.stop()
    shutil.rmtree(work, ignore_errors=True)
    assert not work.exists()


def executors(spark):
    """Process ids of those that run now: children of the driver, which is master and worker, too."""
    driver = spark.sparkContext._jvm.java.lang.ProcessHandle.current().pid()
    running = []
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            parent = int(stat.read_text().rsplit(")", 1)[1].split()[1])
            command = (stat.parent / "cmdline").read_text()
        except (OSError, IndexError):
            continue
        if parent == driver and "CoarseGrainedExecutorBackend" in command:
            running.append(int(stat.parent.name))
    return running


def test_rows_have_the_bytes_of_the_renderer(spark, fonts, renderer, title, tmp_path):
    title = title.replace(text="own")
    rows = [
        (1, "Hello", None, None, None),
        (2, "wide", 9.0, "#FF0000", None),
        (3, "bad", -1.0, None, None),
        (4, None, None, None, None),
        (5, "", None, None, None),
        (6, "red", None, "red", None),
        (7, "box \U0010fffd", None, None, {"color": "#00FF00", "radius": None}),
    ]
    schema = "id int, text string, `effects[0].size` double, colour string, background struct<color:string,radius:int>"
    frame = spark.createDataFrame(rows, schema)
    fields = {name: name for name in frame.columns if name.startswith(("effects", "back"))}
    drawn = render_titles(frame, title, fonts=fonts, fields={**fields, "color": "colour"}, compression="fast")
    assert drawn.columns == ["id", "text", "png", "width", "height", "margins", "missing", "error"]
    found = {row.id: row for row in drawn.collect()}
    styles = {
        1: title,
        2: title.with_values({"effects[0].size": 9, "color": "#FF0000"}),
        4: title,
        7: title.with_values({"background": {"color": "#00FF00"}}),
    }
    for number, style in styles.items():
        picture = renderer.render(style, rows[number - 1][1])
        row = found.pop(number)
        assert bytes(row.png) == picture.to_png("fast") and row.error is None
        assert (row.width, row.height) == picture.size and tuple(row.margins) == picture.margins
        assert row.missing == picture.missing
    errors = {number: row.error for number, row in found.items()}
    assert all(row.png is None for row in found.values())
    assert "$.effects[0].size: -1" in errors[3] and "empty" in errors[5] and "$.color: " in errors[6]
    with pytest.raises(ValueError, match="twice"):
        render_titles(frame.withColumnRenamed("id", "png"), title, fonts=fonts, fields={})
    with pytest.raises(ValueError, match="no column"):
        render_titles(frame, title, fonts=fonts, text="title")
    with pytest.raises(gxtext.FontError):
        render_titles(frame, title, fonts=tmp_path)
    with pytest.raises(ValueError, match="not a folder"):
        render_titles(frame, title, fonts=fonts / "DejaVuSans.ttf")


def test_an_executor_dies_and_nothing_is_lost(spark, fonts, renderer, title):
    def pause(batches):
        time.sleep(0.2)
        yield from batches

    partitions = 16
    frame = spark.range(TITLES).selectExpr("id", "concat('Title ', id) as text").repartition(partitions)
    drawn = render_titles(frame.mapInArrow(pause, frame.schema), title, fonts=fonts)
    rows = []
    job = threading.Thread(target=lambda: rows.extend(drawn.selectExpr("id", "sha2(png, 256) as sum").collect()))
    job.start()
    tracker = spark.sparkContext.statusTracker()

    def done():
        stages = [tracker.getStageInfo(stage) for stage in tracker.getActiveStageIds()]
        return max((stage.numCompletedTasks for stage in stages if stage and stage.numTasks == partitions), default=0)

    before = executors(spark)
    while job.is_alive() and done() < 2:
        time.sleep(0.02)
    assert job.is_alive() and len(before) == 2
    os.kill(before[0], signal.SIGKILL)
    job.join()
    assert len(rows) == TITLES and {row.id for row in rows} == set(range(TITLES))
    sample = range(0, TITLES, max(1, TITLES // 400))
    sums = {row.id: row.sum for row in rows}
    for number in sample:
        expected = hashlib.sha256(renderer.render(title, f"Title {number}").to_png()).hexdigest()
        assert sums[number] == expected
    assert before[0] not in executors(spark)


def test_what_a_style_names_is_shipped_and_kept(fonts, tmp_path, monkeypatch):
    import pyarrow

    from gxtext import spark as module

    pattern = gxtext.Renderer(fonts).render(gxtext.Style(size=12), "x")
    pattern.save(tmp_path / "tile.png")
    styles = {"effects": [gxtext.Pattern("tile.png"), gxtext.Stroke(9, fill=gxtext.Pattern("tile.png"))], "size": 60}
    style = gxtext.Style.from_json(gxtext.Style(**styles).to_json(), tmp_path / "style.json")
    data = module._bundle(style, fonts)
    assert data == module._bundle(style, fonts)
    (tmp_path / "executor").mkdir()
    (tmp_path / "executor" / "b.zip").write_bytes(data)
    opened = []
    monkeypatch.setattr(module, "Renderer", lambda folder: opened.append(folder) or gxtext.Renderer(folder))
    monkeypatch.setattr(module.SparkFiles, "get", lambda name: str(tmp_path / "executor" / name))
    monkeypatch.setattr(module, "_BATCH_BYTES", 1)
    job = module._Job("b.zip", gxtext.__version__, "text", {}, {"text": "text"}, "default")
    expected = gxtext.Renderer(fonts).render(style, "Hi").to_png()
    batch = pyarrow.RecordBatch.from_pydict({"text": ["Hi", "Ho", "Hi"]})
    for _ in range(2):
        parts = list(job([batch, batch]))
        assert [part.num_rows for part in parts] == [1] * 6
        assert parts[2].to_pylist()[0]["png"] == expected
    assert len(opened) == 1
    with pytest.raises(RuntimeError, match="0.0"):
        next(module._Job("b.zip", "0.0", "text", {}, {"text": "text"}, "default")([batch]))
