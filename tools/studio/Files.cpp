#include "Files.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "Answer.h"
#include "scene/FileIo.h"
#include "style/Style.h"

namespace gxstudio {

namespace {

namespace fs = std::filesystem;
using gxtext::Error;
using nlohmann::ordered_json;

constexpr size_t kMaxPlacesBytes = size_t{1} << 22;
constexpr size_t kMostStyles = 500;
constexpr size_t kLongestName = 200;

// FNV-1a: tells versions of a file, not adversaries.
std::string versionText(std::string_view bytes) {
    uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : bytes) hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001B3u;
    char text[24];
    snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

void checkPlainName(const std::string& name) {
    const bool isPlain = !name.empty() && name.size() <= kLongestName && name.front() != '.' &&
                         std::none_of(name.begin(), name.end(), [](char c) {
                             return c == '/' || c == '\\' || static_cast<uint8_t>(c) < 0x20;
                         });
    if (!isPlain) throw Error("\"" + name + "\" is not the plain name of a file");
}

// Every "font" and "pattern", wherever it stands.
void collectFiles(const ordered_json& value, std::vector<std::string>& names) {
    if (!value.is_structured()) return;
    for (const auto& [key, item] : value.items()) {
        if (item.is_string() && (key == "font" || key == "pattern")) names.push_back(item);
        collectFiles(item, names);
    }
}

std::vector<std::string> filesOf(const std::string& text) {
    std::vector<std::string> names;
    if (text.size() <= gxtext::Style::kMaxBytes) {
        collectFiles(ordered_json::parse(text, nullptr, false), names);
    }
    return names;
}

bool isFile(const fs::path& path) {
    std::error_code none;
    return fs::is_regular_file(path, none);
}

}  // namespace

Files::Files(fs::path folder, fs::path session)
    : folder_(std::move(folder)), session_(std::move(session)) {
    const fs::path known = session_ / "places.json";
    if (!isFile(known)) return;
    places_ = ordered_json::parse(gxtext::readFile(known.string(), kMaxPlacesBytes));
}

fs::path Files::pathOf(const std::string& name) const {
    checkPlainName(name);
    if (!name.ends_with(".json")) throw Error("the name of a style ends in .json");
    return folder_ / name;
}

std::vector<std::string> Files::styles() const {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(folder_, none)) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(".json") && name.front() != '.' && isFile(entry.path())) {
            names.push_back(name);
        }
        if (names.size() == kMostStyles) break;
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string Files::open(const std::string& name) {
    std::string text = gxtext::readFile(pathOf(name).string(), gxtext::Style::kMaxBytes);
    const std::lock_guard guard(lock_);
    allowFilesOf(text);
    return text;
}

std::string Files::versionOf(const std::string& name) const {
    const fs::path path = pathOf(name);
    return isFile(path) ? versionText(gxtext::readFile(path.string(), gxtext::Style::kMaxBytes))
                        : "";
}

std::string Files::save(const std::string& name, const std::string& text,
                        const std::string& version) {
    const fs::path path = pathOf(name);
    const std::lock_guard guard(lock_);
    if (versionOf(name) != version) throw Conflict(name + " is another one by now");
    for (const std::string& used : filesOf(text)) {
        if (!places_.contains(used)) continue;
        const fs::path place = places_[used].get<std::string>();
        const fs::path target = folder_ / used;
        if (place.parent_path() != session_) continue;
        const std::string bytes = gxtext::readFile(place.string(), kMaxDropped);
        if (!isFile(target)) {
            gxtext::writeFile(target.string(), bytes);
        } else if (gxtext::readFile(target.string(), kMaxDropped) != bytes) {
            throw Error("there is another file of that name beside the style: " + used);
        }
    }
    gxtext::writeFile(path.string(), text);
    return versionText(text);
}

std::string Files::keep(const std::string& name, std::string_view bytes) {
    checkPlainName(name);
    const fs::path place = session_ / (versionText(bytes) + "-" + name);
    const std::lock_guard guard(lock_);
    std::string free = name;
    for (int i = 2; places_.contains(free) && places_[free] != place.string(); i++) {
        const fs::path path = name;
        free = path.stem().string() + "-" + std::to_string(i) + path.extension().string();
    }
    gxtext::writeFile(place.string(), bytes);
    allow(free, place);
    return free;
}

Files::Passing::~Passing() {
    std::error_code none;
    fs::remove(path_, none);
}

Files::Passing Files::pass(std::string_view bytes) {
    unsigned number = 0;
    {
        const std::lock_guard guard(lock_);
        number = ++passed_;
    }
    fs::path path = session_ / ("passing-" + std::to_string(number));
    gxtext::writeFile(path.string(), bytes);
    return Passing(std::move(path));
}

ordered_json Files::places() const {
    const std::lock_guard guard(lock_);
    return places_;
}

void Files::allow(const std::string& name, const fs::path& place) {
    places_[name] = place.string();
    storePlaces();
}

void Files::allowFilesOf(const std::string& text) {
    for (const std::string& name : filesOf(text)) {
        const fs::path place = folder_ / name;
        if (isFile(place)) places_[name] = place.string();
    }
    storePlaces();
}

void Files::storePlaces() const {
    gxtext::writeFile((session_ / "places.json").string(), jsonText(places_));
}

fs::path Files::memoryOf(const std::string& name) const {
    return folder_ / ("." + pathOf(name).filename().string() + ".studio");
}

void Files::remember(const std::string& name, const std::string& text) {
    const fs::path memory = memoryOf(name);
    if (!isFile(pathOf(name))) return;
    std::error_code none;
    if (text.empty()) {
        fs::remove(memory, none);
    } else {
        gxtext::writeFile(memory.string(), text);
    }
}

std::string Files::remembered(const std::string& name) const {
    const fs::path memory = memoryOf(name);
    return isFile(memory) ? gxtext::readFile(memory.string(), gxtext::Style::kMaxBytes) : "";
}

}  // namespace gxstudio
