#include "Bindings.h"
#include "scene/SceneError.h"
#include "style/Error.h"

namespace gxpython {

namespace {

nb::object classOf(const char* name) {
    return nb::module_::import_("gxtext._errors").attr(name);
}

void raise(const nb::object& error) {
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
}

void raiseStyleError(const gxtext::StyleError& error) {
    const nb::object problemClass = classOf("StyleProblem");
    nb::list problems;
    for (const gxtext::StyleProblem& problem : error.problems()) {
        problems.append(
            problemClass(textOf(problem.path), textOf(problem.reason), textOf(problem.allowed)));
    }
    raise(classOf("StyleError")(textOf(error.what()), problems, error.total()));
}

void raiseSceneError(const char* name, const gxtext::SceneError& error) {
    raise(classOf(name)(textOf(error.what()), textOf(error.place()), textOf(error.reason()),
                        textOf(error.allowed())));
}

void translate(const std::exception_ptr& exception, void*) {
    try {
        std::rethrow_exception(exception);
    } catch (const gxtext::StyleError& error) {
        raiseStyleError(error);
    } catch (const gxtext::FontError& error) {
        raiseSceneError("FontError", error);
    } catch (const gxtext::TextError& error) {
        raiseSceneError("TextError", error);
    } catch (const gxtext::FileError& error) {
        raiseSceneError("FileError", error);
    } catch (const gxtext::PictureError& error) {
        raiseSceneError("PictureError", error);
    } catch (const gxtext::Error& error) {
        raise(classOf("Error")(textOf(error.what())));
    }
}

}  // namespace

nb::str textOf(std::string_view utf8) {
    return nb::steal<nb::str>(
        PyUnicode_DecodeUTF8(utf8.data(), static_cast<Py_ssize_t>(utf8.size()), "replace"));
}

void registerErrors() {
    nb::register_exception_translator(translate);
}

}  // namespace gxpython
