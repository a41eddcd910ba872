// What is said about a command line that cannot be parsed.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace gxtool {

// The reason, with what may have been meant or what is allowed, and a line that says where help is.
// `app` is the program after the parsing that threw `error`.
std::string usageMessage(const CLI::App& app, const CLI::ParseError& error);

}  // namespace gxtool
