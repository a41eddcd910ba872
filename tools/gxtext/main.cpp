#include <cstdlib>

#include "CommandLine.h"
#include "LibraryLog.h"

int main(int argc, char** argv) {
    unsetenv("HB_OPTIONS");  // HarfBuzz would join clusters, and spacing with them, another way
    return gxtool::run(argc, argv, gxtool::showLibraryLog);
}
