// The files of a studio: those that the user opened, dropped into the page or saved, and no others.
#pragma once

#include <filesystem>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "style/Error.h"

namespace gxstudio {

// Something that the user has to decide: a file is not what the page takes it for.
class Conflict : public gxtext::Error {
public:
    using gxtext::Error::Error;
};

// Styles lie in one folder and go by their plain names. What is dropped is kept in a folder of the
// session until a style that uses it is saved. Errors are gxtext::Error. Safe from any thread.
class Files {
public:
    static constexpr size_t kMaxDropped = size_t{64} << 20;

    // `folder` has the styles, `session` is private to this studio; what an earlier server of it
    // knew is known again.
    Files(std::filesystem::path folder, std::filesystem::path session);

    const std::filesystem::path& folder() const { return folder_; }
    // The style's path, whether or not it is there. Throws for what is no plain name of a style.
    std::filesystem::path pathOf(const std::string& name) const;
    // Names of the styles in the folder.
    std::vector<std::string> styles() const;
    // A style file's text. What it names may be read from now on.
    std::string open(const std::string& name);
    // By which a change is told; empty where there is no such file.
    std::string versionOf(const std::string& name) const;
    // Replaces the file if it is still the version that the page knows, with the dropped files that
    // the style uses beside it. Returns the new version. Throws Conflict.
    std::string save(const std::string& name, const std::string& text, const std::string& version);
    // Keeps a dropped file under its name, with another one in its place where that is taken by
    // other bytes. Returns the name.
    std::string keep(const std::string& name, std::string_view bytes);
    // A file as long as this lives.
    class Passing {
    public:
        explicit Passing(std::filesystem::path path) : path_(std::move(path)) {}
        Passing(const Passing&) = delete;
        Passing& operator=(const Passing&) = delete;
        ~Passing();
        const std::filesystem::path& path() const { return path_; }

    private:
        const std::filesystem::path path_;
    };
    // Bytes for a worker to read once; no style may use them.
    Passing pass(std::string_view bytes);
    // Names with the places of the files.
    nlohmann::ordered_json places() const;
    // What the page was at; beside the style. Empty text removes it.
    void remember(const std::string& name, const std::string& text);
    std::string remembered(const std::string& name) const;

private:
    void allow(const std::string& name, const std::filesystem::path& place);
    void allowFilesOf(const std::string& text);
    void storePlaces() const;
    std::filesystem::path memoryOf(const std::string& name) const;

    const std::filesystem::path folder_;
    const std::filesystem::path session_;
    mutable std::mutex lock_;
    unsigned passed_ = 0;
    nlohmann::ordered_json places_ = nlohmann::ordered_json::object();
};

}  // namespace gxstudio
