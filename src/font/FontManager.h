// The process-wide owner of font data.
#pragma once

#include <memory>
#include <vector>

#include "GxExport.h"

namespace android {
struct Typeface;
}

namespace minikin {
class FontFamily;
class MinikinFont;
}  // namespace minikin

namespace GxFontEffect {

struct GxFontFamily;
class GxFontManagerImpl;
class GxString;
class List;

// Loads font files and buffers once each, holds the system's families, and puts together the
// families that a text is laid out with: the user's font first, then every loaded system family.
//
//     FontManager& fonts = FontManager::GetInstance();
//     fonts.AddMinikinFont("/fonts/Title.ttf", nullptr, 0, 0, true);
//     std::vector<std::shared_ptr<minikin::FontFamily>> families;
//     int weight = 400;
//     fonts.GetMinikinFontFamilies(nullptr, families, &path, weight);
//
// Use GetInstance(); an instance of one's own is built in two steps, and until Construct succeeds
// every operation fails with code 8. Paths are UTF-8. A font is known by its path and its index in
// a collection file (0 for plain files). Failures return false; a failed operation changes nothing
// but what it says. When memory runs out the code is 7. Nothing throws. Log tag "GxFontManager".
//
// Safe from any thread: one lock guards fonts and families. Fonts and families handed out stay
// valid as long as their pointers are held, even beyond the manager.
class GXTEXT_API FontManager {
public:
    // The highest font index of a collection that can be told apart.
    static constexpr int kMaxFontIndex = 0xFF - '0';

    // Made on first use, destroyed when the process exits.
    static FontManager& GetInstance();

    FontManager();
    ~FontManager();
    FontManager(const FontManager&) = delete;
    FontManager& operator=(const FontManager&) = delete;

    // Code 4 when already constructed.
    bool Construct();

    // Loads font number `index` of a file, or of the `size` bytes at `data` under the name `path`.
    // With `checkExisting` a font that is there already is success at once; otherwise it is loaded
    // again, and the one that was there first is kept.
    //
    // `data` is null or an array made with new[], which passes to the manager whatever the outcome:
    // it is freed when the font was there or cannot be loaded, and else lives as long as the font.
    // A file is loaded once per process; one that could not be read stays unreadable, unless memory
    // or descriptors were short. Files up to 8 MiB are read into memory. Larger ones are mapped,
    // and all on a read-only file system: those must not be cut short or overwritten in place while
    // in use, which would end the process or garble glyphs; replacing them under their name is
    // harmless.
    bool AddMinikinFont(const char* path, char* data, unsigned size, int index, bool checkExisting);
    bool AddMinikinFont(const GxString* path, char* data, unsigned size, int index,
                        bool checkExisting);
    bool IsExisting(const char* path, int index);
    // False, and `out` left alone, when there is no such font.
    bool GetMinikinFont(std::shared_ptr<minikin::MinikinFont>& out, const GxString* path,
                        int index);

    // Takes over a List (made with new) of GxFontFamily records (each made with new, see
    // DeleteFontFamily), the first time; later lists are ignored and stay the caller's. True either
    // way.
    bool SetSystemFontFamilies(List* families);
    bool IsSystemFontFamiliesAlreadySet();
    // Loads all fonts of the family, up to the first that fails. False for a family without fonts.
    bool BuildMinikinFamily(GxFontFamily* family);
    // Builds the first system family of this locale list that is not loaded yet. True when there
    // was one, even if it could not be built; it is tried again then.
    bool LoadMinikinFontFamily(unsigned localeListId);
    // The same, but false means that memory ran out (code 7), and nothing else.
    bool TryLoadMinikinFontFamily(unsigned localeListId);

    // Appends to `out` the family of the font at `userFontPath` (null for none), then every loaded
    // system family whose fonts are there: the same objects as long as no font comes or goes.
    // `weight` comes in as the wanted weight and becomes what
    // the user font's name tells (see DeriveFontStyle). A font of the system's Roboto gives no
    // family of its own: the system's cover it. `familyName` (may be null) only takes part in
    // reading the name. True also when nothing was appended; on failure `out` and `weight` are
    // unchanged.
    bool GetMinikinFontFamilies(const GxString* familyName,
                                std::vector<std::shared_ptr<minikin::FontFamily>>& out,
                                const GxString* userFontPath, int& weight);

    // A typeface over these families, of this weight (see Typeface::createFromFamilies). The same
    // object for the same families as long as no font comes or goes, so that layouts of one text
    // object serve the next. Null when memory runs out. It may be kept beyond the manager.
    std::shared_ptr<const android::Typeface> GetTypeface(
        const std::vector<std::shared_ptr<minikin::FontFamily>>& families, int weight, bool italic);

    // Forgets the system families, so that they can be set again.
    void ClearFontFamilies();
    // Forgets all fonts and files, unreadable ones included.
    void ClearFontMaps();

private:
    enum class FamilyLoad { kNone, kTried, kNoMemory };

    bool Ready(int site) const;
    FamilyLoad LoadFamily(unsigned localeListId);

    std::unique_ptr<GxFontManagerImpl> impl_;
};

}  // namespace GxFontEffect
