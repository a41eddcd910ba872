#include <nanobind/stl/filesystem.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/string_view.h>

#include <array>
#include <bit>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Bindings.h"
#include "raster/kernels/BlendRows.h"
#include "scene/FileIo.h"
#include "scene/PictureFile.h"

namespace gxpython {

namespace {

static_assert(std::endian::native == std::endian::little);

gxtext::PngCompression compressionOf(std::string_view name) {
    if (name == "fast") return gxtext::PngCompression::kFast;
    if (name == "default") return gxtext::PngCompression::kDefault;
    if (name == "small") return gxtext::PngCompression::kSmall;
    const std::string message =
        "compression: '" + std::string(name) + "'; allowed: fast, default, small";
    throw nb::value_error(message.c_str());
}

void swapRedAndBlue(std::vector<uint32_t>& pixels) {
    using namespace GxFontEffect::kernels;
    static_assert(sizeof(Rgba) == sizeof(uint32_t));
    swapRedBlueRow(reinterpret_cast<Rgba*>(pixels.data()), pixels.size());
}

// Pixels stay words 0xAARRGGBB, which files are made of, until somebody looks at them; from then on
// they are bytes R, G, B, A in the same place.
class Pixels {
public:
    Pixels(nb::object arrangement, std::vector<uint32_t> words, bool isRgba)
        : arrangement_(std::move(arrangement)), words_(std::move(words)), isRgba_(isRgba) {
        shape_ = {nb::cast<Py_ssize_t>(arrangement_.attr("height")),
                  nb::cast<Py_ssize_t>(arrangement_.attr("width")), 4};
        strides_ = {shape_[1] * 4, 4, 1};
    }

    const nb::object& arrangement() const { return arrangement_; }
    std::array<Py_ssize_t, 3>& shape() { return shape_; }
    std::array<Py_ssize_t, 3>& strides() { return strides_; }
    Py_ssize_t size() const { return static_cast<Py_ssize_t>(words_.size() * 4); }

    void* rgba() {
        const LongWork work;
        const std::lock_guard guard(lock_);
        if (!isRgba_) swapRedAndBlue(words_);
        isRgba_ = true;
        return words_.data();
    }

    std::string file(gxtext::PictureFormat format, std::string_view compressionName) {
        const gxtext::PngCompression compression = compressionOf(compressionName);
        const LongWork work;
        const auto encode = [&](const std::vector<uint32_t>& words) {
            const auto encoder =
                format == gxtext::PictureFormat::kPng ? gxtext::encodePng : gxtext::encodeWebp;
            return encoder(words.data(), static_cast<uint32_t>(shape_[1]),
                           static_cast<uint32_t>(shape_[0]), compression);
        };
        {
            const std::lock_guard guard(lock_);
            if (!isRgba_) return encode(words_);
        }
        std::vector<uint32_t> words = words_;
        swapRedAndBlue(words);
        return encode(words);
    }

private:
    nb::object arrangement_;
    std::array<Py_ssize_t, 3> shape_;  // rows, columns, channels
    std::array<Py_ssize_t, 3> strides_;
    std::mutex lock_;  // guards what follows; the words never change once they are RGBA
    std::vector<uint32_t> words_;
    bool isRgba_;
};

int getBuffer(PyObject* self, Py_buffer* view, int flags) {
    try {
        auto& pixels = nb::cast<Pixels&>(nb::handle(self));
        void* const bytes = pixels.rgba();
        if (PyBuffer_FillInfo(view, self, bytes, pixels.size(), 1, flags) < 0) return -1;
        if ((flags & PyBUF_ND) != 0) {
            view->ndim = 3;
            view->shape = pixels.shape().data();
            view->strides =
                (flags & PyBUF_STRIDES) == PyBUF_STRIDES ? pixels.strides().data() : nullptr;
        }
        return 0;
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_BufferError, error.what());
        return -1;
    }
}

nb::bytes bytesOf(const std::string& text) {
    return nb::bytes(text.data(), text.size());
}

void save(Pixels& pixels, const std::filesystem::path& file, std::string_view compression) {
    const auto format = gxtext::pictureFormatOf(file);
    if (!format) {
        const std::string message =
            file.string() + ": no .png or .webp file; to_pil().save() writes other formats";
        throw nb::value_error(message.c_str());
    }
    const std::string bytes = pixels.file(*format, compression);
    const LongWork work;
    gxtext::writeFile(file.string(), bytes);
}

nb::object toPil(const nb::object& self) {
    return nb::module_::import_("PIL.Image")
        .attr("frombuffer")("RGBA", self.attr("size"), self, "raw", "RGBA", 0, 1);
}

nb::object getState(Pixels& pixels) {
    const auto* const bytes = static_cast<const char*>(pixels.rgba());
    return nb::make_tuple(pixels.arrangement(),
                          nb::bytes(bytes, static_cast<size_t>(pixels.size())));
}

void setState(Pixels& pixels, const std::pair<nb::object, nb::bytes>& state) {
    const auto& [arrangement, rgba] = state;
    std::vector<uint32_t> words(rgba.size() / 4);
    if (words.size() != nb::cast<size_t>(arrangement.attr("width")) *
                            nb::cast<size_t>(arrangement.attr("height"))) {
        throw nb::value_error("the number of pixels is not that of the size");
    }
    std::memcpy(words.data(), rgba.c_str(), words.size() * 4);
    new (&pixels) Pixels(arrangement, std::move(words), true);
}

template <typename T>
nb::object made(const char* name, const T& box) {
    return nb::module_::import_("gxtext._values")
        .attr(name)(box.left, box.top, box.right, box.bottom);
}

nb::object charactersOf(const std::vector<char32_t>& characters) {
    return nb::steal(PyUnicode_FromKindAndData(PyUnicode_4BYTE_KIND, characters.data(),
                                               static_cast<Py_ssize_t>(characters.size())));
}

nb::object linesOf(const std::vector<gxtext::Line>& lines) {
    const nb::object line = nb::module_::import_("gxtext._values").attr("Line");
    nb::list list;
    for (const gxtext::Line& each : lines) {
        list.append(line(each.text, each.x, each.baseline, each.advance, made("Box", each.box),
                         made("Box", each.ink), each.rightToLeft));
    }
    return nb::tuple(list);
}

nb::object fontsOf(const std::vector<gxtext::UsedFont>& fonts) {
    const nb::object font = nb::module_::import_("gxtext._values").attr("Font");
    nb::list list;
    for (const gxtext::UsedFont& each : fonts) {
        const nb::object file = nb::steal(PyUnicode_DecodeFSDefaultAndSize(
            each.face.file.data(), static_cast<Py_ssize_t>(each.face.file.size())));
        list.append(font(file, each.face.index, textOf(each.face.family), each.face.variations,
                         charactersOf(each.characters)));
    }
    return nb::tuple(list);
}

}  // namespace

nb::object toPython(const gxtext::Arrangement& arrangement) {
    return nb::module_::import_("gxtext._values")
        .attr("Arrangement")(arrangement.width, arrangement.height,
                             made("Margins", arrangement.margins), linesOf(arrangement.lines),
                             fontsOf(arrangement.fonts), charactersOf(arrangement.missing));
}

nb::object toPython(gxtext::Picture&& picture) {
    nb::object arrangement = toPython(picture.arrangement());
    return nb::cast(new Pixels(std::move(arrangement), std::move(picture).takePixels(), false),
                    nb::rv_policy::take_ownership);
}

void bindPicture(nb::module_& module) {
    static const PyType_Slot slots[] = {
        {Py_bf_getbuffer, reinterpret_cast<void*>(getBuffer)},
        {0, nullptr},
    };
    const auto field = [](const char* name) {
        return [name](const Pixels& pixels) { return pixels.arrangement().attr(name); };
    };
    const char* const compressed =
        "(self, compression: typing.Literal['fast', 'default', 'small'] = 'default') -> bytes";
    const std::string toPng = std::string("def to_png") + compressed;
    const std::string toWebp = std::string("def to_webp") + compressed;
    nb::class_<Pixels>(module, "Picture", nb::type_slots(slots), R"(A rendered text.

It is a read-only buffer of height x width x 4 bytes, red, green, blue, alpha (straight, 0 to 255):
numpy.asarray(picture), memoryview(picture) and to_pil() look at the picture's own memory, without a copy.
Notebooks show it.)")
        .def(
            "to_png",
            [](Pixels& pixels, std::string_view compression) {
                return bytesOf(pixels.file(gxtext::PictureFormat::kPng, compression));
            },
            nb::arg("compression") = "default", nb::sig(toPng.c_str()),
            R"(The bytes of a PNG file: RGBA, 8 bits each, as the gxtext program writes it.

"fast" takes less time, "small" much more. Raises ValueError for another name.)")
        .def(
            "to_webp",
            [](Pixels& pixels, std::string_view compression) {
                return bytesOf(pixels.file(gxtext::PictureFormat::kWebp, compression));
            },
            nb::arg("compression") = "default", nb::sig(toWebp.c_str()),
            R"(The bytes of a lossless WebP file, as the gxtext program writes it.

Raises ValueError for another name of a compression, PictureError beyond 16,383 pixels a side.)")
        .def(
            "save", &save, nb::arg("file"), nb::arg("compression") = "default",
            nb::sig("def save(self, file: str | os.PathLike[str], compression: "
                    "typing.Literal['fast', 'default', 'small'] = 'default') -> None"),
            R"(Writes a PNG or, by its name, a lossless WebP file, which is the old or the new one whole
whatever happens in between.

Raises FileError when it cannot be written, ValueError for a name that ends in neither .png nor .webp.)")
        .def("to_pil", &toPil, nb::sig("def to_pil(self) -> PIL.Image.Image"),
             "The picture for Pillow, mode RGBA, without a copy of the pixels; needs the package "
             "pillow.")
        .def("_repr_png_",
             [](Pixels& pixels) {
                 return bytesOf(pixels.file(gxtext::PictureFormat::kPng, "default"));
             })
        .def("__getstate__", &getState)
        .def("__setstate__", &setState)
        .def("__repr__",
             [](const nb::object& self) {
                 return nb::str("<gxtext.Picture {} x {}>")
                     .format(self.attr("width"), self.attr("height"));
             })
        .def(
            "__buffer__",
            [](const nb::object& self, int) {
                return nb::steal(PyMemoryView_FromObject(self.ptr()));
            },
            nb::arg("flags"), nb::sig("def __buffer__(self, flags: int, /) -> memoryview"))
        .def_prop_ro("width", field("width"), nb::sig("def width(self) -> int"), "Pixels.")
        .def_prop_ro("height", field("height"), nb::sig("def height(self) -> int"), "Pixels.")
        .def_prop_ro("size", field("size"), nb::sig("def size(self) -> tuple[int, int]"),
                     "Width and height in pixels.")
        .def_prop_ro("margins", field("margins"),
                     nb::sig("def margins(self) -> gxtext._values.Margins"),
                     "How far the effects reach beyond the text's own box, in pixels per side.")
        .def_prop_ro("lines", field("lines"),
                     nb::sig("def lines(self) -> tuple[gxtext._values.Line, ...]"),
                     "Where each line lies in the picture.")
        .def_prop_ro("fonts", field("fonts"),
                     nb::sig("def fonts(self) -> tuple[gxtext._values.Font, ...]"),
                     "What the text is drawn with: the style's own font first, then fallbacks.")
        .def_prop_ro("missing", field("missing"), nb::sig("def missing(self) -> str"),
                     "Characters that no font has, each once; empty boxes stand for them.")
        .def_prop_ro("arrangement", &Pixels::arrangement,
                     nb::sig("def arrangement(self) -> gxtext._values.Arrangement"),
                     "All of these together.");
}

}  // namespace gxpython
