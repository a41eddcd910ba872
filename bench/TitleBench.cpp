// Rows of whole pictures: from a text to a new picture with straight alpha, fonts and contexts
// open, by this library and by all that draw the same or the nearest they can.
#include "TitleBench.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "TitlePeers.h"
#include "scene/FontSource.h"
#include "scene/Renderer.h"

namespace gxbench {

namespace {

struct Subject {
    const char* name;
    const char* style;  // of bench/pictures
    const char* font;
    int fontIndex;
    float scale;
};

constexpr Subject kSubjects[] = {
    {"title: stroke, shadow, glow", "title", GXBENCH_FONT, 0, 1},
    {"title: eight effects", "eight", GXBENCH_FONT, 0, 1},
    {"title: fill only", "fill", GXBENCH_FONT, 0, 1},
    {"title: ten lines of 32 px, shadow", "paragraph", GXBENCH_FONT, 0, 1},
#ifdef GXBENCH_ARABIC_FONT
    {"title: Arabic, stroke", "arabic", GXBENCH_ARABIC_FONT, 0, 1},
#endif
#ifdef GXBENCH_CJK_FONT
    {"title: CJK, inner glow, gradient", "cjk", GXBENCH_CJK_FONT, 2, 1},
#endif
    {"title x 4: stroke, shadow, glow", "title", GXBENCH_FONT, 0, 4},
    {"title x 4: fill only", "fill", GXBENCH_FONT, 0, 4},
    {"title: fill only, 3.2 megapixels", "sparse", GXBENCH_FONT, 0, 1},
};

TitlePicture pictureOf(const Subject& subject) {
    return titlePicture(subject.style, subject.font, subject.fontIndex, subject.scale);
}

gxtext::Renderer rendererOf(const TitlePicture& picture) {
    return gxtext::Renderer(gxtext::FontSource::files({picture.fontFile}));
}

Contenders contendersOf(const Subject& subject) {
    const TitlePicture picture = pictureOf(subject);
    Contenders contenders;
    contenders.ours = ownTitleRun(picture);
    for (TitlePeer& other : titlePeers(picture)) {
        const bool demanded = other.demand == Demand::kAlways ||
                              (other.demand == Demand::kWithEffects && !picture.layers.empty());
        other.peer.target = demanded ? 1 : 0;
        contenders.peers.push_back(std::move(other.peer));
    }
    return contenders;
}

std::string fileName(const std::string& text) {
    std::string name = text;
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '-');
    return name;
}

}  // namespace

Run ownTitleRun(const TitlePicture& picture) {
    const auto renderer = std::make_shared<gxtext::Renderer>(rendererOf(picture));
    const gxtext::Style style = picture.style;
    const std::vector<uint32_t> pixels = renderer->render(style).pixels();
    if (std::all_of(pixels.begin(), pixels.end(), [](uint32_t pixel) { return pixel == 0; })) {
        std::fprintf(stderr, "%s: drew nothing\n", style.text->c_str());
        return {};
    }
    return [=] { renderer->render(style); };
}

void addTitleRows() {
    for (const Subject& subject : kSubjects) {
        addRow({subject.name, "", {}, 0, [&subject] { return contendersOf(subject); }});
    }
}

void savePictures(const std::string& filter) {
    const std::filesystem::path folder = "out/bench-pictures";
    std::filesystem::create_directories(folder);
    for (const Subject& subject : kSubjects) {
        if (std::string(subject.name).find(filter) == std::string::npos) continue;
        const TitlePicture picture = pictureOf(subject);
        const auto fileOf = [&](const std::string& who) {
            return (folder / (fileName(subject.name) + "-" + fileName(who) + ".png")).string();
        };
        rendererOf(picture).render(picture.style).writePng(fileOf("ours"));
        for (const TitlePeer& other : titlePeers(picture)) {
            const bool saved = other.peer.run && other.save(fileOf(other.peer.name));
            std::printf("%s, %s: %s\n", subject.name, other.peer.name.c_str(),
                        saved ? "saved" : other.peer.note.c_str());
        }
    }
}

}  // namespace gxbench
