// The program behind main().
#pragma once

#include <functional>

namespace gxtool {

// Runs the command line and returns the exit status. Data goes to standard output, words to
// standard error. `showLibraryLog` is called once with whether the library's log lines are wanted.
int run(int argc, char** argv, const std::function<void(bool)>& showLibraryLog);

}  // namespace gxtool
