#include "Style.h"

#include "Streams.h"

namespace gxtool {

Style loadStyle(const std::string& file) {
    const std::string json = readInput(file, Style::kMaxBytes);
    return Style::fromJson(json, file == "-" ? "standard input" : file);
}

}  // namespace gxtool
