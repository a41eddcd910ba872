// How the program fails: a message for stderr and an exit status.
#pragma once

#include <string>

#include "style/Error.h"

namespace gxtool {

enum ExitStatus : int {
    kOk = 0,
    kFailure = 1,   // the input or the machine: unreadable file, wrong style, no font
    kUsage = 2,     // the command line
    kSomeRows = 3,  // some rows of a batch have no picture
};

// Thrown anywhere, caught once by run(), which prints "gxtext: " and the message.
class ToolError : public gxtext::Error {
public:
    explicit ToolError(const std::string& message, ExitStatus status = kFailure)
        : gxtext::Error(message), status(status) {}

    ExitStatus status;
};

}  // namespace gxtool
