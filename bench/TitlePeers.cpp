#include "TitlePeers.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "PeerProcess.h"
#include "raster/kernels/BlendRows.h"
#include "scene/Picture.h"
#include "scene/SceneError.h"

namespace gxbench {

void straighten(Pixels& pixels) {
    static_assert(sizeof(GxFontEffect::kernels::Rgba) == sizeof(uint32_t));
    constexpr uint32_t kOpaque = 255;
    GxFontEffect::kernels::fadeAndUnpremultiplyRow(
        reinterpret_cast<GxFontEffect::kernels::Rgba*>(pixels.data()), pixels.size(), kOpaque);
}

namespace {

// Times pictures without what comes before each.
double secondsApart(const LinkedPainter& painter) {
    using Clock = std::chrono::steady_clock;
    constexpr int kPictures = 4;
    Clock::duration taken{};
    for (int i = 0; i < kPictures; ++i) {
        painter.forget();
        const auto start = Clock::now();
        painter.draw();
        taken += Clock::now() - start;
    }
    return std::chrono::duration<double>(taken).count() / kPictures;
}

TitlePeer linkedPeer(LinkedPainter painter, const TitlePicture& picture) {
    if (!painter.draw) return {{painter.name, {}, "not built in"}};
    const bool hasInk = [pixels = painter.draw()] {
        return std::any_of(pixels.begin(), pixels.end(), [](uint32_t p) { return p != 0; });
    }();
    if (!hasInk) return {{painter.name, {}, "drew nothing"}};
    Run run = painter.draw;
    if (painter.forget) run = [painter] { return secondsApart(painter); };
    const auto save = [painter, width = picture.width,
                       height = picture.height](const std::string& file) {
        gxtext::Arrangement arrangement;
        arrangement.width = width;
        arrangement.height = height;
        try {
            gxtext::Picture(arrangement, painter.draw()).writePng(file);
        } catch (const gxtext::Error&) {
            return false;
        }
        return true;
    };
    return {
        {painter.name, std::move(run), painter.note, 0, painter.isPartial}, Demand::kAlways, save};
}

TitlePeer processTitle(const std::string& name, const std::vector<std::string>& command,
                       const std::string& job, Demand demand = Demand::kAlways) {
    return {processPeer(name, command, job), demand,
            [command](const std::string& file) { return PeerProcess::of(command)->save(file); }};
}

}  // namespace

std::vector<TitlePeer> titlePeers(const TitlePicture& picture) {
    const std::string job = picture.job();
    const std::string python = peerFolder() + "/python/bin/python";
    const std::vector<std::string> canvas = {GXBENCH_NODE, peerProgram("canvas_titles.js"),
                                             peerFolder() + "/node/node_modules"};
    std::vector<std::string> keptCanvas = canvas;
    keptCanvas.emplace_back("kept");
    return {
        processTitle("Skia by Clang", canvas, job),
        processTitle("Skia by Clang, kept", keptCanvas, job, Demand::kNever),
        processTitle("Skia", {python, peerProgram("skia_titles.py")}, job, Demand::kWithEffects),
        processTitle("resvg", {peerFolder() + "/cargo/bin/resvg-titles"}, job),
        processTitle("Pillow", {python, peerProgram("pillow_titles.py")}, job),
        linkedPeer(assPainter(picture), picture),
        linkedPeer(svgPainter(picture), picture),
        linkedPeer(cairoPainter(picture), picture)};
}

}  // namespace gxbench
