// Runs the program under test.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace gxtest {

struct Outcome {
    int status = -1;  // exit status; 128 + signal when killed
    std::string out;
    std::string err;
};

// Runs the gxtext program of this build with `input` on its standard input and waits for its end.
Outcome runGxtext(const std::vector<std::string>& arguments, const std::string& input = "");

// Runs a script in a shell, in the folder; the program is called gxtext there, and
// "$program" where another one is to run it.
Outcome runShell(const std::string& script, const std::string& folder);

// runGxtext with standard output on a pseudo-terminal; `out` stays empty. Nothing where the machine
// has none to give.
std::optional<Outcome> runGxtextOnTerminal(const std::vector<std::string>& arguments);

}  // namespace gxtest
