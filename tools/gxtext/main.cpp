#include "CommandLine.h"
#include "LibraryLog.h"

int main(int argc, char** argv) {
    return gxtool::run(argc, argv, gxtool::showLibraryLog);
}
