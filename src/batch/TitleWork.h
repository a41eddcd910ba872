// What a worker of a batch does: a row in, a picture's file and a line of the manifest out.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "batch/Row.h"
#include "scene/FontSource.h"
#include "scene/PictureFile.h"
#include "scene/Renderer.h"

namespace gxtext {

struct TitleOptions {
    Style style;
    // What goes over a style file that a row names, as it went over `style`.
    std::function<Style(Style)> over;
    std::optional<float> scale;  // of every length, after the row's own fields
    FontSource fonts;
    std::optional<PictureFormat> format{};  // else by the output's name
    PngCompression compression = PngCompression::kDefault;
    bool strict = false;    // a character without a glyph is an error
    std::string version{};  // of all that pictures depend on
};

struct TitleRequest {
    Row row;
    std::string output;
    std::string known;  // the line of the manifest that an earlier batch wrote, if any

    std::string toBytes() const;
    static TitleRequest fromBytes(const std::string& bytes);
};

enum class TitleState : char { kWritten = 'w', kMissing = 'm', kUnchanged = 'u', kFailed = 'f' };

// kMissing is a picture, too, with empty boxes for characters that no font has.
struct TitleAnswer {
    TitleState state = TitleState::kFailed;
    std::string line;  // of the manifest

    std::string toBytes() const { return static_cast<char>(state) + line; }
    static TitleAnswer fromBytes(const std::string& bytes) {
        return {static_cast<TitleState>(bytes.front()), bytes.substr(1)};
    }
};

// Keeps fonts, caches and styles between titles. For one thread.
class TitleWork {
public:
    explicit TitleWork(TitleOptions options);

    // Draws and writes the picture, unless the line that is known is of the same input and its file
    // is there. The file is the old or the new one whole whatever happens in between; folders on
    // its way are made. Whatever goes wrong is the answer.
    TitleAnswer answer(const TitleRequest& request);

private:
    Style styleOf(const Row& row);
    const Style& styleFile(const std::string& file);
    TitleAnswer draw(const TitleRequest& request, const Style& style);
    bool isUnchanged(const TitleRequest& request, const Style& style);
    std::string inputHash(const Style& style, const Arrangement& arrangement,
                          const std::string& output) const;
    PictureFormat formatOf(const std::string& output) const;

    const TitleOptions options_;
    Renderer renderer_;
    std::map<std::string, Style> styles_;  // by file
};

// Every file that the picture of a style is made of: patterns and fonts.
std::vector<std::string> filesOf(const Style& style, const Arrangement& arrangement);

}  // namespace gxtext
