#include "Fonts.h"

#include <fcntl.h>
#include <fontconfig/fontconfig.h>

// After fontconfig.h, whose macros it uses.
#include <fontconfig/fcfreetype.h>
#include <strings.h>
#include <sys/stat.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <utility>

#include "ToolError.h"
#include "base/Descriptor.h"

namespace gxtool {

namespace {

struct Release {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcCharSet* set) const { FcCharSetDestroy(set); }
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using PatternPtr = std::unique_ptr<FcPattern, Release>;
using CharSetPtr = std::unique_ptr<FcCharSet, Release>;

constexpr char32_t kEmojiSelector = 0xFE0F;
constexpr const char* kEmojiLocale = "und-Zsye";

std::string stringOf(const FcPattern* pattern, const char* object) {
    FcChar8* value = nullptr;
    if (FcPatternGetString(pattern, object, 0, &value) != FcResultMatch) return {};
    return reinterpret_cast<const char*>(value);
}

int integerOf(const FcPattern* pattern, const char* object, int otherwise) {
    int value = otherwise;
    return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : otherwise;
}

bool flagOf(const FcPattern* pattern, const char* object) {
    FcBool value = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value == FcTrue;
}

// A face with what it covers.
struct Match {
    FontFace face;
    PatternPtr pattern;
    const FcCharSet* coverage = nullptr;  // owned by the pattern

    explicit operator bool() const { return coverage != nullptr; }
    bool covers(char32_t c) const { return FcCharSetHasChar(coverage, c) == FcTrue; }
};

// Null for a font that cannot be used. Owned by the pattern.
const FcCharSet* coverageOf(const FcPattern* pattern) {
    const std::string format = stringOf(pattern, FC_FONTFORMAT);
    // Shaping needs the tables of these two.
    if (format != "TrueType" && format != "CFF") return nullptr;
    FcCharSet* coverage = nullptr;
    const FcResult result = FcPatternGetCharSet(pattern, FC_CHARSET, 0, &coverage);
    return result == FcResultMatch ? coverage : nullptr;
}

CharSetPtr installedCharacters() {
    CharSetPtr all(FcCharSetCreate());
    for (const FcSetName name : {FcSetSystem, FcSetApplication}) {
        const FcFontSet* fonts = FcConfigGetFonts(nullptr, name);
        for (int i = 0; fonts && i < fonts->nfont; i++) {
            const FcCharSet* coverage = coverageOf(fonts->fonts[i]);
            if (coverage) FcCharSetMerge(all.get(), coverage, nullptr);
        }
    }
    return all;
}

Match describe(PatternPtr pattern) {
    Match match;
    const FcCharSet* coverage = coverageOf(pattern.get());
    if (!coverage) return match;
    match.face.file = stringOf(pattern.get(), FC_FILE);
    // The upper half numbers the named instances of a variable font.
    match.face.index = integerOf(pattern.get(), FC_INDEX, 0) & 0xFFFF;
    match.face.weight = FcWeightToOpenType(integerOf(pattern.get(), FC_WEIGHT, FC_WEIGHT_REGULAR));
    match.face.italic = integerOf(pattern.get(), FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
    match.face.family = stringOf(pattern.get(), FC_FAMILY);
    match.coverage = coverage;
    match.pattern = std::move(pattern);
    return match;
}

struct Wanted {
    std::string family;
    bool bold = false;
    bool italic = false;
    bool color = false;
    std::string language{};  // as fontconfig writes it; may be empty
    const FcCharSet* characters = nullptr;
};

// The installed face that fontconfig finds nearest; nothing when none is usable at all.
Match findInstalled(const Wanted& wanted) {
    const PatternPtr pattern(FcPatternCreate());
    const auto addString = [&](const char* object, const std::string& value) {
        FcPatternAddString(pattern.get(), object, reinterpret_cast<const FcChar8*>(value.c_str()));
    };
    addString(FC_FAMILY, wanted.family);
    if (!wanted.language.empty()) addString(FC_LANG, wanted.language);
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, wanted.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, wanted.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_COLOR, wanted.color);
    FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
    if (wanted.characters) FcPatternAddCharSet(pattern.get(), FC_CHARSET, wanted.characters);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    PatternPtr found(FcFontMatch(nullptr, pattern.get(), &result));
    return found ? describe(std::move(found)) : Match();
}

bool equalNames(const std::string& a, const std::string& b) {
    return strcasecmp(a.c_str(), b.c_str()) == 0;
}

bool isGenericName(const std::string& name) {
    constexpr std::array generic{"sans-serif", "serif", "monospace", "cursive",
                                 "fantasy",    "math",  "system-ui", "emoji"};
    return std::any_of(generic.begin(), generic.end(), [&](auto g) { return equalNames(name, g); });
}

bool hasFamilyName(const FcPattern* pattern, const std::string& name) {
    FcChar8* value = nullptr;
    for (int i = 0; FcPatternGetString(pattern, FC_FAMILY, i, &value) == FcResultMatch; i++) {
        if (equalNames(name, reinterpret_cast<const char*>(value))) return true;
    }
    return false;
}

// A font file that FreeType reads piece by piece: it would map it by itself, and a file that is cut
// short while mapped ends the process.
class FontFile {
public:
    explicit FontFile(const std::filesystem::path& path)
        : path_(path), file_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status;
        if (!file_ || fstat(file_.get(), &status) != 0) {
            const int error = errno;
            if (error == ENOENT) throw ToolError("no font file " + path.string());
            throw ToolError("cannot open the font " + path.string() + ": " + strerror(error));
        }
        if (!S_ISREG(status.st_mode)) throw ToolError(path.string() + " is not a file");
        stream_.descriptor.value = file_.get();
        stream_.size = static_cast<unsigned long>(status.st_size);
        stream_.read = readAt;
    }

    // Null when there is no such face. Sets `faceCount` when there is.
    PatternPtr query(int index, int& faceCount) {
        FT_Library library = nullptr;
        if (FT_Init_FreeType(&library) != 0) throw std::bad_alloc();
        const std::unique_ptr<FT_LibraryRec_, Release> ownLibrary(library);
        FT_Open_Args arguments{};
        arguments.flags = FT_OPEN_STREAM;
        arguments.stream = &stream_;
        FT_Face face = nullptr;
        if (FT_Open_Face(library, &arguments, index, &face) != 0) return nullptr;
        const std::unique_ptr<FT_FaceRec_, Release> ownFace(face);
        faceCount = static_cast<int>(face->num_faces);
        return PatternPtr(FcFreeTypeQueryFace(face, reinterpret_cast<const FcChar8*>(path_.c_str()),
                                              static_cast<unsigned>(index), nullptr));
    }

private:
    // Of no bytes it asks whether the offset exists: 0 for yes.
    static unsigned long readAt(FT_Stream stream, unsigned long offset, unsigned char* buffer,
                                unsigned long count) {
        if (count == 0) return offset > stream->size ? 1 : 0;
        const ssize_t got = pread(static_cast<int>(stream->descriptor.value), buffer, count,
                                  static_cast<off_t>(offset));
        return got < 0 ? 0 : static_cast<unsigned long>(got);
    }

    const std::filesystem::path& path_;
    const GxFontEffect::Descriptor file_;
    FT_StreamRec stream_{};
};

Match openFile(const std::filesystem::path& path, int index) {
    FontFile file(path);
    int faceCount = 0;
    PatternPtr pattern = file.query(index, faceCount);
    if (!pattern && index > 0 && file.query(0, faceCount)) {
        throw ToolError(path.string() + " has no font " + std::to_string(index) + "; it holds " +
                        std::to_string(faceCount) + ", counted from 0");
    }
    Match match = pattern ? describe(std::move(pattern)) : Match();
    if (!match) throw ToolError(path.string() + " is not a TrueType or OpenType font");
    match.face.file = path.string();
    match.face.index = index;
    return match;
}

UScriptCode scriptOf(char32_t c) {
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(c), &status);
    return U_SUCCESS(status) ? script : USCRIPT_UNKNOWN;
}

// Han characters are shared by several languages: the style's locale decides, then the other
// scripts of the text.
std::string languageOfHan(const Style& style, const std::vector<char32_t>& text) {
    for (const char* tag : {"ja", "ko", "zh-Hant", "zh-TW", "zh-HK", "zh"}) {
        if (style.locale.find(tag) == std::string::npos) continue;
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
    FallbackFinder(const Style& style, const std::vector<char32_t>& text, const Match& first)
        : style_(style), text_(text), hanLanguage_(languageOfHan(style, text)) {
        for (const char32_t c : text) {
            if (needsGlyph(c) && !first.covers(c)) missing_.insert(c);
        }
    }

    std::vector<FontFace> run() {
        const bool emojiFirst = addEmoji();
        while (!missing_.empty()) {
            const char32_t c = *missing_.begin();
            if (!addFor(c)) giveUp(c);
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
        Match match = findInstalled({.family = "emoji", .color = true, .language = "und-zsye"});
        if (!match || !flagOf(match.pattern.get(), FC_COLOR)) return true;
        bool first = true;
        std::erase_if(missing_, [&](char32_t c) {
            if (!match.covers(c)) return false;
            if (emoji.count(c)) return true;
            first = false;
            return false;
        });
        match.face.locales = kEmojiLocale;
        faces_.push_back(match.face);
        return first;
    }

    // A face for c that covers as much as possible of what else is missing in its script.
    bool addFor(char32_t c) {
        const UScriptCode script = scriptOf(c);
        const CharSetPtr same(FcCharSetCreate());
        for (const char32_t other : missing_) {
            if (scriptOf(other) == script) FcCharSetAddChar(same.get(), other);
        }
        const CharSetPtr alone(FcCharSetCreate());
        FcCharSetAddChar(alone.get(), c);
        for (const FcCharSet* characters : {same.get(), alone.get()}) {
            Match match = findInstalled({.family = "sans-serif",
                                         .bold = style_.bold,
                                         .italic = style_.italic,
                                         .language = languageOf(script, hanLanguage_),
                                         .characters = characters});
            if (!match || !match.covers(c)) continue;
            std::erase_if(missing_, [&](char32_t m) { return match.covers(m); });
            match.face.locales = localesOf(script, hanLanguage_);
            faces_.push_back(match.face);
            return true;
        }
        return false;
    }

    // No font has c. Asking takes a millisecond: after the first such character only what some font
    // has is asked for.
    void giveUp(char32_t c) {
        missing_.erase(c);
        if (std::exchange(onlyInstalledAreMissing_, true)) return;
        const CharSetPtr installed = installedCharacters();
        std::erase_if(missing_, [&](char32_t m) { return !FcCharSetHasChar(installed.get(), m); });
    }

    const Style& style_;
    const std::vector<char32_t>& text_;
    const std::string hanLanguage_;
    std::set<char32_t> missing_;
    bool onlyInstalledAreMissing_ = false;
    std::vector<FontFace> faces_;
};

Match findFirst(const Style& style, FontChoice& choice) {
    if (const auto file = asFontFile(style.font, style.folder())) {
        Match match = openFile(*file, style.fontIndex);
        // A text object's own font file is face 0 and counts as upright whatever it is, so it would
        // be slanted twice.
        choice.userFile = style.fontIndex == 0 && !(style.italic && match.face.italic);
        return match;
    }
    if (style.fontIndex != 0) {
        throw ToolError(
            "font index " + std::to_string(style.fontIndex) + " needs a font file; " +
            (style.font.empty() ? "none is named" : "\"" + style.font + "\" is a family"));
    }
    if (style.font.empty()) {
        Match match =
            findInstalled({.family = "sans-serif", .bold = style.bold, .italic = style.italic});
        if (!match) throw ToolError("no font is installed; name a font file");
        return match;
    }
    Match match = findInstalled({.family = style.font,
                                 .bold = style.bold,
                                 .italic = style.italic,
                                 .color = equalNames(style.font, "emoji")});
    if (!match || (!isGenericName(style.font) && !hasFamilyName(match.pattern.get(), style.font))) {
        throw ToolError("no font family \"" + style.font + "\" is installed" +
                        (match ? "; the nearest is \"" + match.face.family + "\"" : ""));
    }
    choice.familyName = style.font;
    return match;
}

}  // namespace

bool needsGlyph(char32_t codePoint) {
    const auto c = static_cast<UChar32>(codePoint);
    const int8_t type = u_charType(c);
    return type != U_CONTROL_CHAR && type != U_LINE_SEPARATOR && type != U_PARAGRAPH_SEPARATOR &&
           !u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

std::optional<std::filesystem::path> asFontFile(const std::string& font,
                                                const std::filesystem::path& folder) {
    const std::filesystem::path path = (folder / font).lexically_normal();
    const std::string extension = path.extension().string();
    const bool looksLikeFile = font.find('/') != std::string::npos ||
                               equalNames(extension, ".ttf") || equalNames(extension, ".otf") ||
                               equalNames(extension, ".ttc") || equalNames(extension, ".otc");
    std::error_code ignored;
    if (looksLikeFile || std::filesystem::is_regular_file(path, ignored)) return path;
    return std::nullopt;
}

FontChoice chooseFonts(const Style& style, const std::vector<char32_t>& text) {
    FontChoice choice;
    Match first = findFirst(style, choice);
    choice.fakeBold = style.bold && first.face.weight < 600;
    choice.faces.push_back(first.face);
    std::vector<FontFace> fallbacks = FallbackFinder(style, text, first).run();
    choice.faces.insert(choice.faces.end(), fallbacks.begin(), fallbacks.end());
    return choice;
}

}  // namespace gxtool
