#include "batch/Manifest.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "batch/OutputPattern.h"
#include "scene/FileIo.h"
#include "scene/SceneError.h"

namespace gxtext {

namespace {

using GxFontEffect::Descriptor;
using nlohmann::ordered_json;

[[noreturn]] void failWith(const std::string& file, const char* task) {
    throw FileError(file, std::string(task) + ": " + strerror(errno));
}

// Lines of a file one after the other, without their breaks; what has none is not taken for one.
class Lines {
public:
    explicit Lines(int descriptor, uint64_t offset = 0)
        : descriptor_(descriptor), read_(offset), start_(offset) {}

    // Where the line that was taken last starts, and the next one.
    uint64_t start() const { return start_; }
    uint64_t end() const { return end_; }

    std::optional<std::string> next() {
        size_t length = bytes_.find('\n', used_);
        while (length == std::string::npos) {
            const size_t searched = bytes_.size() - used_;
            bytes_.erase(0, used_);
            used_ = 0;
            if (!more()) return std::nullopt;
            length = bytes_.find('\n', searched);
        }
        std::string line = bytes_.substr(used_, length - used_);
        start_ = read_ - (bytes_.size() - used_);
        used_ = length + 1;
        end_ = read_ - (bytes_.size() - used_);
        return line;
    }

private:
    bool more() {
        char chunk[65536];
        const ssize_t count = pread(descriptor_, chunk, sizeof(chunk), static_cast<off_t>(read_));
        if (count <= 0) return false;
        bytes_.append(chunk, static_cast<size_t>(count));
        read_ += static_cast<uint64_t>(count);
        return true;
    }

    const int descriptor_;
    std::string bytes_;
    size_t used_ = 0;
    uint64_t read_;
    uint64_t start_;
    uint64_t end_ = 0;
};

// Empty for a line without a picture.
std::string outputOf(const std::string& line) {
    const ordered_json value = ordered_json::parse(line, nullptr, false);
    if (!value.is_object() || !value.contains("sha256")) return {};
    const auto output = value.find("output");
    return output != value.end() && output->is_string() ? output->get<std::string>() : "";
}

// What every line begins with.
constexpr std::string_view kLineStart = R"({"row":)";

// Of a file that was cut as soon as it was begun, too.
bool isManifest(int descriptor) {
    char start[kLineStart.size()];
    const ssize_t count = pread(descriptor, start, sizeof(start), 0);
    return count >= 0 &&
           kLineStart.starts_with(std::string_view(start, static_cast<size_t>(count)));
}

}  // namespace

Manifest::Manifest(const std::string& file, bool keeps)
    : file_(file == "-" ? "standard output" : file), knownFile_(file + ".known") {
    struct stat status;
    if (file == "-") {
        opened_ = std::make_unique<Descriptor>(dup(STDOUT_FILENO));
        isStream_ = true;
    } else {
        makeFolderOf(file);
        const bool exists = stat(file.c_str(), &status) == 0;
        isStream_ = exists && !S_ISREG(status.st_mode);
        const int mode = isStream_ ? O_WRONLY : O_RDWR | O_CREAT;
        opened_ = std::make_unique<Descriptor>(::open(file.c_str(), mode | O_CLOEXEC, 0666));
    }
    if (!*opened_) failWith(file_, "cannot create");
    if (!isStream_) open(keeps);
}

Manifest::~Manifest() = default;

void Manifest::release() {
    opened_.reset();
    known_.reset();
}

void Manifest::open(bool keeps) {
    if (flock(opened_->get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        throw FileError(file_, "another batch is writing it");
    }
    if (!isManifest(opened_->get())) {
        throw FileError(file_, "not a manifest of a batch, and not overwritten");
    }
    if (!keeps) {
        if (ftruncate(opened_->get(), 0) != 0) failWith(file_, "cannot write to");
        unlink(knownFile_.c_str());
        return;
    }
    known_ = std::make_unique<Descriptor>(::open(knownFile_.c_str(), O_RDONLY | O_CLOEXEC));
    if (*known_) remember(known_->get(), true);
    remember(opened_->get(), false);
    isSame_ = true;
}

// Later lines count for more than earlier ones.
void Manifest::remember(int descriptor, bool inKnown) {
    Lines lines(descriptor);
    while (const auto line = lines.next()) {
        const std::string output = outputOf(*line);
        if (!output.empty()) places_[nameKey(output)] = {inKnown, lines.start()};
    }
}

std::string Manifest::lineAt(const Place& place) const {
    return Lines(place.inKnown ? known_->get() : opened_->get(), place.offset).next().value_or("");
}

std::string Manifest::known(const std::string& output) const {
    if (places_.empty()) return {};
    const auto place = places_.find(nameKey(output));
    return place == places_.end() ? std::string() : lineAt(place->second);
}

void Manifest::append(const std::string& line) {
    if (isSame_) {
        Lines lines(opened_->get(), size_);
        if (lines.next() == line) {
            size_ = lines.end();
            return;
        }
        diverge();
    }
    pending_ += line;
    pending_ += '\n';
    if (pending_.size() > 1 << 16) flush();
}

// What is known of rows to come moves out of the way of the lines to come.
void Manifest::diverge() {
    isSame_ = false;
    std::erase_if(places_, [this](const auto& entry) {
        return !entry.second.inKnown && entry.second.offset < size_;
    });
    if (!places_.empty()) {
        const std::string fresh = knownFile_ + ".new";
        auto file = std::make_unique<Descriptor>(
            ::open(fresh.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        if (!*file) failWith(fresh, "cannot create");
        std::string lines;
        uint64_t written = 0;
        for (auto& [key, place] : places_) {
            const std::string line = lineAt(place);
            place = {true, written + lines.size()};
            lines += line;
            lines += '\n';
            if (lines.size() < 1 << 16) continue;
            writeDescriptor(file->get(), fresh, lines);
            written += lines.size();
            lines.clear();
        }
        writeDescriptor(file->get(), fresh, lines);
        if (rename(fresh.c_str(), knownFile_.c_str()) != 0) failWith(knownFile_, "cannot replace");
        known_ = std::move(file);
    }
    if (ftruncate(opened_->get(), static_cast<off_t>(size_)) != 0 ||
        lseek(opened_->get(), static_cast<off_t>(size_), SEEK_SET) < 0) {
        failWith(file_, "cannot write to");
    }
}

void Manifest::flush() {
    if (!pending_.empty()) writeDescriptor(opened_->get(), file_, pending_);
    pending_.clear();
}

void Manifest::finish() {
    flush();
    if (isStream_) return;
    if (isSame_ && ftruncate(opened_->get(), static_cast<off_t>(size_)) != 0) {
        failWith(file_, "cannot write to");
    }
    unlink(knownFile_.c_str());
}

}  // namespace gxtext
