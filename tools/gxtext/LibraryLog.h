// The library's log lines, kept off the terminal unless wanted.
#pragma once

namespace gxtool {

// Off at first.
void showLibraryLog(bool show);

}  // namespace gxtool
