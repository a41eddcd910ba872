// Which instruction set the kernels run on. They choose the best one by themselves; tests and
// benchmarks look and force another.
#pragma once

#include <string>
#include <vector>

namespace GxFontEffect::kernels {

// Sets that are built in and that this machine has, best first: "AVX3" (AVX-512), "AVX2", "SSE4",
// "NEON", "plain".
std::vector<std::string> simdTargetNames();

// The one that kernels run on now.
std::string simdTargetName();

// Makes all kernels of the process run on the named set, which must be one of simdTargetNames(); an
// empty name gives the choice back. Not while another thread runs a kernel.
void forceSimdTarget(const std::string& name);

// Whether a kernel has asked for its set since forceSimdTarget; always true when only one is built.
bool hasDispatchedSimd();

}  // namespace GxFontEffect::kernels
