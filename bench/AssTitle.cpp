// The measured titles by libass: its coverage bitmaps, composited by pixman into a new picture,
// straight words.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "TitlePeers.h"

#if defined(GXBENCH_ASS) && defined(GXBENCH_PIXMAN)
#include <ass/ass.h>
#include <hb-ot.h>
#include <hb.h>
#include <pixman.h>
#endif

namespace gxbench {

#if defined(GXBENCH_ASS) && defined(GXBENCH_PIXMAN)

namespace {

using Kind = TitleLayer::Kind;

// Where the format has the top of a line and how large it is: by the metrics of Windows.
struct Extents {
    double ascent = 0;  // em
    double descent = 0;
};

Extents windowsExtents(const std::string& fontFile, int index) {
    hb_blob_t* blob = hb_blob_create_from_file(fontFile.c_str());
    hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(index));
    hb_blob_t* table = hb_face_reference_table(face, HB_TAG('O', 'S', '/', '2'));
    unsigned length = 0;
    const char* bytes = hb_blob_get_data(table, &length);
    const auto at = [&](unsigned offset) {
        if (offset + 2 > length) return 0;
        return static_cast<unsigned char>(bytes[offset]) << 8 |
               static_cast<unsigned char>(bytes[offset + 1]);
    };
    constexpr unsigned kWinAscent = 74, kWinDescent = 76;
    const double upem = hb_face_get_upem(face);
    const Extents extents{at(kWinAscent) / upem, at(kWinDescent) / upem};
    hb_blob_destroy(table);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
    return extents;
}

// An override of the colour numbered `which`, whose alpha is how transparent it is.
std::string colorTag(char which, const TitlePaint& paint) {
    const auto byte = [](double value) { return static_cast<unsigned>(std::lround(255 * value)); };
    char text[48];
    std::snprintf(text, sizeof(text), "\\%cc&H%02X%02X%02X&\\%ca&H%02X&", which, byte(paint.blue),
                  byte(paint.green), byte(paint.red), which, byte(1 - paint.alpha));
    return text;
}

std::string tag(const char* name, double value) {
    char text[48];
    std::snprintf(text, sizeof(text), "\\%s%.3f", name, value);
    return text;
}

// A blur is given by what a Gaussian of this deviation comes to.
double blurOf(double deviation) {
    return deviation * std::sqrt(std::log(256.0)) / 2;
}

// What stands for a layer; nothing for what the format cannot say.
std::string overridesOf(const TitleLayer& layer) {
    switch (layer.kind) {
        case Kind::kShadow:
            return colorTag('1', layer.paint) + "\\bord0" + tag("blur", blurOf(layer.deviation));
        case Kind::kGlow:
            return colorTag('1', layer.paint) + colorTag('3', layer.paint) +
                   tag("bord", layer.width) + tag("blur", blurOf(layer.deviation));
        case Kind::kStroke:
            return colorTag('1', layer.paint) + colorTag('3', layer.paint) +
                   tag("bord", layer.width);
        default:
            return {};
    }
}

// The colour half-way of a ramp.
TitlePaint middleOf(const TitleLayer& ramp) {
    const TitlePaint &a = ramp.stops.front().paint, &b = ramp.stops.back().paint;
    return {(a.red + b.red) / 2, (a.green + b.green) / 2, (a.blue + b.blue) / 2, 1};
}

class Script {
public:
    explicit Script(const TitlePicture& picture)
        : picture_(picture), extents_(windowsExtents(picture.fontFile, picture.fontIndex)) {
        char head[512];
        std::snprintf(
            head, sizeof(head),
            "[Script Info]\nScriptType: v4.00+\nWrapStyle: 2\nPlayResX: %d\nPlayResY: %d\n"
            "ScaledBorderAndShadow: yes\n[V4+ Styles]\nFormat: Name, Fontname, Fontsize, "
            "Bold, BorderStyle, Outline, Shadow, Alignment\nStyle: Default,%s,%.4f,%d,1,0,"
            "0,7\n[Events]\nFormat: TitleLayer, Start, End, Style, Text\n",
            picture.width, picture.height, picture.family.c_str(),
            picture.size * (extents_.ascent + extents_.descent), picture.weight >= 600 ? -1 : 0);
        text_ = head;
        TitlePaint fill = picture.paint;
        for (const TitleLayer& layer : picture.layers) {
            const std::string overrides = overridesOf(layer);
            if (!overrides.empty()) addEvents(overrides, layer.shift);
            if (layer.kind == Kind::kLinear) fill = middleOf(layer);
        }
        addEvents(colorTag('1', fill) + "\\bord0", {});
    }

    const std::string& text() const { return text_; }

private:
    void addEvents(const std::string& overrides, Point shift) {
        for (const TitleLine& line : picture_.lines) {
            char at[64];
            std::snprintf(at, sizeof(at), "\\pos(%.3f,%.3f)", line.x + shift.x,
                          line.baseline + shift.y - picture_.size * extents_.ascent);
            text_ += "Dialogue: " + std::to_string(events_) + ",0:00:00.00,0:01:00.00,Default,{" +
                     at + overrides + "}" + line.text + "\n";
        }
        ++events_;
    }

    const TitlePicture& picture_;
    const Extents extents_;
    std::string text_;
    int events_ = 0;
};

class AssTitle {
public:
    explicit AssTitle(const TitlePicture& picture)
        : width_(picture.width), height_(picture.height), library_(ass_library_init()) {
        ass_set_message_cb(
            library_, [](int, const char*, va_list, void*) {}, nullptr);
        std::ifstream file(picture.fontFile, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        ass_add_font(library_, "title", bytes.data(), static_cast<int>(bytes.size()));
        renderer_ = ass_renderer_init(library_);
        ass_set_frame_size(renderer_, width_, height_);
        ass_set_hinting(renderer_, ASS_HINTING_NONE);
        ass_set_fonts(renderer_, nullptr, picture.family.c_str(), ASS_FONTPROVIDER_NONE, nullptr,
                      0);
        std::string text = Script(picture).text();
        track_ = ass_read_memory(library_, text.data(), text.size(), nullptr);
    }
    ~AssTitle() {
        ass_free_track(track_);
        ass_renderer_done(renderer_);
        ass_library_done(library_);
    }
    AssTitle(const AssTitle&) = delete;
    AssTitle& operator=(const AssTitle&) = delete;

    // Another size empties its caches, which hold the finished bitmaps.
    void forget() {
        ass_set_frame_size(renderer_, width_ + 1, height_);
        ass_set_frame_size(renderer_, width_, height_);
    }

    Pixels draw() {
        Pixels pixels(static_cast<size_t>(width_) * static_cast<size_t>(height_));
        pixman_image_t* target =
            pixman_image_create_bits(PIXMAN_a8r8g8b8, width_, height_, pixels.data(), 4 * width_);
        for (const ASS_Image* image = ass_render_frame(renderer_, track_, 1000, nullptr); image;
             image = image->next) {
            composite(*image, target);
        }
        pixman_image_unref(target);
        straighten(pixels);
        return pixels;
    }

private:
    // Only whole bitmaps are painted: their last row may be shorter than the stride.
    static void composite(const ASS_Image& image, pixman_image_t* target) {
        const auto channel = [&](int shift) { return image.color >> shift & 0xFF; };
        const uint32_t alpha = 255 - channel(0);
        const auto scaled = [&](uint32_t c) {
            return static_cast<uint16_t>(c * alpha * 257 / 255);
        };
        const pixman_color_t color{scaled(channel(24)), scaled(channel(16)), scaled(channel(8)),
                                   static_cast<uint16_t>(alpha * 257)};
        pixman_image_t* solid = pixman_image_create_solid_fill(&color);
        pixman_image_t* mask = pixman_image_create_bits(
            PIXMAN_a8, image.w, image.h, reinterpret_cast<uint32_t*>(image.bitmap), image.stride);
        pixman_image_composite32(PIXMAN_OP_OVER, solid, mask, target, 0, 0, 0, 0, image.dst_x,
                                 image.dst_y, image.w, image.h);
        pixman_image_unref(mask);
        pixman_image_unref(solid);
    }

    const int width_;
    const int height_;
    ASS_Library* library_;
    ASS_Renderer* renderer_ = nullptr;
    ASS_Track* track_ = nullptr;
};

// 0x01701000 is 0.17.1: digits, not binary numbers.
std::string versionName() {
    char digits[16];
    std::snprintf(digits, sizeof(digits), "%08x", static_cast<unsigned>(ass_library_version()));
    const auto number = [&](int from, int count) {
        return std::to_string(std::stoi(std::string(digits).substr(from, count)));
    };
    return "libass " + number(0, 1) + "." + number(1, 2) + "." + number(3, 2);
}

}  // namespace

LinkedPainter assPainter(const TitlePicture& picture) {
    const auto title = std::make_shared<AssTitle>(picture);
    bool hasMore = false;
    for (const TitleLayer& layer : picture.layers) hasMore |= isOverFill(layer.kind);
    return {versionName(),
            hasMore ? "caches flushed; no gradients, nothing inside" : "caches flushed",
            [title] { return title->draw(); }, [title] { title->forget(); }, hasMore};
}

#else

LinkedPainter assPainter(const TitlePicture& /*picture*/) {
    return {"libass", "", {}};
}

#endif

}  // namespace gxbench
