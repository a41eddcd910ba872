// What goes wrong between a style and its picture.
#pragma once

#include <string>

#include "GxExport.h"
#include "style/Error.h"

namespace gxtext {

// what() is "PLACE: REASON; allowed: ALLOWED".
class GXTEXT_API SceneError : public Error {
public:
    // File, family, or part of the text that the mistake lies in.
    const std::string& place() const { return place_; }
    const std::string& reason() const { return reason_; }
    // What would do instead; empty where the reason says it all.
    const std::string& allowed() const { return allowed_; }

protected:
    SceneError(const std::string& place, const std::string& reason, const std::string& allowed)
        : Error(place + ": " + reason + (allowed.empty() ? "" : "; allowed: " + allowed)),
          place_(place),
          reason_(reason),
          allowed_(allowed) {}

private:
    std::string place_;
    std::string reason_;
    std::string allowed_;
};

// A font that is not there or cannot be used.
class GXTEXT_API FontError : public SceneError {
public:
    FontError(const std::string& place, const std::string& reason, const std::string& allowed = {})
        : SceneError(place, reason, allowed) {}
};

// A text that is missing or malformed, or whose lines are too long or too many.
class GXTEXT_API TextError : public SceneError {
public:
    TextError(const std::string& place, const std::string& reason, const std::string& allowed = {})
        : SceneError(place, reason, allowed) {}
};

// A file that cannot be read or written.
class GXTEXT_API FileError : public SceneError {
public:
    FileError(const std::string& place, const std::string& reason, const std::string& allowed = {})
        : SceneError(place, reason, allowed) {}
};

// A picture that is too large, empty or damaged.
class GXTEXT_API PictureError : public SceneError {
public:
    PictureError(const std::string& place, const std::string& reason,
                 const std::string& allowed = {})
        : SceneError(place, reason, allowed) {}
};

}  // namespace gxtext
