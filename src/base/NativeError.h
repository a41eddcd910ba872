// How the classes that record error codes report a failure. Internal to the library.
#pragma once

#include "base/Error.h"

namespace GxFontEffect {

// Logs "@ Native Error <code> : <site>" at error priority under `tag` (the class that failed), then
// records `code` for the calling thread. `site` names the failing check: a number that stays the
// same and is unique within its source file. Always false, so that a check can end in `return
// ReportNativeError(...)`.
bool ReportNativeError(const char* tag, GxErrorCode code, int site);

}  // namespace GxFontEffect
