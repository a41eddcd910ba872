// What is built into the program: the page and the styles to begin with.
#pragma once

#include <span>
#include <string_view>

namespace gxstudio {

struct BuiltIn {
    std::string_view name;  // "app.js"
    std::string_view bytes;
};

// index.html, app.js and app.css; none where the program was built without Node.
extern const std::span<const BuiltIn> kPage;
// Style files to begin with, and the pictures of their patterns.
extern const std::span<const BuiltIn> kPresets;
extern const std::span<const BuiltIn> kPatterns;

}  // namespace gxstudio
