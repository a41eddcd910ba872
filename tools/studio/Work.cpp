#include "Work.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <cstdio>
#include <new>

#include "Answer.h"
#include "LayeredPicture.h"
#include "scene/FaceFile.h"
#include "scene/FontChoice.h"
#include "scene/PictureFile.h"
#include "scene/Png.h"
#include "style/EffectStack.h"
#include "style/LayerStyle.h"
#include "style/Style.h"

namespace gxstudio {

namespace {

using gxtext::Style;
using nlohmann::ordered_json;

// What a page shows at once; a file may be larger.
constexpr int64_t kMaxShownPixels = int64_t{1} << 24;

ordered_json boxJson(const gxtext::Box& box) {
    return {box.left, box.top, box.right, box.bottom};
}

std::string codePointText(char32_t c) {
    char text[16];
    snprintf(text, sizeof(text), "U+%04X", static_cast<unsigned>(c));
    return text;
}

std::string scriptName(char32_t c) {
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(c), &error);
    return U_SUCCESS(error) ? uscript_getName(script) : "";
}

ordered_json missingJson(const std::vector<char32_t>& characters) {
    ordered_json missing = ordered_json::array();
    for (const char32_t c : characters) {
        missing.push_back({{"codePoint", codePointText(c)}, {"script", scriptName(c)}});
    }
    return missing;
}

// A style's place of a file that the page calls by its name alone.
void locate(std::string& name, const ordered_json& files, const std::string& path, bool mayBeFamily,
            const std::filesystem::path& folder) {
    if (name.empty()) return;
    if (files.contains(name)) {
        name = files[name].get<std::string>();
        return;
    }
    if (mayBeFamily && !gxtext::asFontFile(name, folder)) return;
    throw gxtext::StyleError(
        "", {path, name + " is a file that was not opened", "drop the file into the page"});
}

void locateFiles(Style& style, const ordered_json& files) {
    locate(style.font, files, "$.font", true, style.folder());
    for (size_t i = 0; i < style.effects.size(); i++) {
        gxtext::Effect& effect = style.effects[i];
        const std::string path = "$.effects[" + std::to_string(i) + "]";
        locate(effect.pattern, files, path + ".pattern", false, {});
        for (gxtext::Effect& fill : effect.fill.effects) {
            locate(fill.pattern, files, path + ".fill.pattern", false, {});
        }
    }
}

Style styleOf(const ordered_json& request) {
    return Style::fromJson(jsonText(request.at("style")), request.value("source", std::string()));
}

Style locatedStyle(const ordered_json& request) {
    Style style = styleOf(request);
    locateFiles(style, request.value("files", ordered_json::object()));
    const float scale = request.value("scale", 1.0f);
    return scale == 1.0f ? style : style.scaled(scale);
}

// Canvas order: red, green, blue, alpha.
std::string rgba(const std::vector<uint32_t>& pixels) {
    std::string bytes(pixels.size() * 4, '\0');
    char* to = bytes.data();
    for (const uint32_t pixel : pixels) {
        to[0] = static_cast<char>(pixel >> 16);
        to[1] = static_cast<char>(pixel >> 8);
        to[2] = static_cast<char>(pixel);
        to[3] = static_cast<char>(pixel >> 24);
        to += 4;
    }
    return bytes;
}

ordered_json problemsOf(const gxtext::StyleError& error) {
    ordered_json problems = ordered_json::array();
    for (const gxtext::StyleProblem& problem : error.problems()) {
        problems.push_back(
            {{"path", problem.path}, {"reason", problem.reason}, {"allowed", problem.allowed}});
    }
    return {{"problems", problems}};
}

// From the lowest, those that are not drawn among them.
std::vector<size_t> stackingOfAll(Style style) {
    for (gxtext::Effect& effect : style.effects) effect.enabled = true;
    return gxtext::stackingOrder(style);
}

std::string fileOf(const gxtext::Picture& picture, const ordered_json& request) {
    const bool isWebp = request.value("format", std::string()) == "webp";
    return encode(picture, isWebp ? gxtext::PictureFormat::kWebp : gxtext::PictureFormat::kPng,
                  gxtext::PngCompression::kDefault);
}

std::string check(const ordered_json& request) {
    return packAnswer({{"text", styleOf(request).toJson()}});
}

std::string import(const ordered_json& request) {
    const auto imported = gxtext::importLayerStyle(request.at("text").get<std::string>());
    ordered_json losses = ordered_json::array();
    for (const gxtext::ImportLoss& loss : imported.losses) {
        losses.push_back(
            {{"path", loss.path}, {"kind", gxtext::lossName(loss.kind)}, {"reason", loss.reason}});
    }
    const ordered_json layer = {
        {"name", ""}, {"style", ordered_json::parse(imported.style.toJson())}, {"losses", losses}};
    return packAnswer({{"layers", ordered_json::array({layer})}});
}

std::string describeFont(const ordered_json& request) {
    const std::string file = request.at("file");
    const size_t faces = gxtext::countFaces(file);
    const gxtext::FaceInfoPtr first = faces > 0 ? gxtext::readFace(file, 0) : nullptr;
    if (!first) return packAnswer(problemWords("$.font", "this is no TrueType or OpenType font"));
    return packAnswer({{"family", first->face.family}, {"faces", faces}});
}

}  // namespace

Work::Work(gxtext::FontSource fonts, std::vector<std::string> fontPaths)
    : fonts_(std::move(fonts)), fontPaths_(std::move(fontPaths)), renderer_(fonts_) {}

std::string Work::answer(const std::string& request) {
    try {
        return answerTo(Json::parse(request));
    } catch (const gxtext::StyleError& error) {
        return packAnswer(problemsOf(error));
    } catch (const gxtext::FontError& error) {
        return packAnswer(problemWords("$.font", error.reason(), error.allowed()));
    } catch (const gxtext::TextError& error) {
        return packAnswer(problemWords("$.text", error.reason(), error.allowed()));
    } catch (const gxtext::PictureError& error) {
        return packAnswer(
            problemWords("$", error.place() + ": " + error.reason(), error.allowed()));
    } catch (const std::bad_alloc&) {
        return packAnswer(problemWords("$", "out of memory"));
    } catch (const std::exception& error) {
        return packAnswer(problemWords("$", error.what()));
    }
}

std::string Work::answerTo(const Json& request) {
    const std::string op = request.at("op");
    if (op == "render") return draw(request, false);
    if (op == "file") return draw(request, true);
    if (op == "check") return check(request);
    if (op == "import") return import(request);
    if (op == "layers") {
        return packAnswer({{"layers", layersOf(readLayers(request.at("file"), fontPaths_))}});
    }
    if (op == "font") return describeFont(request);
    return packAnswer({{"families", fonts_.families()}});
}

gxtext::Style Work::fitted(const Style& style, const Json& request) {
    if (!request.contains("fit")) return style;
    const gxtext::Arrangement full = renderer_.arrange(style);
    const float factor = std::min({1.0f, request["fit"].at(0).get<float>() / full.width,
                                   request["fit"].at(1).get<float>() / full.height});
    return factor < 1.0f ? style.scaled(std::max(factor, Style::kMinScale)) : style;
}

std::string Work::draw(const Json& request, bool asFile) {
    const Style style = fitted(locatedStyle(request), request);
    if (!asFile) {
        const gxtext::Arrangement size = renderer_.arrange(style);
        if (int64_t{size.width} * size.height > kMaxShownPixels) {
            return packAnswer(problemWords("$", std::to_string(size.width) + " x " +
                                                    std::to_string(size.height) +
                                                    " pixels are too many to show"));
        }
    }
    const gxtext::Picture picture = renderer_.render(style);
    Json answer = words(picture.arrangement());
    answer["stacking"] = stackingOfAll(style);
    return packAnswer(answer, asFile ? fileOf(picture, request) : rgba(picture.pixels()));
}

Work::Json Work::words(const gxtext::Arrangement& arrangement) {
    Json lines = Json::array();
    for (const gxtext::Line& line : arrangement.lines) {
        lines.push_back(
            {{"box", boxJson(line.box)}, {"ink", boxJson(line.ink)}, {"baseline", line.baseline}});
    }
    Json fonts = Json::array();
    for (const gxtext::UsedFont& font : arrangement.fonts) {
        fonts.push_back({{"family", font.face.family}, {"characters", font.characters.size()}});
    }
    return {{"width", arrangement.width},
            {"height", arrangement.height},
            {"margins", boxJson(arrangement.margins)},
            {"lines", lines},
            {"fonts", fonts},
            {"axes",
             arrangement.fonts.empty() ? Json::array() : axesOf(arrangement.fonts.front().face)},
            {"missing", missingJson(arrangement.missing)}};
}

const Work::Json& Work::axesOf(const gxtext::FontFace& face) {
    const auto key = std::pair(face.file, face.index);
    const auto known = axes_.find(key);
    if (known != axes_.end()) return known->second;
    Json axes = Json::array();
    for (const auto& axis : gxtext::readAxes(face.file, static_cast<size_t>(face.index))) {
        axes.push_back(
            {{"tag", axis.tag}, {"min", axis.min}, {"initial", axis.initial}, {"max", axis.max}});
    }
    return axes_.emplace(key, std::move(axes)).first->second;
}

}  // namespace gxstudio
