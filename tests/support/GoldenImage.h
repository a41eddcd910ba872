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

// Compares with tests/golden/<name>.png. On a difference expected | difference | actual is written
// as one picture into the test's working folder and named in the message. With GXTEXT_UPDATE_GOLDEN
// set in the environment the golden is replaced and the test fails all the same, so that a new
// golden is always looked at.
testing::AssertionResult matchesGolden(const Image& actual, const std::string& name);

}  // namespace gxtest
