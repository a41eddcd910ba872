// Processes that fork while other threads render.
#pragma once

namespace gxpython {

// A child has the locks of its parent as they were, but only the thread that forked: one held by
// another thread would never be released. So a fork waits until nobody is inside the library, and
// nobody enters until it is done.
class ForkGate {
public:
    // Inside the library as long as it lives. Not for a thread that holds the interpreter's lock,
    // which the forking one has.
    class Pass {
    public:
        Pass();
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;
        ~Pass();
    };

    // Called in this order by the thread that forks, openInChild() in the child.
    static void close();
    static void openInParent();
    static void openInChild();
};

}  // namespace gxpython
