// An ordered list of borrowed pointers with index access and cursors that survive removals.
#pragma once

#include <memory>

#include "GxExport.h"

namespace GxFontEffect {

class ListImpl;

// Doubly linked list of untyped pointers. It never owns its items: whoever empties or deletes the
// list takes care of them. Null items are allowed.
//
//     List list;
//     if (!list.Construct()) return false;
//     list.Add(item);
//     const long cursor = list.BeginTraversal();
//     for (void* data; (data = list.GetData(cursor)); list.NextData(cursor)) Use(data);
//     list.EndTraversal(cursor);
//
// Built in two steps: until a Construct succeeds every other operation fails with code 8. A failure
// returns false (or the value named below), records a code and leaves the list as it was; this
// class writes no log line. When memory runs out the code is 7. Nothing throws.
//
// Cursors: up to 10 open at a time, named by a cookie. A cursor stands on an item or past the end.
// A cookie that is not open on this list (0 and -1 among them) is code 7. When an item is removed
// the first opened slot's cursor on it moves to the next item; any further cursor on it falls past
// the end, so keep one.
//
// Access by index walks from the nearest of both ends and the place where the traversal was last.
// Not locked.
class GXTEXT_API List {
public:
    static constexpr int kMaxTraversals = 10;

    List();
    virtual ~List();
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    // Code 4 when already constructed; code 7, and still unconstructed, for a null or unconstructed
    // `other`, null `items` or a negative `count`.
    bool Construct();
    bool Construct(const List* other);
    bool Construct(void* const* items, int count);

    // Appends one item, or the items that `other` (this list included) holds now. Code 7 for a null
    // or unconstructed `other`.
    bool Add(void* item);
    bool Add(const List* other);
    // Puts the item before the one at `index`, or at the end when there is none. A negative index
    // is code 7.
    bool Insert(void* item, int index);

    // Removes the first such item; true also when there is none. Code 7 for null or on an empty
    // list.
    bool Remove(void* item);
    // Code 3 unless 0 <= index < count.
    bool Remove(int index);
    // Removes up to `count` items from `index` on, fewer when the list ends before. Code 3 unless
    // 0 <= index < items and 0 <= count <= items.
    bool Remove(int index, int count);
    // Removes every item; open cursors fall past the end.
    bool RemoveAll();

    // -1 when unconstructed.
    int GetCount() const;
    // Null with code 3 unless 0 <= index < count.
    void* Get(int index) const;
    // Index of the first such item; -1 with code 9 when there is none.
    int GetIndex(const void* item) const;
    bool IsContained(const void* item) const;
    // Whether every item of `other` is in this list. Code 7 for a null or unconstructed `other`.
    bool IsContained(const List* other) const;

    // A cursor on the first item. -1 with code 2 when 10 are open.
    long BeginTraversal();
    // The item under the cursor; null past the end.
    void* GetData(long cookie) const;
    // One step on or back; stepping off either end goes past the end and is true. From past the end
    // both return to the first item with code 9 and false.
    bool NextData(long cookie);
    bool PrevData(long cookie);
    bool MoveFirst(long cookie);
    bool MoveLast(long cookie);
    // Code 3 unless 0 <= index < count.
    bool Move(long cookie, int index);
    bool EndTraversal(long cookie);

private:
    std::unique_ptr<ListImpl> impl_;
};

}  // namespace GxFontEffect
