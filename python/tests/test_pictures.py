"""Pictures: what they hold, where their pixels lie, and why there is none."""

import io
import pickle

import numpy
import PIL.Image
import pytest

import gxtext


def test_pixels_are_seen_without_a_copy(renderer, title):
    picture = renderer.render(title, "Hello")
    before = picture.to_png()
    pixels = numpy.asarray(picture)
    assert pixels.shape == (picture.height, picture.width, 4) and pixels.dtype == numpy.uint8
    assert pixels.ctypes.data == numpy.asarray(picture).ctypes.data
    assert numpy.shares_memory(pixels, numpy.asarray(memoryview(picture)))
    assert not pixels.flags.writeable
    with pytest.raises(ValueError):
        pixels.setflags(write=True)
    # The stroke's colour, and the file's before and after anyone looked.
    assert (pixels == [0x10, 0x20, 0x40, 255]).all(axis=2).any()
    image = picture.to_pil()
    assert image.mode == "RGBA" and image.tobytes() == pixels.tobytes() == bytes(picture)
    assert picture.to_png() == picture._repr_png_() == before
    assert PIL.Image.open(io.BytesIO(before)).tobytes() == bytes(picture)
    width = picture.width
    del picture
    assert pixels[:, :, 3].any() and image.width == width


def test_a_picture_says_how_it_lies(renderer, title):
    picture = renderer.render(title, "Hello\nשלום \U0010fffd")
    assert picture.size == (picture.width, picture.height)
    assert picture.arrangement == renderer.arrange(title, "Hello\nשלום \U0010fffd")
    assert [line.text for line in picture.lines] == ["Hello", "שלום \U0010fffd"]
    assert [line.right_to_left for line in picture.lines] == [False, True]
    assert picture.lines[1].baseline > picture.lines[0].baseline
    left, top, right, bottom = picture.margins
    assert min(left, top) >= 3 and right > left and bottom > top  # the shadow falls to the lower right
    assert picture.missing == "\U0010fffd"
    assert picture.fonts[0].family == "DejaVu Sans" and "H" in picture.fonts[0].characters
    with pytest.raises(gxtext.TextError, match="no font has"):
        renderer.render(title, "\U0010fffd", strict=True)
    again = pickle.loads(pickle.dumps(picture))
    assert bytes(again) == bytes(picture) and again.arrangement == picture.arrangement
    assert again.to_png("fast") == picture.to_png("fast")


def test_files(renderer, title, tmp_path):
    picture = renderer.render(title, "Hello")
    picture.save(tmp_path / "a.png")
    assert (tmp_path / "a.png").read_bytes() == picture.to_png()
    picture.save(tmp_path / "a.webp", "fast")
    assert (tmp_path / "a.webp").read_bytes() == picture.to_webp("fast")
    with pytest.raises(ValueError, match=".png"):
        picture.save(tmp_path / "a.jpg")
    with pytest.raises(gxtext.FileError):
        picture.save(tmp_path / "nowhere" / "a.png")
    with pytest.raises(ValueError, match="fast, default, small"):
        picture.to_png("best")


@pytest.mark.parametrize(
    ("fields", "text", "error"),
    [
        ({}, None, gxtext.TextError),
        ({}, "", gxtext.TextError),
        ({}, "a\udc00", gxtext.TextError),
        ({"size": 4096}, "W" * 40, gxtext.TextError),
        ({"size": 4096}, "\n".join("W" * 14 for _ in range(4)), gxtext.PictureError),
        ({"font": "No Such Family"}, "a", gxtext.FontError),
        ({"font": "/dev/null"}, "a", gxtext.FontError),
        ({"effects": [gxtext.Pattern("nowhere.png")]}, "a", gxtext.StyleError),
        ({}, 7, TypeError),
    ],
)
def test_a_failure_leaves_the_renderer_good(renderer, title, fields, text, error):
    before = renderer.render(title, "after").to_png()
    with pytest.raises(error) as caught:
        renderer.render(gxtext.Style(**fields), text)
    assert renderer.render(title, "after").to_png() == before
    if error is not TypeError:
        assert caught.value.reason
        assert str(pickle.loads(pickle.dumps(caught.value))) == str(caught.value)


def test_fonts(fonts, title, tmp_path):
    serif, sans = fonts / "DejaVuSerif.ttf", fonts / "DejaVuSans.ttf"
    assert gxtext.Renderer([serif, sans]).families == ["DejaVu Sans", "DejaVu Serif"]
    title = title.replace(font=None)
    first = gxtext.Renderer([serif, sans]).render(title, "a").to_png()
    assert first == gxtext.Renderer(serif).render(title, "a").to_png()
    assert first != gxtext.Renderer(str(sans)).render(title, "a").to_png()
    for bad in (tmp_path, tmp_path / "nowhere", [__file__], []):
        with pytest.raises(gxtext.FontError):
            gxtext.Renderer(bad)

