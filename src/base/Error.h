// The calling thread's last error code.
//
// Every operation of the text, font and foundation classes that fails says so by its return value
// and records one of these codes. A success never clears the code.
#pragma once

#include "GxExport.h"

namespace GxFontEffect {

// What the recorded numbers mean.
enum GxErrorCode : int {
    GXE_ERROR_NONE = 0,
    GXE_ERROR_SYSTEM = 1,               // an operating-system primitive failed
    GXE_ERROR_TRAVERSAL_LIMIT = 2,      // too many traversals open on one list
    GXE_ERROR_OUT_OF_RANGE = 3,         // index out of range
    GXE_ERROR_ALREADY_CONSTRUCTED = 4,  // Construct called twice
    GXE_ERROR_INVALID_ARGUMENT = 7,     // null or empty argument, bad length, unusable path
    GXE_ERROR_NOT_CONSTRUCTED = 8,      // operation before a successful Construct
    GXE_ERROR_NOT_FOUND = 9,            // no such item or handle
    GXE_ERROR_FILE_OPEN = 11,           // file could not be opened
    GXE_ERROR_NOT_BOUND = 19,           // no text object bound to the Java object
};

// Thread-safe: each thread has a code of its own.
class GXTEXT_API Error {
public:
    // Records the low 32 bits of `code` for the calling thread.
    static void SetError(unsigned long code);

    // The code last recorded on the calling thread; 0 if it never failed.
    static int GetError();
};

}  // namespace GxFontEffect
