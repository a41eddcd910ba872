#ifdef __linux__
#include <malloc.h>
#endif

#include <cstdlib>

#include "CommandLine.h"
#include "LibraryLog.h"

namespace {

// The allocator keeps a few megabytes for what follows instead of giving their pages back each time,
// and has more than it needs: fetching pages is half of what a command takes.
void keepPages() {
#ifdef M_MMAP_THRESHOLD
    mallopt(M_MMAP_THRESHOLD, 4 << 20);
    mallopt(M_TRIM_THRESHOLD, 16 << 20);
    mallopt(M_TOP_PAD, 1 << 20);
#endif
}

}  // namespace

int main(int argc, char** argv) {
    keepPages();
    unsetenv("HB_OPTIONS");  // HarfBuzz would join clusters, and spacing with them, another way
    return gxtool::run(argc, argv, gxtool::showLibraryLog);
}
