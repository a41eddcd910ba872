#!/usr/bin/env python3
"""Renders titles.jsonl on a Spark cluster and shows the pictures in a sheet, index.html.

    make demo-spark                                                  # a cluster of two executors on this machine
    examples/spark/render.py --master spark://HOST:7077 --fonts fonts/ --out out/
"""

import argparse
import base64
import html
import os
import pathlib
import shutil
import sys

import pyspark
from pyspark.sql import SparkSession

import gxtext
from gxtext.spark import render_titles

HERE = pathlib.Path(__file__).parent


def session(master):
    builder = SparkSession.builder.appName("titles").config("spark.ui.showConsoleProgress", "false")
    if not master:
        # Driver and executors talk over the loopback interface, and run this Python.
        os.environ.update(SPARK_LOCAL_IP="127.0.0.1", SPARK_LOCAL_HOSTNAME="127.0.0.1", PYSPARK_PYTHON=sys.executable)
        builder = (
            builder.master("local-cluster[2,1,1024]")
            .config("spark.driver.host", "127.0.0.1")
            .config("spark.driver.bindAddress", "127.0.0.1")
            .config("spark.ui.enabled", "false")
            .config("spark.executorEnv.PYTHONPATH", pathlib.Path(gxtext.__file__).parents[1])
        )
    else:
        builder = builder.master(master)
    return builder.getOrCreate()


def sheet(rows):
    def cell(row):
        if row.error:
            return f"<figcaption>{html.escape(row.id)}: <b>{html.escape(row.error)}</b></figcaption>"
        picture = base64.b64encode(row.png).decode()
        caption = f"{html.escape(row.id)}, {row.width} x {row.height}"
        return f'<img alt="{caption}" src="data:image/png;base64,{picture}"><figcaption>{caption}</figcaption>'

    figures = "\n".join(f"<figure>{cell(row)}</figure>" for row in rows)
    return (
        '<!doctype html><meta charset="utf-8"><title>Titles</title>\n'
        "<style>body{background:#2b3440;color:#dde;font:14px sans-serif}figure{display:inline-block;margin:1em}"
        f"img{{display:block;max-width:100%}}b{{color:#f99}}</style>\n{figures}\n"
    )


def main():
    parser = argparse.ArgumentParser(description="Titles on a Spark cluster")
    parser.add_argument("--master", help="of the cluster; one on this machine if left out")
    parser.add_argument("--fonts", default="/usr/share/fonts/truetype/noto", help="folder of the fonts")
    parser.add_argument("--out", default="out/demo-spark", type=pathlib.Path)
    options = parser.parse_args()

    spark = session(options.master)
    # A file has as many partitions as it is long; this one is short.
    titles = spark.read.json(str(HERE / "titles.jsonl")).repartition(4)
    fields = {"size": "size", "align": "align", "color": "color", "effects[1].size": "outline"}
    style = gxtext.Style.load(HERE / "style.json")
    pictures = render_titles(titles, style, fonts=options.fonts, fields=fields)
    rows = pictures.orderBy("id").collect()
    work = pathlib.Path(pyspark.__file__).parent / "work" / spark.sparkContext.applicationId
    spark.stop()
    # A cluster in a process keeps what its executors were sent.
    shutil.rmtree(work, ignore_errors=True)

    options.out.mkdir(parents=True, exist_ok=True)
    (options.out / "index.html").write_text(sheet(rows), encoding="utf-8")
    failed = sum(row.error is not None for row in rows)
    print(f"{len(rows) - failed} pictures and {failed} errors in {options.out / 'index.html'}")


if __name__ == "__main__":
    main()
