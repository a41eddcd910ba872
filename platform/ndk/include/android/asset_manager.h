// Files that an application is shipped with.
#pragma once

#include <sys/types.h>

#include <cstddef>

struct AAssetManager;
struct AAsset;

// How the caller means to read. All modes read the same here.
enum {
    AASSET_MODE_UNKNOWN = 0,
    AASSET_MODE_RANDOM = 1,
    AASSET_MODE_STREAMING = 2,
    AASSET_MODE_BUFFER = 3,
};

extern "C" {

// Null when there is no such asset. `filename` is UTF-8.
AAsset* AAssetManager_open(AAssetManager* manager, const char* filename, int mode);

off_t AAsset_getLength(AAsset* asset);

// Copies up to `count` bytes from where the last read ended and returns their number: 0 at the end,
// negative on an error.
int AAsset_read(AAsset* asset, void* buffer, size_t count);

void AAsset_close(AAsset* asset);

}  // extern "C"
