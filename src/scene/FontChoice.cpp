#include "scene/FontChoice.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "scene/FaceFile.h"
#include "scene/SceneError.h"
#include "style/FieldTable.h"
#include "style/TextSettings.h"

namespace gxtext {

namespace {

namespace fs = std::filesystem;

constexpr char32_t kEmojiSelector = 0xFE0F;
constexpr const char* kEmojiLocale = "und-Zsye";
// Weights from here on need no bolder strokes.
constexpr int kSemiBold = 600;

constexpr float kBoldWeight = 700;
constexpr float kRegularWeight = 400;

// The face as it is drawn. A variable one is set as the request says, as far as it goes; where that
// names no weight, one that stands for a family, and one that is to be bold, has the weight that
// is asked for.
FontFace instanceOf(const FaceInfo& info, const FontRequest& request, bool isFile) {
    FontFace face = info.face;
    const auto settings = parseFontVariations(request.variations);
    for (const FontAxis& axis : info.axes) {
        std::optional<float> value;
        for (const AxisSetting& setting : settings.value_or(std::vector<AxisSetting>())) {
            if (setting.tag == axis.tag) value = setting.value;
        }
        const bool isWeight = axis.tag == "wght";
        if (!value && isWeight && (request.bold || !isFile)) {
            value = request.bold ? kBoldWeight : kRegularWeight;
        }
        if (!value) continue;
        *value = std::max(axis.min, std::min(*value, axis.max));
        if (isWeight) face.weight = static_cast<int>(std::clamp(*value, 1.0f, 1000.0f));
        face.variations.append(face.variations.empty() ? "'" : ", '").append(axis.tag);
        face.variations.append("' ").append(shortText(static_cast<double>(*value)));
    }
    return face;
}

bool namesWeight(const FontRequest& request) {
    const auto settings = parseFontVariations(request.variations);
    return settings && std::any_of(settings->begin(), settings->end(),
                                   [](const AxisSetting& s) { return s.tag == "wght"; });
}

FaceInfoPtr openFile(const FaceReader& readFile, const fs::path& file, int index) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) throw FontError(file.string(), "no such font file");
    if (!fs::is_regular_file(status)) throw FontError(file.string(), "not a regular file");
    FaceInfoPtr face = readFile(file, static_cast<size_t>(index));
    if (face) return face;
    const size_t count = countFaces(file);
    if (static_cast<size_t>(index) >= count && count > 0) {
        throw FontError(file.string(), "no font " + std::to_string(index) + " in it",
                        "0-" + std::to_string(count - 1));
    }
    throw FontError(file.string(), "not a TrueType or OpenType font");
}

UScriptCode scriptOf(char32_t c) {
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(c), &status);
    return U_SUCCESS(status) ? script : USCRIPT_UNKNOWN;
}

// Han characters are shared by several languages: the style's locale decides, then the other
// scripts of the text.
std::string languageOfHan(const std::string& locale, const std::vector<char32_t>& text) {
    for (const char* tag : {"ja", "ko", "zh-Hant", "zh-TW", "zh-HK", "zh"}) {
        if (locale.find(tag) == std::string::npos) continue;
        if (std::string_view(tag) == "zh") return "zh-cn";
        return tag[0] == 'z' ? "zh-tw" : tag;
    }
    for (const char32_t c : text) {
        const UScriptCode script = scriptOf(c);
        if (script == USCRIPT_HIRAGANA || script == USCRIPT_KATAKANA) return "ja";
        if (script == USCRIPT_HANGUL) return "ko";
        if (script == USCRIPT_BOPOMOFO) return "zh-tw";
    }
    return "zh-cn";
}

// The locale list that the system's font configuration would give a family for this script.
std::string localesOf(UScriptCode script, const std::string& hanLanguage) {
    switch (script) {
        case USCRIPT_COMMON:
        case USCRIPT_INHERITED:
        case USCRIPT_UNKNOWN:
        case USCRIPT_LATIN:
            return {};
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
            return "ja";
        case USCRIPT_HANGUL:
            return "ko";
        case USCRIPT_HAN:
            if (hanLanguage == "zh-cn") return "zh-Hans";
            return hanLanguage == "zh-tw" ? "zh-Hant" : hanLanguage;
        default:
            return std::string("und-") + uscript_getShortName(script);
    }
}

// What to ask a catalogue for; empty where the script says enough.
std::string languageOf(UScriptCode script, const std::string& hanLanguage) {
    switch (script) {
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
            return "ja";
        case USCRIPT_HANGUL:
            return "ko";
        case USCRIPT_BOPOMOFO:
            return "zh-tw";
        case USCRIPT_HAN:
            return hanLanguage;
        default:
            return {};
    }
}

// Collects fallbacks for the code points that the first face lacks.
class FallbackFinder {
public:
    FallbackFinder(const FontCatalog& catalog, const FontRequest& request,
                   const std::vector<char32_t>& text, const FaceInfo& first)
        : catalog_(catalog),
          request_(request),
          text_(text),
          hanLanguage_(languageOfHan(request.locale, text)) {
        for (const char32_t c : text) {
            if (needsGlyph(c) && !first.covers(c)) missing_.insert(c);
        }
    }

    std::vector<FontFace> run() {
        const bool emojiFirst = addEmoji();
        while (!missing_.empty()) {
            const char32_t c = *missing_.begin();
            if (!add(c, missingLike(c)) && !add(c, {c})) giveUp(c);
        }
        if (!emojiFirst && faces_.size() > 1) {
            std::rotate(faces_.begin(), faces_.begin() + 1, faces_.end());
        }
        return std::move(faces_);
    }

private:
    // Characters that are pictures by default, and those that a selector turns into pictures, go to
    // the emoji font. Returns whether it may stand before the others: it also has digits, which it
    // must not take from a text font.
    bool addEmoji() {
        std::set<char32_t> emoji;
        for (size_t i = 0; i < text_.size(); i++) {
            const bool selected = i + 1 < text_.size() && text_[i + 1] == kEmojiSelector;
            const bool byDefault =
                u_hasBinaryProperty(static_cast<UChar32>(text_[i]), UCHAR_EMOJI_PRESENTATION);
            if (selected || (byDefault && missing_.count(text_[i]))) emoji.insert(text_[i]);
        }
        if (emoji.empty()) return true;
        const FaceInfoPtr match =
            catalog_.nearest({.family = "emoji", .color = true, .language = "und-zsye"});
        if (!match || !match->color) return true;
        bool first = true;
        std::erase_if(missing_, [&](char32_t c) {
            if (!match->covers(c)) return false;
            if (emoji.count(c)) return true;
            first = false;
            return false;
        });
        faces_.push_back(match->face);
        faces_.back().locales = kEmojiLocale;
        return first;
    }

    // What is missing of the script of c.
    std::vector<char32_t> missingLike(char32_t c) const {
        std::vector<char32_t> same;
        for (const char32_t other : missing_) {
            if (scriptOf(other) == scriptOf(c)) same.push_back(other);
        }
        return same;
    }

    // Adds a face for c that covers as much as possible of `characters`; false when there is none.
    bool add(char32_t c, std::vector<char32_t> characters) {
        const UScriptCode script = scriptOf(c);
        const FaceInfoPtr match = catalog_.nearest({.family = "sans-serif",
                                                    .bold = request_.bold,
                                                    .italic = request_.italic,
                                                    .language = languageOf(script, hanLanguage_),
                                                    .characters = std::move(characters)});
        if (!match || !match->covers(c)) return false;
        std::erase_if(missing_, [&](char32_t m) { return match->covers(m); });
        faces_.push_back(instanceOf(*match, request_, false));
        faces_.back().locales = localesOf(script, hanLanguage_);
        return true;
    }

    // No font has c. Asking in vain takes as long as finding one: after the first such character
    // only what some font has is asked for.
    void giveUp(char32_t c) {
        missing_.erase(c);
        if (std::exchange(onlyCoveredAreMissing_, true)) return;
        std::erase_if(missing_, [this](char32_t m) { return !catalog_.covers(m); });
    }

    const FontCatalog& catalog_;
    const FontRequest& request_;
    const std::vector<char32_t>& text_;
    const std::string hanLanguage_;
    std::set<char32_t> missing_;
    bool onlyCoveredAreMissing_ = false;
    std::vector<FontFace> faces_;
};

FaceInfoPtr findFirst(const FontCatalog& catalog, const FontRequest& request) {
    if (request.index != 0) {
        throw FontError(
            "font index " + std::to_string(request.index),
            "needs a font file; " +
                (request.font.empty() ? "none is named" : "\"" + request.font + "\" is a family"));
    }
    FaceInfoPtr match =
        catalog.nearest({.family = request.font.empty() ? "sans-serif" : request.font,
                         .bold = request.bold,
                         .italic = request.italic,
                         .color = equalNames(request.font, "emoji")});
    const std::string place = request.font.empty() ? "the font" : "font \"" + request.font + "\"";
    if (!match) throw FontError(place, "no font " + catalog.whereabouts());
    const bool anyFamily = request.font.empty() || isGenericFamily(request.font);
    if (!anyFamily && !match->isOfFamily(request.font)) {
        throw FontError(place, "no such family " + catalog.whereabouts() + "; the nearest is \"" +
                                   match->face.family + "\"");
    }
    return match;
}

}  // namespace

std::optional<fs::path> asFontFile(const std::string& font, const fs::path& folder) {
    const fs::path path = (folder / font).lexically_normal();
    const std::string extension = path.extension().string();
    const bool looksLikeFile = font.find('/') != std::string::npos ||
                               equalNames(extension, ".ttf") || equalNames(extension, ".otf") ||
                               equalNames(extension, ".ttc") || equalNames(extension, ".otc");
    std::error_code ignored;
    if (looksLikeFile || fs::is_regular_file(path, ignored)) return path;
    return std::nullopt;
}

bool needsGlyph(char32_t codePoint) {
    const auto c = static_cast<UChar32>(codePoint);
    const int8_t type = u_charType(c);
    return type != U_CONTROL_CHAR && type != U_LINE_SEPARATOR && type != U_PARAGRAPH_SEPARATOR &&
           !u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

FontChoice chooseFonts(const FontCatalog& catalog, const FaceReader& readFile,
                       const FontRequest& request, const std::vector<char32_t>& text) {
    FontChoice choice;
    const std::optional<fs::path> file = asFontFile(request.font, request.base);
    const FaceInfoPtr first =
        file ? openFile(readFile, *file, request.index) : findFirst(catalog, request);
    // A text object's own font file is face 0 and counts as upright whatever it is, so it would be
    // slanted twice.
    const FontFace& instance =
        choice.faces.emplace_back(instanceOf(*first, request, file.has_value()));
    const bool hasAxes = !instance.variations.empty();
    choice.userFile =
        file && request.index == 0 && !hasAxes && !(request.italic && first->face.italic);
    // A weight that is asked for by number is what it is.
    const bool isSet = hasAxes && namesWeight(request);
    choice.fakeBold = request.bold && instance.weight < kSemiBold && !isSet;
    const std::vector<FontFace> fallbacks = FallbackFinder(catalog, request, text, *first).run();
    choice.faces.insert(choice.faces.end(), fallbacks.begin(), fallbacks.end());
    return choice;
}

}  // namespace gxtext
