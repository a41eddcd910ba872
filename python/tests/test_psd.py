"""Text layers of layered pictures. The files are written by psd/make.mjs."""

import json
import pathlib
import subprocess
import sys

import pytest

import gxtext

psd = pytest.importorskip("gxtext.psd", exc_type=ImportError)

FOLDER = pathlib.Path(__file__).parent / "psd"
EFFECTS = json.loads((FOLDER / "effects.json").read_text())
LIGHT = {"title": {"globalAngle": 30, "globalAltitude": 40}, "mixed": {"globalAngle": 60, "globalAltitude": 45}}


def texts(name, renderer):
    return psd.read(FOLDER / f"{name}.psd", renderer)


@pytest.mark.parametrize(
    ("name", "layer", "effects"),
    [
        ("title", 0, EFFECTS["gold"]),
        ("mixed", 0, EFFECTS["many"]),
        ("mixed", 1, {**EFFECTS["many"], "disabled": True}),
    ],
)
def test_effects_come_back_as_they_were_written(renderer, name, layer, effects):
    text = texts(name, renderer)[layer]
    expected = gxtext.import_layer_style({**effects, **LIGHT[name]})
    assert text.style.effects == expected.style.effects and text.style.order == expected.style.order
    lost = [loss for loss in text.losses if not loss.path.startswith("$.text.")]
    assert sorted(lost) == sorted(expected.losses)


def test_texts_have_their_fonts_and_sizes(renderer):
    gold, plain = texts("title", renderer)
    assert [gold.name, plain.name] == ["Gold", "Plain"]
    assert gold.style.text == "Golden\nhour" and gold.style.align == "center"
    assert (gold.style.font, gold.style.bold, gold.style.size) == ("DejaVu Sans", True, 48)
    assert gold.style.color == "#FFD75E" and gold.style.letter_spacing == 0.05
    assert renderer.render(gold.style).fonts[0].file.endswith("DejaVuSans-Bold.ttf")
    assert plain.style.italic and plain.style.scale_x == 1.5 and plain.style.opacity == pytest.approx(0.5, abs=0.01)
    assert [loss.path for loss in plain.losses] == ["$.text.font"]


def test_what_a_style_has_not_is_said(renderer):
    twice, turned = texts("mixed", renderer)
    assert twice.name == "Group/Many/effects"
    assert twice.style.size == 48 and twice.style.fill_opacity == pytest.approx(0.25, abs=0.01)
    lost = {loss.path for loss in twice.losses if loss.path.startswith("$.text.")}
    assert lost == {"$.text.underline", "$.text.styleRuns"}
    assert "$.text.transform" in {loss.path for loss in turned.losses}


def test_the_command_writes_a_file_a_layer(fonts, tmp_path, capsys):
    options = ["--fonts", str(fonts), "--out", str(tmp_path / "styles"), str(FOLDER / "mixed.psd")]
    done = subprocess.run([sys.executable, "-m", "gxtext.psd", *options], capture_output=True, text=True)
    assert done.returncode == 0 and "Group/Many/effects: $.satin: dropped: " in done.stderr
    files = sorted((tmp_path / "styles").iterdir())
    assert [file.name for file in files] == ["Group-Many-effects-2.json", "Group-Many-effects.json"]
    assert gxtext.Style.load(files[1]).text == "Twice as large"
    assert psd.main(["--json", *options]) == 0
    layer = json.loads(capsys.readouterr().out)[0]
    assert layer["name"] == "Group/Many/effects" and layer["style"] == json.loads(files[1].read_text())
    assert {"path": "$.text.underline", "kind": "dropped", "reason": "a style has none"} in layer["losses"]
    assert psd.main(["--strict", *options]) == 1


@pytest.mark.parametrize("size", [0, 3, 25, 26, 200, 5000, 20000])
def test_files_that_are_cut_short_are_errors(renderer, tmp_path, size):
    file = tmp_path / "short.psd"
    file.write_bytes((FOLDER / "title.psd").read_bytes()[:size])
    with pytest.raises(gxtext.PictureError):
        psd.read(file, renderer)
    with pytest.raises(OSError):
        psd.read(tmp_path / "nowhere.psd", renderer)
