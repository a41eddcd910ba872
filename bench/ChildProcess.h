// Programs that are started, for what they cost.
#pragma once

#include <string>
#include <vector>

namespace gxbench {

// Seconds of processor time that the program took, user and system, from its start to its end; its
// output is thrown away. The first word is found in PATH. Below 0 when it cannot be run or fails.
double cpuSeconds(const std::vector<std::string>& command);

}  // namespace gxbench
