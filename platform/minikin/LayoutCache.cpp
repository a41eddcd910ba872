#include "minikin/LayoutCache.h"

#include <iterator>
#include <new>
#include <utility>

#include "NeverDestroyed.h"

namespace minikin {

LayoutCache& LayoutCache::shared() {
    return portable::neverDestroyed<LayoutCache>();
}

size_t LayoutCache::cost(const Entry& entry) {
    // List and table nodes and the shared pointer's block, about.
    constexpr size_t kBookkeeping = 128;
    return sizeof(Entry) + sizeof(LayoutPiece) + kBookkeeping + entry.key.capacity() +
           entry.piece->glyphs.capacity() * sizeof(LayoutGlyph) +
           entry.piece->advances.capacity() * sizeof(float);
}

std::shared_ptr<const LayoutPiece> LayoutCache::find(std::string_view key) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mIndex.find(key);
    if (found == mIndex.end()) return nullptr;
    mEntries.splice(mEntries.begin(), mEntries, found->second);
    return found->second->piece;
}

void LayoutCache::insert(uint32_t collectionId, std::string_view key,
                         std::shared_ptr<const LayoutPiece> piece) noexcept try {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mIndex.count(key) != 0) return;  // another thread was faster
    size_t& count = mCounts[collectionId];
    Entries fresh;
    fresh.push_back({std::string(key), collectionId, std::move(piece)});
    mIndex.emplace(fresh.front().key, fresh.begin());
    mEntries.splice(mEntries.begin(), fresh);
    count++;
    mBytes += cost(mEntries.front());
    while (mBytes > kMaxBytes) erase(std::prev(mEntries.end()));
} catch (const std::bad_alloc&) {
    // At most a count of 0 was left behind.
}

void LayoutCache::erase(Entries::iterator entry) {
    mBytes -= cost(*entry);
    const auto count = mCounts.find(entry->collectionId);
    if (--count->second == 0) mCounts.erase(count);
    mIndex.erase(entry->key);
    mEntries.erase(entry);
}

void LayoutCache::forget(uint32_t collectionId) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto count = mCounts.find(collectionId);
    if (count == mCounts.end()) return;
    size_t left = count->second;
    if (left == 0) mCounts.erase(count);
    // Fonts dropped soon after their last use have their pieces in front.
    for (auto entry = mEntries.begin(); left > 0;) {
        const auto current = entry++;
        if (current->collectionId != collectionId) continue;
        erase(current);
        left--;
    }
}

void LayoutCache::clear() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mIndex.clear();
    mCounts.clear();
    mEntries.clear();
    mBytes = 0;
}

size_t LayoutCache::bytes() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mBytes;
}

}  // namespace minikin
