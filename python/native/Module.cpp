// The extension gxtext._native: the library's values and calls as they are. What Python's users see
// is put upon it in gxtext/.
#include "Bindings.h"

NB_MODULE(_native, module) {
    module.doc() = "The renderer behind gxtext";
    module.attr("version") = GXTEXT_VERSION;
    gxpython::registerErrors();
    gxpython::bindStyle(module);
    gxpython::bindPicture(module);
    gxpython::bindRenderer(module);
    module.def("before_fork", &gxpython::ForkGate::close);
    module.def("after_fork_in_parent", &gxpython::ForkGate::openInParent);
    module.def("after_fork_in_child", &gxpython::ForkGate::openInChild);
}
