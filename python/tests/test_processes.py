"""Threads, processes, and many texts."""

import itertools
import multiprocessing
import os
import signal
import threading
import time
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor

import pytest

import gxtext

RENDERS = int(os.environ.get("GXTEXT_TEST_RENDERS", "10000"))
TEXTS = [f"Title {number}" for number in range(24)]


def resident():
    with open("/proc/self/statm") as statm:
        return int(statm.read().split()[1]) * os.sysconf("SC_PAGESIZE")


def test_memory_stays_flat(renderer, title):
    style = title.replace(size=20)

    def render(count, start):
        for number in range(start, start + count):
            memoryview(renderer.render(style, f"Title {number % 1000}"))[0, 0, 0]

    # Caches are full by then.
    render(RENDERS // 5, 0)
    before = resident()
    render(RENDERS - RENDERS // 5, RENDERS // 5)
    assert resident() - before < 1 << 20


def test_mistakes_and_pictures_leave_nothing_behind(renderer, title):
    def work():
        for _ in range(300):
            for fields in ({"size": -1}, {"effects": [gxtext.Stroke(sise=1)]}):
                with pytest.raises(gxtext.StyleError):
                    gxtext.Style(**fields)
            with pytest.raises(gxtext.TextError):
                renderer.render(title, "")
            renderer.render(title, "a").to_png("fast")
            title.with_values({"effects[0].size": 2}).to_dict()

    work()
    before = resident()
    work()
    assert resident() - before < 1 << 20


def test_other_threads_run_while_one_renders(renderer):
    style = gxtext.Style(size=900, effects=[gxtext.Stroke(90), gxtext.OuterGlow(90), gxtext.Bevel(200)])
    ended = threading.Event()

    def render():
        renderer.render(style, "WWWWWWWW")
        ended.set()

    thread = threading.Thread(target=render)
    thread.start()
    steps = 0
    while not ended.is_set():
        time.sleep(0.001)  # to go on takes the interpreter's lock
        steps += 1
    thread.join()
    assert steps > 20


def test_threads_share_a_renderer(renderer, title):
    alone = [renderer.render(title, text).to_png() for text in TEXTS]
    with ThreadPoolExecutor(8) as pool:
        for _ in range(4):
            assert list(pool.map(lambda text: renderer.render(title, text).to_png(), TEXTS)) == alone


def draw(job):
    renderer, style, text = job
    return renderer.render(style, text)


@pytest.mark.parametrize("start", ["fork", "spawn"])
def test_a_pool_of_processes_draws_the_same(renderer, title, start):
    alone = [renderer.render(title, text).to_png() for text in TEXTS]
    with ProcessPoolExecutor(2, multiprocessing.get_context(start)) as pool:
        drawn = pool.map(draw, [(renderer, title, text) for text in TEXTS], chunksize=6)
        assert [picture.to_png() for picture in drawn] == alone


def test_a_process_forks_while_threads_render(renderer, title):
    expected = renderer.render(title, "child").to_png()
    done = threading.Event()

    def keep_rendering():
        while not done.is_set():
            renderer.render(title, "parent").to_png("fast")

    threads = [threading.Thread(target=keep_rendering) for _ in range(4)]
    for thread in threads:
        thread.start()
    try:
        for _ in range(40):
            child = os.fork()
            if child == 0:
                signal.alarm(60)  # in place of a lock that nobody releases
                os._exit(0 if renderer.render(title, "child").to_png() == expected else 1)
            assert os.waitpid(child, 0)[1] == 0
    finally:
        done.set()
        for thread in threads:
            thread.join()


def test_rows_come_in_order_and_bad_ones_alone_fail(renderer, title, tmp_path):
    title.replace(size=20).save(tmp_path / "own.json")
    rows = [
        "plain",
        {"id": "red", "text": "red", "color": "#FF0000", "effects[0].size": 1},
        {"text": "wrong", "effects[0].size": -1},
        {"text": None},
        {"text": 7},
        {"text": "styled", "style": str(tmp_path / "own.json"), "color": "#00FF00"},
        {"text": "astray", "style": "nowhere.json"},
        {"text": "odd", "style": 7},
        {"id": "last", "text": "last"},
    ]
    results = list(gxtext.render_many(rows, title, fonts=renderer, workers=3, finish=lambda _, p: p.to_png("fast")))
    assert [result.id for result in results] == [1, "red", 3, 4, 5, 6, 7, 8, "last"]
    assert [type(result.error).__name__ for result in results] == [
        "NoneType", "NoneType", "StyleError", "TextError", "TextError", "NoneType", "FileError", "TextError",
        "NoneType",
    ]  # fmt: skip
    red = title.with_values({"color": "#FF0000", "effects[0].size": 1})
    assert results[1].value == renderer.render(red, "red").to_png("fast")
    own = title.replace(size=20, color="#00FF00")
    assert results[5].picture.to_png() == renderer.render(own, "styled").to_png()
    assert results[-1].picture.to_png() == renderer.render(title, "last").to_png()


def test_rows_may_be_endless(renderer, title):
    taken = []
    rows = (taken.append(number) or f"Title {number}" for number in itertools.count())
    results = gxtext.render_many(rows, title, fonts=renderer, workers=2)
    assert [result.id for result in itertools.islice(results, 50)] == list(range(1, 51))
    results.close()
    assert len(taken) < 60

    with pytest.raises(gxtext.FontError):
        gxtext.render_many([], title, fonts="nowhere")

    def fail(name, picture):
        raise KeyError(name)

    with pytest.raises(KeyError):
        next(gxtext.render_many(["a"], title, fonts=renderer, finish=fail))
