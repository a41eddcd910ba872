"""The peers' side of the conversation that README.md describes."""

import json
import statistics
import sys
import time


def _seconds(draw, at_least):
    draw()
    taken = []
    start = before = time.perf_counter()
    while before - start < at_least:
        draw()
        now = time.perf_counter()
        taken.append(now - before)
        before = now
    return statistics.median(taken)


def serve(name, prepare, save=None):
    """Answers until the input ends.

    `prepare(job)` returns the run as a function and what it does otherwise than asked;
    `save(run's result, file)` writes a picture.
    """
    draw = None
    for line in sys.stdin:
        question = json.loads(line)
        try:
            if "prepare" in question:
                draw, note = prepare(question["prepare"])
                draw()
                answer = {"ready": name, "note": note}
            elif "time" in question:
                answer = {"seconds": _seconds(draw, question["time"])}
            else:
                save(draw(), question["save"])
                answer = {"saved": True}
        except Exception as error:  # whatever it is, the other side has to be told
            answer = {"missing": f"{type(error).__name__}: {error}"}
        print(json.dumps(answer), flush=True)
