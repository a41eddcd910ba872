#include "base/Error.h"

#include <cstdint>

namespace GxFontEffect {

namespace {
thread_local int32_t tls_error = 0;
}  // namespace

void Error::SetError(unsigned long code) {
    tls_error = static_cast<int32_t>(code);
}

int Error::GetError() {
    return tls_error;
}

}  // namespace GxFontEffect
