// What is taken over from the system's font configuration.
#pragma once

#include <optional>
#include <string>

namespace GxFontEffect {

// Decides about the families of one configuration, in its order, and about their fonts.
class FontConfigRules {
public:
    // The configuration may name fonts of any length; a longer path is cut, at a byte.
    static constexpr size_t kMaxPathBytes = 1023;

    // Nameless families are the fallbacks: all count. Of the named ones only the first, which is
    // the default family; one after it never takes its place.
    bool Considers(bool named);

    // Whether the family last considered has to be built at once: the default family, one for no
    // language in particular, and the symbols and emoji that any text may hold. The others wait
    // until a text needs their language.
    bool BuildsNow(const std::string& languages) const;

    static std::string CutPath(std::string path);

    // A font takes part when its file can be read, it is upright, and it does not serve as a
    // fallback for one named family only.
    static bool Keeps(const std::string& path, bool italic,
                      const std::optional<std::string>& fallbackFor);

private:
    bool sawNamed_ = false;
    bool isDefault_ = false;
};

}  // namespace GxFontEffect
