"""Styles as values, and what is wrong with others."""

import copy
import math
import pickle

import numpy
import pytest
from conftest import STYLES

import gxtext
from gxtext import _fields

REQUIRED = {"stops": [gxtext.Stop("#FF0000", 0)], "pattern": "tile.png"}


@pytest.mark.parametrize("kind", _fields.EFFECTS)
def test_every_field_of_an_effect_is_its_own(kind):
    fields = [name for name, member in vars(kind).items() if isinstance(member, property)]
    plain = kind(**{name: REQUIRED[name] for name in fields if name in REQUIRED})
    assert gxtext.Style(effects=[plain]).effects == (plain,)
    for name in fields:
        value = getattr(plain, name)
        assert f"    {name}: " in kind.__doc__
        # What is said to be the default changes nothing in the file.
        if value is not None and name not in REQUIRED:
            same = kind(**{n: REQUIRED[n] for n in fields if n in REQUIRED}, **{name: value})
            assert gxtext.Style(effects=[same]) == gxtext.Style(effects=[plain]), name


@pytest.mark.parametrize("file", STYLES, ids=lambda file: file.stem)
def test_a_file_comes_back_from_its_fields(file):
    style = gxtext.Style.load(file)
    names = [name for name, member in vars(_fields.StyleFields).items() if isinstance(member, property)]
    again = gxtext.Style(**{name: getattr(style, name) for name in names})
    assert again.to_json() == style.to_json()
    assert eval(repr(style), vars(gxtext)).to_json() == style.to_json()
    assert pickle.loads(pickle.dumps(style)) == copy.deepcopy(style) == style
    assert hash(pickle.loads(pickle.dumps(style))) == hash(style)


def test_copies_differ_in_what_is_said(title, tmp_path):
    assert title.replace(letter_spacing=0.5).letter_spacing == 0.5
    assert title.replace(size=None).size == 64
    assert title.with_values({"effects[0].size": numpy.float32(6), "effects[2]": gxtext.OuterGlow(3)}).effects == (
        gxtext.Stroke(6, "#102040"),
        title.effects[1],
        gxtext.OuterGlow(3),
    )
    assert title.scaled(2).effects[0].size == 6
    assert title.size == 40
    file = tmp_path / "no \udcff text.json"
    title.save(file)
    loaded = gxtext.Style.load(file)
    assert loaded.to_dict() == title.to_dict() and loaded.source == str(file)
    assert pickle.loads(pickle.dumps(loaded)) == loaded
    with pytest.raises(gxtext.FontError, match="text.json/x.ttf"):
        gxtext.Renderer([file / "x.ttf"])


def test_values_do_not_change(title):
    effects = [gxtext.Stroke(2)]
    style = gxtext.Style(effects=effects)
    effects.append(gxtext.Stroke(3))
    assert len(style.effects) == 1
    for change in (lambda: setattr(title, "size", 3), lambda: setattr(title.effects[0], "size", 3)):
        with pytest.raises(AttributeError):
            change()


@pytest.mark.parametrize(
    ("make", "path", "reason", "allowed"),
    [
        (lambda: gxtext.Style(size=0), "$.size", "0 is out of range 1-4096", "1-4096"),
        (lambda: gxtext.Style(effects=[gxtext.Stroke(), gxtext.Stroke(101)]), "$.effects[1].size", "101 is", "0-100"),
        (lambda: gxtext.Style(effects=[gxtext.OuterShadow(cast_form="")]), "$.effects[0].castForm", "", "castFrom"),
        (lambda: gxtext.Style(letter_spacin=1), "$.letterSpacin", "letterSpacing", ""),
        (lambda: gxtext.Style(size=math.nan), "$.size", "", "number"),
        (lambda: gxtext.Style(size="8"), "$.size", "", "number"),
        (lambda: gxtext.Style(effects=gxtext.Stroke()), "$.effects", "", "list"),
        (lambda: gxtext.Style(text="\ud800"), "$.text", "surrogate", ""),
        (lambda: gxtext.Style.from_json("{", "a.json"), "$", "", ""),
        (lambda: gxtext.Style.from_json("\udcff"), "$", "", ""),
        (lambda: gxtext.Style.from_json('{"size": 4, "size": 5}'), "$.size", "", ""),
        (lambda: gxtext.Style().with_values({"effects[3].size": 1}), "effects[3].size", "0 entries", ""),
        (lambda: gxtext.Style().replace(align="middle"), "$.align", "middle", "center"),
        (lambda: gxtext.import_layer_style("[]"), "$", "", ""),
    ],
)
def test_mistakes_have_a_place_and_a_reason(make, path, reason, allowed):
    with pytest.raises(gxtext.StyleError) as caught:
        make()
    error = pickle.loads(pickle.dumps(caught.value))
    assert error.path == path and str(error) == str(caught.value)
    assert reason in error.reason and allowed in error.allowed + error.reason
    assert isinstance(error, gxtext.Error) and isinstance(error, ValueError)


def test_all_mistakes_are_reported():
    with pytest.raises(gxtext.StyleError) as caught:
        gxtext.Style(effects=[gxtext.Stroke(-1)] * 30)
    assert len(caught.value.problems) == 20 and caught.value.total == 30
    with pytest.raises(gxtext.Error):
        gxtext.Style().scaled(0)
    with pytest.raises(TypeError):
        gxtext.Style(size=object())
    with pytest.raises(OSError):
        gxtext.Style.load("nowhere.json")
