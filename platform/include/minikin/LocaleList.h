// Process-wide table of locale lists.
#pragma once

#include <cutils/compiler.h>

#include <cstdint>
#include <string>

namespace minikin {

// Id of a comma-separated list of BCP 47 tags, e.g. "zh-Hant,zh-Bopo". Ids count from 1 in order of
// registration; the very same string gives the same id, a differently written one another. 0 for
// the empty string and for a list without any well-formed tag. Safe from any thread.
ANDROID_API uint32_t registerLocaleList(const std::string& locales);

}  // namespace minikin
