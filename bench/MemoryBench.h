// What the process holds in a render, and while text objects come and go.
#pragma once

#include <string>

namespace gxbench {

// Tables: what a render holds at most, by picture; bytes on the heap and resident, after ever more
// titles that no title before was like. The filter is not looked at.
void printMemory(const std::string& filter);

}  // namespace gxbench
