#include <nanobind/stl/filesystem.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/vector.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Bindings.h"
#include "scene/Renderer.h"

namespace gxpython {

namespace {

using gxtext::FontSource;
using gxtext::Renderer;
using gxtext::Style;

// Renderers for as many threads as ask at the same time, on the fonts of one source.
class RendererPool {
public:
    explicit RendererPool(FontSource fonts) : fonts_(std::move(fonts)) {}

    // One that nobody else has as long as this lives.
    class Lease {
    public:
        explicit Lease(RendererPool& pool) : pool_(pool), renderer_(pool.take()) {}
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        ~Lease() { pool_.giveBack(std::move(renderer_)); }
        Renderer& operator*() { return *renderer_; }

    private:
        RendererPool& pool_;
        std::unique_ptr<Renderer> renderer_;
    };

    std::vector<std::string> families() const { return fonts_.families(); }

private:
    std::unique_ptr<Renderer> take() {
        {
            const std::lock_guard guard(lock_);
            if (!idle_.empty()) {
                std::unique_ptr<Renderer> renderer = std::move(idle_.back());
                idle_.pop_back();
                return renderer;
            }
            // So that giving back needs no memory.
            idle_.reserve(++made_);
        }
        return std::make_unique<Renderer>(fonts_);
    }

    void giveBack(std::unique_ptr<Renderer> renderer) {
        const std::lock_guard guard(lock_);
        idle_.push_back(std::move(renderer));
    }

    FontSource fonts_;
    std::mutex lock_;
    std::vector<std::unique_ptr<Renderer>> idle_;
    size_t made_ = 0;
};

// What the call makes of a renderer and the text, without the interpreter's lock.
template <typename Call>
auto called(RendererPool& pool, const std::optional<nb::bytes>& text, Call call) {
    std::optional<std::string_view> utf8;
    if (text) utf8 = std::string_view(text->c_str(), text->size());
    const LongWork work;
    RendererPool::Lease renderer(pool);
    return call(*renderer, utf8);
}

nb::object render(RendererPool& pool, const Style& style, const std::optional<nb::bytes>& text) {
    return toPython(called(pool, text, [&style](Renderer& renderer, const auto& utf8) {
        return utf8 ? renderer.render(style, *utf8) : renderer.render(style);
    }));
}

nb::object arrange(RendererPool& pool, const Style& style, const std::optional<nb::bytes>& text) {
    return toPython(called(pool, text, [&style](Renderer& renderer, const auto& utf8) {
        return utf8 ? renderer.arrange(style, *utf8) : renderer.arrange(style);
    }));
}

template <typename Open>
RendererPool* opened(Open open) {
    const LongWork work;
    return new RendererPool(open());
}

}  // namespace

void bindRenderer(nb::module_& module) {
    nb::class_<RendererPool>(module, "Renderer", "Renderers on one source of fonts.")
        .def_static("installed", [] { return opened([] { return FontSource::installed(); }); })
        .def_static(
            "folder",
            [](const std::filesystem::path& folder) {
                return opened([&folder] { return FontSource::folder(folder); });
            },
            nb::arg("folder"))
        .def_static(
            "files",
            [](const std::vector<std::filesystem::path>& files) {
                return opened([&files] { return FontSource::files(files); });
            },
            nb::arg("files"))
        .def("render", &render, nb::arg("style"), nb::arg("text").none(),
             nb::sig("def render(self, style: Style, text: bytes | None) -> Picture"))
        .def("arrange", &arrange, nb::arg("style"), nb::arg("text").none(),
             nb::sig("def arrange(self, style: Style, text: bytes | None) -> "
                     "gxtext._values.Arrangement"))
        .def("families", [](const RendererPool& pool) {
            const LongWork work;
            return pool.families();
        });
}

}  // namespace gxpython
