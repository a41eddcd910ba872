#include "batch/TitleWork.h"

#include <sys/stat.h>

#include <filesystem>
#include <new>
#include <utility>

#include "batch/ManifestLine.h"
#include "batch/Sha256.h"
#include "scene/FileIo.h"
#include "scene/SceneError.h"
#include "style/StyleJson.h"

namespace gxtext {

namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

// Styles of other files that are kept; more are read again.
constexpr size_t kMostStyles = 64;

// What tells a file from another at the same place.
std::string stampOf(const std::string& file) {
    struct stat status;
    if (stat(file.c_str(), &status) != 0) return file;
    return file + " " + std::to_string(status.st_size) + " " +
           std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
}

RowError errorOf(const StyleError& error) {
    const StyleProblem& first = error.problems().front();
    RowError result{first.path, first.reason};
    if (error.total() > 1) {
        result.reason += " (and " + std::to_string(error.total() - 1) + " more)";
    }
    return result;
}

RowError errorOf(const SceneError& error) {
    const std::string allowed = error.allowed().empty() ? "" : "; allowed: " + error.allowed();
    return {error.place(), error.reason() + allowed};
}

// The place says which row's file it is.
void refuseToReplace(const std::string& output, const std::vector<std::string>& inputs) {
    std::error_code none;
    if (!fs::is_regular_file(output, none)) return;
    for (const std::string& input : inputs) {
        if (fs::equivalent(output, input, none)) {
            throw FileError(output, "the output would replace " + input + ", which is read");
        }
    }
}

// The line that is known, of a row that may have moved.
std::string relabelled(const TitleRequest& request) {
    ordered_json line = ordered_json::parse(request.known);
    if (line["row"] == request.row.number && line["id"] == request.row.id) return request.known;
    line["row"] = request.row.number;
    line["id"] = request.row.id;
    return line.dump();
}

}  // namespace

std::vector<std::string> filesOf(const Style& style, const Arrangement& arrangement) {
    std::vector<std::string> files;
    const auto addPattern = [&](const Effect& effect) {
        if (!effect.pattern.empty()) files.push_back((style.folder() / effect.pattern).string());
    };
    for (const Effect& effect : style.effects) {
        addPattern(effect);
        for (const Effect& fill : effect.fill.effects) addPattern(fill);
    }
    for (const UsedFont& font : arrangement.fonts) files.push_back(font.face.file);
    return files;
}

std::string TitleRequest::toBytes() const {
    ordered_json settings = ordered_json::array();
    for (const StyleSetting& setting : row.settings) {
        settings.push_back({setting.path, setting.value});
    }
    return ordered_json{{"row", row.number},    {"id", row.id},     {"style", row.style},
                        {"settings", settings}, {"output", output}, {"known", known}}
        .dump();
}

TitleRequest TitleRequest::fromBytes(const std::string& bytes) {
    ordered_json message = ordered_json::parse(bytes);
    TitleRequest request;
    request.row.number = message["row"];
    request.row.id = message["id"];
    request.row.style = message["style"];
    for (ordered_json& setting : message["settings"]) {
        request.row.settings.push_back({setting[0], std::move(setting[1])});
    }
    request.output = message["output"];
    request.known = message["known"];
    return request;
}

TitleWork::TitleWork(TitleOptions options)
    : options_(std::move(options)), renderer_(options_.fonts) {}

TitleAnswer TitleWork::answer(const TitleRequest& request) {
    RowError error;
    try {
        const Style style = styleOf(request.row);
        if (isUnchanged(request, style)) return {TitleState::kUnchanged, relabelled(request)};
        return draw(request, style);
    } catch (const StyleError& problem) {
        error = errorOf(problem);
    } catch (const SceneError& problem) {
        error = errorOf(problem);
    } catch (const std::bad_alloc&) {
        error = {"the worker", "out of memory"};
    } catch (const std::exception& problem) {
        error = {"the row", problem.what()};
    }
    return {TitleState::kFailed,
            errorLine(request.row.number, request.row.id, request.output, error)};
}

const Style& TitleWork::styleFile(const std::string& file) {
    const auto known = styles_.find(file);
    if (known != styles_.end()) return known->second;
    if (styles_.size() >= kMostStyles) styles_.clear();
    Style style = Style::fromJson(readFile(file, Style::kMaxBytes), file);
    return styles_.emplace(file, options_.over(std::move(style))).first->second;
}

Style TitleWork::styleOf(const Row& row) {
    Style style = row.style.empty() ? options_.style : styleFile(row.style);
    const std::vector<StyleSetting>& settings = row.settings;
    // The commonest row costs no reading of the whole style.
    const bool isTextAlone =
        settings.size() == 1 && settings[0].path == "text" && settings[0].value.is_string();
    if (isTextAlone) {
        style.text = settings[0].value.get<std::string>();
    } else if (!settings.empty()) {
        style = withSettings(style, settings);
    }
    return options_.scale ? style.scaled(*options_.scale) : style;
}

PictureFormat TitleWork::formatOf(const std::string& output) const {
    return options_.format.value_or(pictureFormatOf(output).value_or(PictureFormat::kPng));
}

std::string TitleWork::inputHash(const Style& style, const Arrangement& arrangement,
                                 const std::string& output) const {
    Sha256 hash;
    hash.addField(options_.version);
    hash.addField(std::to_string(static_cast<int>(formatOf(output))) + " " +
                  std::to_string(static_cast<int>(options_.compression)));
    hash.addField(styleJson(style).dump(-1, ' ', false, ordered_json::error_handler_t::replace));
    for (const std::string& file : filesOf(style, arrangement)) hash.addField(stampOf(file));
    return hash.hex();
}

bool TitleWork::isUnchanged(const TitleRequest& request, const Style& style) {
    const ordered_json known = ordered_json::parse(request.known, nullptr, false);
    if (!known.is_object()) return false;
    const auto bytes = known.find("bytes");
    std::error_code isMissing;
    const uintmax_t size = fs::file_size(request.output, isMissing);
    if (isMissing || bytes == known.end() || *bytes != size) return false;
    const Arrangement arrangement = renderer_.arrange(style);
    if (options_.strict && !arrangement.missing.empty()) return false;
    return known.value("input", "") == inputHash(style, arrangement, request.output);
}

TitleAnswer TitleWork::draw(const TitleRequest& request, const Style& style) {
    const Picture picture = renderer_.render(style);
    const Arrangement& arrangement = picture.arrangement();
    const ordered_json missing = codePointsJson(picture.missing());
    if (options_.strict && !missing.empty()) {
        throw TextError("the text", "no font has some of its characters: " + missing.dump());
    }
    refuseToReplace(request.output, filesOf(style, arrangement));
    const std::string bytes = encode(picture, formatOf(request.output), options_.compression);
    makeFolderOf(request.output);
    writeFile(request.output, bytes, Flush::kLater);

    ordered_json lines = ordered_json::array();
    for (const Line& line : picture.lines()) lines.push_back(lineJson(line));
    const ordered_json fields{{"width", picture.width()},
                              {"height", picture.height()},
                              {"margins", boxJson(picture.margins())},
                              {"lines", std::move(lines)},
                              {"missing", missing},
                              {"bytes", bytes.size()},
                              {"sha256", Sha256().add(bytes).hex()},
                              {"input", inputHash(style, arrangement, request.output)}};
    return {missing.empty() ? TitleState::kWritten : TitleState::kMissing,
            manifestLine(request.row.number, request.row.id, request.output, fields)};
}

}  // namespace gxtext
