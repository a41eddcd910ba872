// A place for files that other programs read and write.
#pragma once

#include <stdlib.h>  // mkdtemp

#include <filesystem>
#include <string>

namespace gxbench {

// A new folder, which goes with this.
class Workplace {
public:
    Workplace() {
        std::string name = std::filesystem::temp_directory_path() / "gxtext-bench-XXXXXX";
        if (mkdtemp(name.data())) folder_ = name;
    }
    ~Workplace() {
        std::error_code ignored;
        if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
    }
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    std::string file(const std::string& name) const { return folder_ / name; }

private:
    std::filesystem::path folder_;
};

}  // namespace gxbench
