"""Many measured titles as files, drawn by Pillow in a process for each processor."""

import multiprocessing
import os
import tempfile

import PIL

from pillow_titles import Title
from protocol import serve

title = None


def start(job):
    global title
    title = Title(job)


def write(file):
    title.draw().save(file)


def prepare(job):
    folder = tempfile.TemporaryDirectory()
    files = [os.path.join(folder.name, f"{number}.png") for number in range(job["titles"])]
    pool = multiprocessing.Pool(os.cpu_count(), start, (job,))

    def draw(keep=(folder, pool)):
        pool.map(write, files, chunksize=8)

    return draw, "a process a processor"


if __name__ == "__main__":
    serve(f"Pillow {PIL.__version__}", prepare)
