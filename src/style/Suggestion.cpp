#include "style/Suggestion.h"

#include <algorithm>

namespace gxtext {

namespace {

// Edit distance of two short names.
size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); j++) row[j] = j;
    for (size_t i = 1; i <= a.size(); i++) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); j++) {
            const size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row[b.size()];
}

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

const std::string_view* nearestName(std::string_view given,
                                    const std::vector<std::string_view>& names) {
    constexpr size_t kLongestName = 40;
    constexpr size_t kShortestPart = 3;
    if (given.size() > kLongestName || names.empty()) return nullptr;
    const auto closest = std::min_element(names.begin(), names.end(), [&](auto a, auto b) {
        return distance(given, a) < distance(given, b);
    });
    if (distance(given, *closest) <= std::max<size_t>(1, given.size() / 3)) return &*closest;
    if (given.size() < kShortestPart) return nullptr;
    // In "outerGlow" the word that was given as "glow" has a capital.
    const auto holding = std::find_if(names.begin(), names.end(), [&](std::string_view name) {
        const auto equal = [](char a, char b) { return lower(a) == lower(b); };
        return std::search(name.begin(), name.end(), given.begin(), given.end(), equal) !=
               name.end();
    });
    return holding != names.end() ? &*holding : nullptr;
}

std::string joined(const std::vector<std::string_view>& names) {
    std::string list;
    for (const std::string_view name : names) list.append(list.empty() ? "" : ", ").append(name);
    return list;
}

std::string suggestion(std::string_view given, const std::vector<std::string_view>& names) {
    if (const std::string_view* name = nearestName(given, names)) {
        return "; did you mean \"" + std::string(*name) + "\"?";
    }
    return "; allowed: " + joined(names);
}

}  // namespace gxtext
