// Export macro: the libraries are built with hidden symbols, so the classes meant for native
// callers carry it.
#pragma once

#define GXTEXT_API __attribute__((visibility("default")))
