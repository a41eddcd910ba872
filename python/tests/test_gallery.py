"""The package draws what the program draws."""

import json

import pytest
from conftest import STYLES

import gxtext


@pytest.fixture(scope="module")
def installed():
    return gxtext.Renderer()


@pytest.mark.parametrize("file", STYLES, ids=lambda file: file.stem)
def test_bytes_are_those_of_the_program(program, installed, file):
    style = gxtext.Style.load(file)
    assert installed.render(style, None if style.text else "Ägypten 7").to_png() == program(
        "render", str(file), *([] if style.text else ["--text", "Ägypten 7"])
    )


def test_fields_and_effects_are_those_of_options(program, renderer, fonts):
    effects = [gxtext.Stroke(4, "#102040", position="center"), gxtext.OuterShadow(8, "#B0000000", distance=6)]
    style = gxtext.Style(font="DejaVu Serif", size=50, bold=True, effects=effects, order="natural")
    options = ["--stroke", "4,#102040,center", "--shadow", "6,8,#B0000000", "--font", "DejaVu Serif", "--bold"]
    for compression in "fast", "default":
        words = ["--text", "Hello", "--font-size", "50", "--fonts", str(fonts), "--compression", compression]
        picture = renderer.render(style, "Hello")
        assert picture.to_png(compression) == program("render", *words, *options)
        assert picture.to_webp(compression) == program("render", *words, *options, "--format", "webp")


def test_layer_effects_are_imported_as_by_the_program(program, tmp_path):
    effects = {"dropShadow": [{"size": {"units": "Pixels", "value": 10}, "noise": 0.5}], "satin": {"enabled": True}}
    imported = gxtext.import_layer_style(effects)
    file = tmp_path / "effects.json"
    file.write_text(json.dumps(effects))
    assert imported.style.to_json().encode() == program("import", str(file))
    assert [(loss.path, loss.kind) for loss in imported.losses] == [
        ("$.dropShadow[0].noise", "dropped"),
        ("$.satin", "dropped"),
    ]
