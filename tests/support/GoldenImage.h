// Pictures kept as PNG files in tests/golden: what a render must equal to the byte.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace gxtest {

// Straight alpha, 0xAARRGGBB words, rows packed.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
    bool operator==(const Image&) const = default;
};

bool readPng(const std::string& path, Image& image);
bool writePng(const std::string& path, const Image& image);

// Compares with tests/golden/<name>.png. What differs is written as <name>.png into the test's
// working folder; into the folder GXTEXT_GOLDEN_OUT of the environment every picture is
// (scripts/goldens).
testing::AssertionResult matchesGolden(const Image& actual, const std::string& name);

}  // namespace gxtest
