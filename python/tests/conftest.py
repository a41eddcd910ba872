"""What the tests share."""

import os
import pathlib
import subprocess

import pytest

import gxtext

ROOT = pathlib.Path(__file__).parents[2]
STYLES = sorted(ROOT.glob("examples/styles/**/*.json"))
FONTS = pathlib.Path(os.environ.get("GXTEXT_FONTS", "/usr/share/fonts"))


@pytest.fixture(scope="session")
def fonts():
    """A folder with the fonts that most tests draw with: the pictures do not hang on what is installed."""
    return FONTS / "truetype/dejavu"


@pytest.fixture(scope="session")
def renderer(fonts):
    return gxtext.Renderer(fonts)


@pytest.fixture
def title():
    effects = [gxtext.Stroke(3, "#102040"), gxtext.OuterShadow(6, distance=4)]
    return gxtext.Style(font="DejaVu Sans", size=40, effects=effects)


@pytest.fixture
def program():
    """Runs the gxtext program; its standard output."""
    if "GXTEXT_PROGRAM" not in os.environ:
        pytest.skip("GXTEXT_PROGRAM does not name the program")
    return lambda *words: subprocess.run([os.environ["GXTEXT_PROGRAM"], *words], check=True, capture_output=True).stdout
