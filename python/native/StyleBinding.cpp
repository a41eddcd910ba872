#include <nanobind/operators.h>
#include <nanobind/stl/filesystem.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/string_view.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "Bindings.h"
#include "scene/SceneError.h"
#include "style/LayerStyle.h"
#include "style/Style.h"

namespace gxpython {

namespace {

using gxtext::Style;

std::string_view viewOf(const nb::bytes& bytes) {
    return {bytes.c_str(), bytes.size()};
}

Style fromFile(const std::filesystem::path& path) {
    try {
        return Style::fromFile(path);
    } catch (const gxtext::StyleError&) {
        throw;
    } catch (const gxtext::Error& error) {
        const std::string file = path.string();
        std::string reason = error.what();
        if (reason.starts_with(file + ": ")) reason.erase(0, file.size() + 2);
        throw gxtext::FileError(file, reason);
    }
}

// Each setting in turn: a path and the JSON of its value.
Style withAll(const Style& style, const std::vector<std::pair<std::string, std::string>>& values) {
    Style changed = style;
    for (const auto& [path, value] : values) changed = changed.with(path, value);
    return changed;
}

using Losses = std::vector<std::tuple<std::string, std::string, std::string>>;

std::pair<Style, Losses> importEffects(const nb::bytes& json, const std::string& source) {
    gxtext::ImportedStyle imported = gxtext::importLayerStyle(viewOf(json), source);
    Losses losses;
    for (gxtext::ImportLoss& loss : imported.losses) {
        losses.emplace_back(std::move(loss.path), std::string(lossName(loss.kind)),
                            std::move(loss.reason));
    }
    return {std::move(imported.style), std::move(losses)};
}

}  // namespace

void bindStyle(nb::module_& module) {
    nb::class_<Style>(module, "Style", "A style as the library holds it; immutable.")
        .def_static(
            "from_json",
            [](const nb::bytes& json, const std::filesystem::path& source) {
                return Style::fromJson(viewOf(json), source);
            },
            nb::arg("json"), nb::arg("source"))
        .def_static("from_file", &fromFile, nb::arg("file"))
        .def("to_json", &Style::toJson)
        .def("scaled", &Style::scaled, nb::arg("factor"))
        .def("with_values", &withAll, nb::arg("values"))
        .def_prop_ro("source", [](const Style& style) { return style.source; })
        .def(nb::self == nb::self, nb::sig("def __eq__(self, other: object, /) -> bool"));
    module.def("import_layer_style", &importEffects, nb::arg("json"), nb::arg("source"));
}

}  // namespace gxpython
