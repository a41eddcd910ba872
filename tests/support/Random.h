// Random input with a seed that a failing run can be repeated with.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace gxtest {

// The seed is GXTEXT_TEST_SEED from the environment, else the one given; a failure message carries
// it as long as `trace` lives in the test's scope.
class Random {
public:
    explicit Random(uint32_t seed = 1) : seed_(seedOr(seed)), engine_(seed_) {}

    uint32_t seed() const { return seed_; }
    // low to high, both included.
    int between(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(engine_);
    }
    uint8_t byte() { return static_cast<uint8_t>(engine_()); }
    uint32_t word() { return engine_(); }
    bool oneIn(int n) { return between(1, n) == 1; }

    // A byte that favours the ends, where the special cases are.
    uint8_t edgeByte() {
        switch (between(0, 5)) {
            case 0:
                return 0;
            case 1:
                return 255;
            case 2:
                return static_cast<uint8_t>(oneIn(2) ? 1 : 254);
            default:
                return byte();
        }
    }
    std::vector<uint8_t> edgeBytes(size_t count) {
        std::vector<uint8_t> bytes(count);
        for (uint8_t& b : bytes) b = edgeByte();
        return bytes;
    }

private:
    static uint32_t seedOr(uint32_t seed) {
        const char* given = std::getenv("GXTEXT_TEST_SEED");
        return given ? static_cast<uint32_t>(std::strtoul(given, nullptr, 0)) : seed;
    }

    uint32_t seed_;
    std::mt19937 engine_;
};

#define GX_TRACE_SEED(random) SCOPED_TRACE("GXTEXT_TEST_SEED=" + std::to_string((random).seed()))

}  // namespace gxtest
