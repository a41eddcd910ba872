// Python's header asks to come before the system's.
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "PillowTitle.h"

#include <memory>

namespace gxbench {

namespace {

// Pillow's blur takes a deviation: a third of the radius that the weights reach.
constexpr const char* kScript = R"(
from PIL import Image, ImageDraw, ImageFilter, ImageFont

def make(text, path, size, width, height, left, baseline, stroke, shadow_radius, distance, glow_radius):
    font = ImageFont.truetype(path, size)

    def mask(x, y, stroke_width):
        image = Image.new('L', (width, height))
        ImageDraw.Draw(image).text((x, y), text, fill=255, font=font, anchor='ls',
                                   stroke_width=stroke_width)
        return image

    def tinted(color, coverage):
        image = Image.new('RGBA', (width, height), color + (0,))
        image.putalpha(coverage)
        return image

    def draw():
        glyphs = mask(left, baseline, 0)
        shadow = mask(left + distance, baseline + distance, 0).filter(
            ImageFilter.GaussianBlur(shadow_radius / 3)).point(lambda a: a * 0.6)
        glow = glyphs.filter(ImageFilter.GaussianBlur(glow_radius / 3))
        image = Image.new('RGBA', (width, height))
        for color, coverage in (((0, 0, 0), shadow), ((255, 224, 128), glow),
                                ((64, 32, 0), mask(left, baseline, stroke)), ((240, 192, 64), glyphs)):
            image.alpha_composite(tinted(color, coverage))
        return image

    draw()
    return draw
)";

using Object = std::unique_ptr<PyObject, void (*)(PyObject*)>;

Object owned(PyObject* object) {
    return {object, [](PyObject* o) { Py_XDECREF(o); }};
}

PyObject* makeFunction() {
    static PyObject* const function = []() -> PyObject* {
        Py_InitializeEx(0);
        PyObject* names = PyModule_GetDict(PyImport_AddModule("__main__"));
        const Object result = owned(PyRun_String(kScript, Py_file_input, names, names));
        return result ? PyDict_GetItemString(names, "make") : nullptr;
    }();
    return function;
}

}  // namespace

std::function<void()> pillowRun(const PillowTitle& title) {
    PyObject* const make = makeFunction();
    PyObject* const draw =
        make ? PyObject_CallFunction(make, "ssiiiiiiiii", title.text.c_str(), title.font.c_str(),
                                     title.size, title.width, title.height, title.left,
                                     title.baseline, title.stroke, title.shadowRadius,
                                     title.shadowDistance, title.glowRadius)
             : nullptr;
    if (!draw) {
        PyErr_Print();
        return {};
    }
    const std::shared_ptr<PyObject> kept(draw, [](PyObject* o) { Py_DECREF(o); });
    return [kept] { const Object image = owned(PyObject_CallNoArgs(kept.get())); };
}

}  // namespace gxbench
