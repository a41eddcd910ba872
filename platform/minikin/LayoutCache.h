// Remembers shaped pieces: text laid out before costs a look-up per word.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "minikin/PieceShaper.h"

namespace minikin {

// Process-wide; used from any thread. What was used longest ago goes first when it is full. Kept
// pieces change nothing in results: a key holds all that shaping looks at.
class LayoutCache {
public:
    // All that is kept, pieces, keys and bookkeeping together.
    static constexpr size_t kMaxBytes = size_t{2} << 20;
    // Pieces of longer words, in UTF-16 units, are not kept.
    static constexpr uint32_t kMaxWordLength = 128;

    static LayoutCache& shared();

    // Null when there is none.
    std::shared_ptr<const LayoutPiece> find(std::string_view key);
    // The piece's fonts belong to the collection of that id. Without memory nothing is kept.
    void insert(uint32_t collectionId, std::string_view key,
                std::shared_ptr<const LayoutPiece> piece) noexcept;
    // Drops the pieces of a collection that is gone.
    void forget(uint32_t collectionId);
    void clear();

    size_t bytes() const;

private:
    struct Entry {
        std::string key;
        uint32_t collectionId;
        std::shared_ptr<const LayoutPiece> piece;
    };
    using Entries = std::list<Entry>;

    static size_t cost(const Entry& entry);
    void erase(Entries::iterator entry);

    mutable std::mutex mMutex;
    Entries mEntries;                                                // most recently used first
    std::unordered_map<std::string_view, Entries::iterator> mIndex;  // of the entries' own keys
    std::unordered_map<uint32_t, size_t> mCounts;                    // entries per collection
    size_t mBytes = 0;
};

}  // namespace minikin
