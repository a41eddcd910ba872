// Options that change the effects, or any field, of a style: --stroke, --set, --scale and their
// kin.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Style.h"

namespace CLI {
class App;
}

namespace gxtool {

// What the command line said. Lives as long as the parser.
class EffectOptions {
public:
    void addTo(CLI::App& app);

    // A copy with the effects given, then the fields set. Throws ToolError with the option's name
    // for a path that is not there and a value out of range.
    Style applyTo(Style style) const;
    // A copy with every length scaled, which comes last.
    Style scaled(const Style& style) const;
    const std::optional<float>& scale() const { return scale_; }

private:
    struct Given {
        size_t option = 0;  // index of a shorthand
        std::string text;
    };
    std::vector<Given> effects_;
    std::vector<std::string> settings_;
    std::optional<float> scale_;
};

}  // namespace gxtool
