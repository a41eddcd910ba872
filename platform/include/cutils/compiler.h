// The export macro: everything here is built with hidden symbols, and a shared library shows what
// carries it, so that those on top of it can use it.
#pragma once

#define ANDROID_API __attribute__((visibility("default")))
