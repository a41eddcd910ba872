// How the classes that record error codes report a failure. Internal to the library.
#pragma once

#include <exception>

#include "base/Error.h"

namespace GxFontEffect {

// Logs "@ Native Error <code> : <site>" at error priority under `tag` (the class that failed), then
// records `code` for the calling thread. `site` names the failing check: a number that stays the
// same and is unique within its source file. Always false, so that a check can end in `return
// ReportNativeError(...)`.
bool ReportNativeError(const char* tag, GxErrorCode code, int site);

// The result of `body`, a bool. An exception, which in these classes means that memory has run out
// inside the standard library or the platform, is reported instead, with code 7: false.
template <typename Body>
bool GuardMemory(const char* tag, int site, Body body) {
    try {
        return body();
    } catch (const std::exception&) {
        return ReportNativeError(tag, GXE_ERROR_INVALID_ARGUMENT, site);
    }
}

}  // namespace GxFontEffect
