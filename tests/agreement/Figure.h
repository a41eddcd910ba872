// Counts of one comparison, printed for the table in platform/README.md.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

namespace gxtest {

// Prints its line when it goes out of scope.
struct Figure {
    explicit Figure(std::string comparison) : name(std::move(comparison)) {}
    ~Figure() {
        std::printf("agreement: %s: %llu compared, %llu differ%s\n", name.c_str(),
                    static_cast<unsigned long long>(compared),
                    static_cast<unsigned long long>(differing), note.c_str());
    }
    Figure(const Figure&) = delete;
    Figure& operator=(const Figure&) = delete;

    // Counts one more and says whether it is the same.
    bool add(bool same) {
        ++compared;
        if (!same) ++differing;
        return same;
    }

    std::string name;
    uint64_t compared = 0;
    uint64_t differing = 0;
    std::string note;  // goes behind the counts
};

}  // namespace gxtest
