// What came of each row, as JSON lines in the order of the rows.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Descriptor.h"

namespace gxtext {

// Written line by line while a batch runs; a batch that was killed finds in it what it need not do
// again. What a killed one left undone at its end is cut off.
//
// Lines that are as they were are left alone. From the first that is not, the file is written anew;
// what it knew of the rows to come lies in FILE.known until the batch ends. Whatever is killed
// when, the two together know all that was known.
//
// Standard output and what is no regular file are only written to. For one thread.
class Manifest {
public:
    // "-" is standard output. `keeps` is whether what the file has is of use. Throws FileError when
    // it cannot be opened, is something else than a manifest, or is in use by another batch.
    Manifest(const std::string& file, bool keeps);
    Manifest(const Manifest&) = delete;
    Manifest& operator=(const Manifest&) = delete;
    ~Manifest();

    // The line of an earlier batch for a picture of this name; empty when there is none.
    std::string known(const std::string& output) const;
    // Adds the next line, without its line break; written by flush(). Throws FileError.
    void append(const std::string& line);
    void flush();
    // All rows are in.
    void finish();
    // In a forked process: lets go of the files, so that they are free when the batch ends.
    void release();

private:
    using Key = std::array<uint64_t, 2>;
    // Where a line lies.
    struct Place {
        bool inKnown = false;  // or in the manifest
        uint64_t offset = 0;
    };

    void open(bool keeps);
    void remember(int descriptor, bool inKnown);
    std::string lineAt(const Place& place) const;
    void diverge();

    const std::string file_;
    const std::string knownFile_;
    std::unique_ptr<GxFontEffect::Descriptor> opened_;
    std::unique_ptr<GxFontEffect::Descriptor> known_;
    bool isStream_ = false;
    bool isSame_ = false;  // up to here the file is as it was
    uint64_t size_ = 0;    // of the lines that count
    std::string pending_;
    std::map<Key, Place> places_;
};

}  // namespace gxtext
