#include "bridge/FontBytes.h"

#include <cstring>

#include "bridge/JniReferences.h"

namespace GxFontEffect {

FontBytes CopyFontBytes(JNIEnv* env, jbyteArray array) {
    const ArrayElements<jbyteArray> elements(env, array);
    if (!elements) return {};
    FontBytes bytes(static_cast<unsigned>(elements.length()));
    std::memcpy(bytes.data.get(), elements.get(), bytes.size);
    return bytes;
}

}  // namespace GxFontEffect
