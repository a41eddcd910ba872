// The libraries that draw the measured titles.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Bench.h"
#include "TitlePicture.h"

namespace gxbench {

// Words 0xAARRGGBB, straight, rows packed.
using Pixels = std::vector<uint32_t>;

// Premultiplied words of a finished picture into straight ones, with our own kernel: what all need
// that paint premultiplied, in its best form.
void straighten(Pixels& pixels);

// Where ours is to be ahead of a painter.
enum class Demand {
    kAlways,
    kWithEffects,  // of one that keeps the masks of glyphs which were shaped beforehand
    kNever,        // of one that paints onto a kept surface
};

struct TitlePeer {
    Peer peer;
    Demand demand = Demand::kAlways;
    // Writes its picture as a PNG; false where it cannot.
    std::function<bool(const std::string& file)> save{};
};

// All of them with their fonts open, those that are missing included.
std::vector<TitlePeer> titlePeers(const TitlePicture& picture);

// A painter that is linked in: `name`, what it does otherwise, and a new picture for each call.
struct LinkedPainter {
    std::string name;
    std::string note;
    std::function<Pixels()> draw;            // empty: not built in
    std::function<void()> forget = nullptr;  // before each picture, not timed; may be empty
    bool isPartial = false;                  // draws less than is asked
};

LinkedPainter cairoPainter(const TitlePicture& picture);
LinkedPainter svgPainter(const TitlePicture& picture);
LinkedPainter assPainter(const TitlePicture& picture);

}  // namespace gxbench
