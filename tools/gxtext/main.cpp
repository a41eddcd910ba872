#ifdef __linux__
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <cstdint>
#include <cstdlib>

#include "CommandLine.h"
#include "LibraryLog.h"

namespace {

// Fetching pages is half of what a short command takes. The allocator keeps a few megabytes for
// what follows instead of giving their pages back each time, and begins with a large page, which
// comes at once in the place of four hundred small ones.
void prepareHeap() {
#ifdef M_MMAP_THRESHOLD
    constexpr int kMegabyte = 1 << 20;
    mallopt(M_MMAP_THRESHOLD, 4 * kMegabyte);
    mallopt(M_TRIM_THRESHOLD, 16 * kMegabyte);
#ifdef MADV_HUGEPAGE
    constexpr uintptr_t kLargePage = uintptr_t{2} << 20;
    const auto end = reinterpret_cast<uintptr_t>(sbrk(0));
    const uintptr_t page = (end + kLargePage - 1) / kLargePage * kLargePage;
    mallopt(M_TOP_PAD, 3 * kMegabyte);
    static void* const volatile before = std::malloc(page - end);  // never touched
    static_cast<void>(before);
    madvise(reinterpret_cast<void*>(page), kLargePage, MADV_HUGEPAGE);
#endif
    mallopt(M_TOP_PAD, kMegabyte);
#endif
}

}  // namespace

int main(int argc, char** argv) {
    prepareHeap();
    unsetenv("HB_OPTIONS");  // HarfBuzz would join clusters, and spacing with them, another way
    return gxtool::run(argc, argv, gxtool::showLibraryLog);
}
