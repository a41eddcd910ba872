// The format in the form that editors and validators read.
#pragma once

#include <string>

#include "GxExport.h"

namespace gxtext {

// JSON Schema, draft 2020-12, of a style file, written from the field table; `x-unit` and
// `x-control` are its hints. src/style/style.schema.json is this text.
GXTEXT_API std::string styleSchema();

}  // namespace gxtext
