// Owning pointers of HarfBuzz objects.
#pragma once

#include <hb.h>

#include <memory>

namespace minikin {

template <auto destroy>
struct HbDeleter {
    template <typename T>
    void operator()(T* object) const {
        destroy(object);
    }
};

using HbBlobUniquePtr = std::unique_ptr<hb_blob_t, HbDeleter<hb_blob_destroy>>;
using HbFaceUniquePtr = std::unique_ptr<hb_face_t, HbDeleter<hb_face_destroy>>;
using HbFontUniquePtr = std::unique_ptr<hb_font_t, HbDeleter<hb_font_destroy>>;
using HbBufferUniquePtr = std::unique_ptr<hb_buffer_t, HbDeleter<hb_buffer_destroy>>;
using HbSetUniquePtr = std::unique_ptr<hb_set_t, HbDeleter<hb_set_destroy>>;

}  // namespace minikin
