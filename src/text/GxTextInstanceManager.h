// The process-wide registry of text objects: handles, bindings and deferred deletion.
#pragma once

#include "GxExport.h"

namespace GxFontEffect {

class GxTextObject;

// Gives each text object a small number (the handle that Java keeps), finds objects by it, counts
// the Java objects bound to each and hands an object to the release callback when its last binding
// goes.
//
// Whoever finds an object by its handle and goes on to use it holds it meanwhile: it may lose its
// last binding at any time, also by what the user itself calls. Holding is no binding; deletion
// waits for it.
//
// Pointers are keys here, never followed; only the callback deletes. Every operation holds one
// re-entrant lock for its whole duration, the callback included, so an object may unregister itself
// while it is deleted. Failures are logged under the tag "GxTextInstanceManager". When memory runs
// out an operation changes nothing and records code 7.
class GXTEXT_API GxTextInstanceManager {
public:
    // What deletes an object. Null (at first) deletes nothing.
    static void SetCallBack(void (*callback)(GxTextObject*));

    // The object's handle, a new one on first sight: 1, 2, ... and never reused. -1 with code 7 for
    // null.
    static int Register(GxTextObject* object);
    // Forgets the handle; an unknown one is ignored. Bindings are kept.
    static void Unregister(int handle);

    // One binding more. An object that waits for deletion is rescued. False with code 7 for null
    // and when memory runs out.
    static bool Bind(GxTextObject* object);
    // One binding less. With `deleteAtZero` the last one deletes the object, now or, after Lock, at
    // Unlock; without, the count may stay at 0, from where later releases only lower it. False with
    // code 9 for an object without bindings.
    static bool Release(GxTextObject* object, bool deleteAtZero);
    // Releases the object of this handle, deleting at zero. False with code 9 when the handle is
    // unknown.
    static bool Release(int handle);

    // From Lock to Unlock deletions wait; Unlock carries them out in order of release, but for
    // objects that are held. Other threads are not held up.
    static void Lock();
    static void Unlock();

    // The object of this handle, not deleted before the LetGo that belongs to this call: the last
    // one carries out a deletion that waits, unless Lock holds it back. Null, with nothing to let
    // go, when no object has this handle; says so in the log. Neither needs memory.
    static GxTextObject* Hold(int handle);
    static void LetGo(int handle);

    // -1 when the object is not registered.
    static int FindGxTextHandle(GxTextObject* object);
    // Null when no object has this handle; says so in the log.
    static GxTextObject* FindGxTextObject(int handle);
};

}  // namespace GxFontEffect
