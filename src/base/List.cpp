#include "base/List.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "base/Error.h"

namespace GxFontEffect {

namespace {

struct Node {
    Node* previous = nullptr;
    Node* next = nullptr;
    void* item = nullptr;
};

struct Cursor {
    bool open = false;
    Node* node = nullptr;  // null past the end
};

constexpr int kNoIndex = -1;

// The class is silent in the log: lists are walked in loops that end by failing.
bool Fail(GxErrorCode code) {
    Error::SetError(static_cast<unsigned long>(code));
    return false;
}

}  // namespace

// A chain of nodes, its cursors and one remembered place. `cached` is null or the node at
// `cachedIndex`; it is only where a walk may start, so every operation that shifts indices keeps
// the pair true or drops it.
class ListImpl {
public:
    ListImpl() = default;
    ListImpl(const ListImpl&) = delete;
    ListImpl& operator=(const ListImpl&) = delete;
    ~ListImpl() { FreeNodes(); }

    bool Append(void* item) { return Insert(item, count); }
    bool Insert(void* item, int index);
    // Appends copies of the first `wanted` nodes from `node` on, or nothing.
    bool AppendCopies(const Node* node, int wanted);
    void Splice(ListImpl& other);
    void Unlink(Node* node, int index);
    void Clear();

    Node* NodeAt(int index) const;
    int IndexOf(const void* item) const;
    Cursor* Find(long cookie);

    void Remember(Node* node, int index) {
        cached = node;
        cachedIndex = node ? index : kNoIndex;
    }

    Node* head = nullptr;
    Node* tail = nullptr;
    int32_t count = 0;
    Cursor cursors[List::kMaxTraversals];
    Node* cached = nullptr;
    int32_t cachedIndex = kNoIndex;

private:
    void FreeNodes();
};

bool ListImpl::Insert(void* item, int index) {
    if (count == INT_MAX) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    Node* before = index < count ? NodeAt(index) : nullptr;
    Node* node = new (std::nothrow) Node;
    if (!node) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    node->item = item;
    node->next = before;
    node->previous = before ? before->previous : tail;
    (node->previous ? node->previous->next : head) = node;
    (before ? before->previous : tail) = node;
    if (count++ == 0) {
        Remember(node, 0);
    } else if (cached && index <= cachedIndex) {
        cachedIndex++;
    }
    return true;
}

bool ListImpl::AppendCopies(const Node* node, int wanted) {
    ListImpl copies;
    for (; wanted > 0; wanted--, node = node->next) {
        if (!copies.Append(node->item)) return false;
    }
    if (copies.count > INT_MAX - count) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    Splice(copies);
    return true;
}

// Moves the nodes of `other` to the end.
void ListImpl::Splice(ListImpl& other) {
    if (!other.head) return;
    if (!head) Remember(other.head, 0);
    (tail ? tail->next : head) = other.head;
    other.head->previous = tail;
    tail = other.tail;
    count += other.count;
    other.head = other.tail = nullptr;
}

void ListImpl::Unlink(Node* node, int index) {
    bool moved = false;
    for (Cursor& cursor : cursors) {
        if (!cursor.open || cursor.node != node) continue;
        cursor.node = moved ? nullptr : node->next;
        moved = true;
    }
    (node->previous ? node->previous->next : head) = node->next;
    (node->next ? node->next->previous : tail) = node->previous;
    if (cached == node) {
        Remember(node->next, index);
    } else if (cached && index < cachedIndex) {
        cachedIndex--;
    }
    count--;
    delete node;
}

void ListImpl::Clear() {
    FreeNodes();
    head = tail = nullptr;
    count = 0;
    Remember(nullptr, kNoIndex);
    for (Cursor& cursor : cursors) cursor.node = nullptr;
}

void ListImpl::FreeNodes() {
    for (Node* node = head; node;) {
        Node* next = node->next;
        delete node;
        node = next;
    }
}

// 0 <= index < count.
Node* ListImpl::NodeAt(int index) const {
    Node* node = head;
    int at = 0;
    if (count - 1 - index < index) {
        node = tail;
        at = count - 1;
    }
    if (cached && std::abs(index - cachedIndex) < std::abs(index - at)) {
        node = cached;
        at = cachedIndex;
    }
    for (; at < index; at++) node = node->next;
    for (; at > index; at--) node = node->previous;
    return node;
}

int ListImpl::IndexOf(const void* item) const {
    int index = 0;
    for (const Node* node = head; node; node = node->next, index++) {
        if (node->item == item) return index;
    }
    return kNoIndex;
}

Cursor* ListImpl::Find(long cookie) {
    for (Cursor& cursor : cursors) {
        if (cursor.open && reinterpret_cast<long>(&cursor) == cookie) return &cursor;
    }
    return nullptr;
}

namespace {

// The open cursor of a cookie, or null with the code recorded.
Cursor* Open(const std::unique_ptr<ListImpl>& impl, long cookie) {
    Cursor* cursor = impl ? impl->Find(cookie) : nullptr;
    if (!cursor) Fail(impl ? GXE_ERROR_INVALID_ARGUMENT : GXE_ERROR_NOT_CONSTRUCTED);
    return cursor;
}

// A cursor that is past the end starts again, with code 9; otherwise it takes one step. The
// remembered place goes along when it is the cursor's own.
bool Step(const std::unique_ptr<ListImpl>& impl, long cookie, Node* Node::*link, int direction) {
    Cursor* cursor = Open(impl, cookie);
    if (!cursor) return false;
    if (!cursor->node) {
        cursor->node = impl->head;
        return Fail(GXE_ERROR_NOT_FOUND);
    }
    Node* reached = cursor->node->*link;
    if (impl->cached == cursor->node && reached) {
        impl->Remember(reached, impl->cachedIndex + direction);
    }
    cursor->node = reached;
    return true;
}

}  // namespace

List::List() = default;
List::~List() = default;

bool List::Construct() {
    if (impl_) return Fail(GXE_ERROR_ALREADY_CONSTRUCTED);
    impl_.reset(new (std::nothrow) ListImpl);
    return impl_ || Fail(GXE_ERROR_INVALID_ARGUMENT);
}

bool List::Construct(const List* other) {
    if (impl_) return Fail(GXE_ERROR_ALREADY_CONSTRUCTED);
    if (!other || !other->impl_) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    if (Construct() && Add(other)) return true;
    impl_.reset();
    return false;
}

bool List::Construct(void* const* items, int count) {
    if (impl_) return Fail(GXE_ERROR_ALREADY_CONSTRUCTED);
    if (!items || count < 0) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    bool ok = Construct();
    for (int i = 0; ok && i < count; i++) ok = Add(items[i]);
    if (!ok) impl_.reset();
    return ok;
}

bool List::Add(void* item) {
    return impl_ ? impl_->Append(item) : Fail(GXE_ERROR_NOT_CONSTRUCTED);
}

bool List::Add(const List* other) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED);
    if (!other || !other->impl_) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    return impl_->AppendCopies(other->impl_->head, other->impl_->count);
}

bool List::Insert(void* item, int index) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED);
    if (index < 0) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    return impl_->Insert(item, index);
}

bool List::Remove(void* item) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED);
    if (!item || impl_->count == 0) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    const int index = impl_->IndexOf(item);
    return index < 0 || Remove(index);
}

bool List::Remove(int index) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED);
    if (index < 0 || index >= impl_->count) return Fail(GXE_ERROR_OUT_OF_RANGE);
    impl_->Unlink(impl_->NodeAt(index), index);
    return true;
}

bool List::Remove(int index, int count) {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED);
    if (index < 0 || index >= impl_->count || count < 0 || count > impl_->count) {
        return Fail(GXE_ERROR_OUT_OF_RANGE);
    }
    for (; count > 0 && index < impl_->count; count--) Remove(index);
    return true;
}

bool List::RemoveAll() {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED);
    impl_->Clear();
    return true;
}

int List::GetCount() const {
    if (impl_) return impl_->count;
    Fail(GXE_ERROR_NOT_CONSTRUCTED);
    return -1;
}

void* List::Get(int index) const {
    if (impl_ && index >= 0 && index < impl_->count) return impl_->NodeAt(index)->item;
    Fail(impl_ ? GXE_ERROR_OUT_OF_RANGE : GXE_ERROR_NOT_CONSTRUCTED);
    return nullptr;
}

int List::GetIndex(const void* item) const {
    const int index = impl_ ? impl_->IndexOf(item) : kNoIndex;
    if (index < 0) Fail(impl_ ? GXE_ERROR_NOT_FOUND : GXE_ERROR_NOT_CONSTRUCTED);
    return index;
}

bool List::IsContained(const void* item) const {
    return impl_ ? impl_->IndexOf(item) >= 0 : Fail(GXE_ERROR_NOT_CONSTRUCTED);
}

bool List::IsContained(const List* other) const {
    if (!impl_) return Fail(GXE_ERROR_NOT_CONSTRUCTED);
    if (!other || !other->impl_) return Fail(GXE_ERROR_INVALID_ARGUMENT);
    for (const Node* node = other->impl_->head; node; node = node->next) {
        if (impl_->IndexOf(node->item) < 0) return false;
    }
    return true;
}

long List::BeginTraversal() {
    if (!impl_) {
        Fail(GXE_ERROR_NOT_CONSTRUCTED);
        return -1;
    }
    for (Cursor& cursor : impl_->cursors) {
        if (cursor.open) continue;
        cursor = {true, impl_->head};
        impl_->Remember(impl_->head, 0);
        return reinterpret_cast<long>(&cursor);
    }
    Fail(GXE_ERROR_TRAVERSAL_LIMIT);
    return -1;
}

void* List::GetData(long cookie) const {
    const Cursor* cursor = Open(impl_, cookie);
    return cursor && cursor->node ? cursor->node->item : nullptr;
}

bool List::NextData(long cookie) {
    return Step(impl_, cookie, &Node::next, 1);
}

bool List::PrevData(long cookie) {
    return Step(impl_, cookie, &Node::previous, -1);
}

bool List::MoveFirst(long cookie) {
    Cursor* cursor = Open(impl_, cookie);
    if (cursor) cursor->node = impl_->head;
    return cursor != nullptr;
}

bool List::MoveLast(long cookie) {
    Cursor* cursor = Open(impl_, cookie);
    if (cursor) cursor->node = impl_->tail;
    return cursor != nullptr;
}

bool List::Move(long cookie, int index) {
    Cursor* cursor = Open(impl_, cookie);
    if (!cursor) return false;
    if (index < 0 || index >= impl_->count) return Fail(GXE_ERROR_OUT_OF_RANGE);
    cursor->node = impl_->NodeAt(index);
    impl_->Remember(cursor->node, index);
    return true;
}

bool List::EndTraversal(long cookie) {
    Cursor* cursor = Open(impl_, cookie);
    if (!cursor) return false;
    *cursor = {};
    impl_->Remember(nullptr, kNoIndex);
    return true;
}

}  // namespace GxFontEffect
