// What the parts of the extension share.
#pragma once

#include <nanobind/nanobind.h>
#include <nanobind/stl/string.h>

#include <string_view>

#include "ForkGate.h"
#include "scene/Arrangement.h"
#include "scene/Picture.h"

namespace gxpython {

namespace nb = nanobind;

// Long work: other Python threads run, and a fork waits for its end.
class LongWork {
    nb::gil_scoped_release released_;
    ForkGate::Pass pass_;
};

// The exceptions of gxtext/_errors.py for those of the library.
void registerErrors();

void bindStyle(nb::module_& module);
void bindPicture(nb::module_& module);
void bindRenderer(nb::module_& module);

// Text of whatever bytes; those that are no UTF-8 become U+FFFD.
nb::str textOf(std::string_view utf8);
// A new picture, which Python owns.
nb::object toPython(gxtext::Picture&& picture);
// A tuple of its fields, gxtext/_values.py's Arrangement.
nb::object toPython(const gxtext::Arrangement& arrangement);

}  // namespace gxpython
