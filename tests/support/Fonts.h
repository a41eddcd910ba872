// The fonts that tests draw with, from the distribution's packages.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "SkStream.h"
#include "SkTypeface.h"
#include "hwui/MinikinSkia.h"
#include "minikin/Font.h"
#include "minikin/FontFamily.h"

namespace gxtest {

// Paths below the fonts' folder.
constexpr const char* kNotoSans = "truetype/noto/NotoSans-Regular.ttf";
constexpr const char* kNotoSansBold = "truetype/noto/NotoSans-Bold.ttf";
constexpr const char* kNotoSansItalic = "truetype/noto/NotoSans-Italic.ttf";
constexpr const char* kNotoArabic = "truetype/noto/NotoNaskhArabic-Regular.ttf";
constexpr const char* kNotoDevanagari = "truetype/noto/NotoSansDevanagari-Regular.ttf";
constexpr const char* kNotoHebrew = "truetype/noto/NotoSansHebrew-Regular.ttf";
constexpr const char* kNotoThai = "truetype/noto/NotoSansThai-Regular.ttf";
constexpr const char* kNotoCjk = "opentype/noto/NotoSansCJK-Regular.ttc";
constexpr const char* kNotoColorEmoji = "truetype/noto/NotoColorEmoji.ttf";
constexpr const char* kDejaVuSans = "truetype/dejavu/DejaVuSans.ttf";

inline std::string fontPath(const std::string& name) {
    return (std::filesystem::path(GXTEXT_TEST_FONT_DIR) / name).string();
}

// Bytes of a font file, read once and kept to the end of the program. Safe from any thread.
inline const std::vector<char>& fontBytes(const std::string& name) {
    static std::mutex lock;
    static std::map<std::string, std::vector<char>> files;
    const std::lock_guard<std::mutex> guard(lock);
    const auto known = files.find(name);
    if (known != files.end()) return known->second;
    std::ifstream stream(fontPath(name), std::ios::binary);
    EXPECT_TRUE(stream) << "missing font " << fontPath(name);
    std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    return files.emplace(name, std::move(bytes)).first->second;
}

// A font over borrowed bytes; null when they are no font.
inline std::shared_ptr<minikin::MinikinFont> makeFont(const void* data, size_t size, int index = 0,
                                                      const std::string& path = "") {
    sk_sp<SkTypeface> typeface =
        SkTypeface::MakeFromStream(std::make_unique<SkMemoryStream>(data, size), index);
    if (!typeface) return nullptr;
    return std::make_shared<android::MinikinFontSkia>(std::move(typeface), data, size, path, index,
                                                      std::vector<minikin::FontVariation>());
}

// A font of the packages, loaded anew at each call.
inline std::shared_ptr<minikin::MinikinFont> loadFont(const std::string& name, int index = 0) {
    const std::vector<char>& bytes = fontBytes(name);
    return makeFont(bytes.data(), bytes.size(), index, fontPath(name));
}

// A family of one font in the style that the font file declares.
inline std::shared_ptr<minikin::FontFamily> makeFamily(
    const std::shared_ptr<minikin::MinikinFont>& font, uint32_t localeListId = 0,
    minikin::FamilyVariant variant = minikin::FamilyVariant::DEFAULT, bool customFallback = false) {
    std::vector<minikin::Font> fonts;
    fonts.push_back(minikin::Font::Builder(font).build());
    return std::make_shared<minikin::FontFamily>(localeListId, variant, std::move(fonts),
                                                 customFallback);
}

}  // namespace gxtest
