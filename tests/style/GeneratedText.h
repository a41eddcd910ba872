// Texts in the repository that are written by the tests: from the field table, or from an import.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace gxtest {

inline std::string readText(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Compares a file of the repository with what it has to be, line by line. With GXTEXT_UPDATE_GOLDEN
// set in the environment the file is replaced and the test fails all the same.
inline void expectFile(const std::string& path, const std::string& wanted) {
    const std::string found = readText(path);
    if (found == wanted) return;
    if (std::getenv("GXTEXT_UPDATE_GOLDEN")) {
        std::ofstream(path, std::ios::binary) << wanted;
        FAIL() << "replaced, look at it: " << path;
    }
    std::istringstream a(found);
    std::istringstream b(wanted);
    std::string is;
    std::string should;
    while (std::getline(b, should) && std::getline(a, is) && is == should) {
    }
    FAIL() << path
           << " is not what is made any more; GXTEXT_UPDATE_GOLDEN=1 writes it anew.\n  is:     "
           << is << "\n  should: " << should;
}

}  // namespace gxtest
