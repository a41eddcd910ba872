#include "CompareCommand.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "Commands.h"
#include "Streams.h"
#include "ToolError.h"
#include "scene/FileIo.h"
#include "scene/PictureDifference.h"
#include "scene/PictureFile.h"

namespace gxtool {

namespace {

namespace fs = std::filesystem;
using gxtext::Image;
using gxtext::PictureDifference;
using nlohmann::ordered_json;

// Two pictures of one name.
struct Pair {
    std::string name;
    std::string reason;  // why they differ, as a sentence; empty when they do not
    PictureDifference difference;
    bool isDrawn = false;  // the difference
};

Image readPicture(const fs::path& file) {
    return gxtext::decodePicture(gxtext::readFile(file.string(), gxtext::kMaxImageBytes),
                                 file.string());
}

std::string sizeText(const Image& image) {
    return std::to_string(image.width) + " x " + std::to_string(image.height);
}

std::string reasonOf(const Image& before, const Image& after, const PictureDifference& difference,
                     uint64_t maxDifferent) {
    if (!difference.sameSize) return sizeText(before) + " pixels, then " + sizeText(after);
    if (difference.pixels <= maxDifferent) return {};
    return std::to_string(difference.pixels) + " of " + std::to_string(before.pixels.size()) +
           " pixels differ, by up to " + std::to_string(difference.largest);
}

// Draws the difference into a file where there is one.
Pair comparePair(const CompareOptions& options, const std::string& name, const fs::path& before,
                 const fs::path& after, const fs::path& diff) {
    const Image a = readPicture(before), b = readPicture(after);
    Pair pair{name, {}, comparePictures(a, b, options.tolerance)};
    pair.reason = reasonOf(a, b, pair.difference, options.maxDifferent);
    if (pair.reason.empty() || diff.empty()) return pair;
    const Image drawn = drawDifference(a, b, options.tolerance);
    gxtext::makeFolderOf(diff.string());
    gxtext::writeFile(diff.string(),
                      gxtext::encodePng(drawn.pixels.data(), drawn.width, drawn.height));
    pair.isDrawn = true;
    return pair;
}

void addPictures(const std::string& folder, std::set<std::string>& names) {
    std::error_code error;
    for (fs::recursive_directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
        std::error_code ignored;
        if (it->is_regular_file(ignored) && gxtext::pictureFormatOf(it->path())) {
            names.insert(it->path().lexically_relative(folder).generic_string());
        }
    }
    if (error) throw ToolError(folder + ": cannot read: " + error.message());
}

std::vector<Pair> compareFolders(const CompareOptions& options) {
    std::set<std::string> names;
    addPictures(options.before, names);
    addPictures(options.after, names);
    std::vector<Pair> pairs;
    for (const std::string& name : names) {
        const fs::path before = fs::path(options.before) / name;
        const fs::path after = fs::path(options.after) / name;
        const fs::path diff = options.diff.empty() ? fs::path() : fs::path(options.diff) / name;
        try {
            if (!fs::exists(before)) {
                pairs.push_back({name, "not in " + options.before, {}});
            } else if (!fs::exists(after)) {
                pairs.push_back({name, "not in " + options.after, {}});
            } else {
                pairs.push_back(
                    comparePair(options, name, before, after,
                                diff.empty() ? diff : fs::path(diff.string() + ".png")));
            }
        } catch (const gxtext::Error& error) {
            pairs.push_back({name, error.what(), {}});
        }
    }
    return pairs;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '<')
            result += "&lt;";
        else if (c == '&')
            result += "&amp;";
        else if (c == '"')
            result += "&quot;";
        else
            result += c;
    }
    return result;
}

// A reference inside a page: what is not plain is in hexadecimal.
std::string reference(const std::string& name) {
    std::string result;
    for (const char c : name) {
        if (CLI::detail::valid_later_char(c) || c == '/') {
            result += c;
        } else {
            char text[4];
            snprintf(text, sizeof(text), "%%%02X", static_cast<unsigned char>(c));
            result += text;
        }
    }
    return result;
}

// The pairs that differ: before, after, difference.
std::string sheet(const CompareOptions& options, const std::vector<Pair>& pairs) {
    std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>gxtext compare"
        "</title>\n<style>body{font:14px sans-serif;margin:2em;background:#eee}figure{margin:0 0 "
        "2em}img{max-width:100%;border:1px solid #999}figcaption{margin:.3em 0}</style></head>\n"
        "<body><h1>" +
        escaped(options.before) + " and " + escaped(options.after) + "</h1>\n";
    size_t different = 0;
    for (const Pair& pair : pairs) {
        if (pair.reason.empty()) continue;
        different++;
        page += "<figure><figcaption><b>" + escaped(pair.name) + "</b>: " + escaped(pair.reason) +
                "</figcaption>";
        if (pair.isDrawn) {
            page += "<img alt=\"before, after, difference\" src=\"" +
                    reference(pair.name + ".png") + "\">";
        }
        page += "</figure>\n";
    }
    return page + "<p>" + std::to_string(different) + " of " + std::to_string(pairs.size()) +
           " pictures differ.</p></body></html>\n";
}

std::string shownText(const std::vector<Pair>& pairs) {
    std::string text;
    for (const Pair& pair : pairs) {
        if (!pair.reason.empty()) text += pair.name + ": " + pair.reason + "\n";
    }
    return text;
}

std::string shownJson(const std::vector<Pair>& pairs) {
    ordered_json list = ordered_json::array();
    for (const Pair& pair : pairs) {
        list.push_back({{"name", pair.name},
                        {"same", pair.reason.empty()},
                        {"reason", pair.reason},
                        {"pixels", pair.difference.pixels},
                        {"largest", pair.difference.largest}});
    }
    return printedJson(list);
}

}  // namespace

CLI::App* addCompare(CLI::App& parent, CompareOptions& options) {
    CLI::App* app = parent.add_subcommand("compare", "Tell how pictures differ");
    app->add_option("before", options.before, "Picture, or folder of pictures")
        ->type_name("FILE|DIR")
        ->required();
    app->add_option("after", options.after, "Picture, or folder of pictures of the same names")
        ->type_name("FILE|DIR")
        ->required();
    app->add_option("--tolerance", options.tolerance,
                    "How far a channel may be off, 0-255 (default 0)")
        ->type_name("N")
        ->check(CLI::Range(0, 255).description(""))
        ->group("Comparison");
    app->add_option("--max-different", options.maxDifferent,
                    "How many pixels of a picture may differ (default 0)")
        ->type_name("N")
        ->group("Comparison");
    const char* const group = "Output";
    app->add_option("--diff", options.diff,
                    "Before, after and difference in one picture; for folders a folder with a page")
        ->type_name("FILE.png|DIR")
        ->group(group);
    app->add_flag("--json", options.json, "As JSON")->group(group);
    return app;
}

int compareCommand(const CompareOptions& options) {
    const bool areFolders = fs::is_directory(options.before) && fs::is_directory(options.after);
    const std::vector<Pair> pairs =
        areFolders ? compareFolders(options)
                   : std::vector<Pair>{comparePair(options, options.after, options.before,
                                                   options.after, options.diff)};
    if (areFolders && !options.diff.empty()) {
        const std::string page = (fs::path(options.diff) / "index.html").string();
        gxtext::makeFolderOf(page);
        gxtext::writeFile(page, sheet(options, pairs));
    }
    writeOutput("-", options.json ? shownJson(pairs) : shownText(pairs));
    const bool areSame = std::all_of(pairs.begin(), pairs.end(),
                                     [](const Pair& pair) { return pair.reason.empty(); });
    return areSame ? kOk : kFailure;
}

}  // namespace gxtool
