// What the bidi algorithm hands on from the text before a place to the text behind it.
#pragma once

#include <unicode/uchar.h>

#include <cstdint>
#include <vector>

namespace minikin {

// Reads a text, character by character, and makes at any place a short text that leaves the
// algorithm in the same state. Paragraphs end as they do there; contexts, from LF or CR on.
class BidiState {
public:
    // `c` follows what was added before.
    void add(UChar32 c);

    // Stands for all of the context so far: what follows gets the same levels and visual order as
    // behind the text itself, beyond a few characters. At most some 1,000 units long: of more
    // than 64 open brackets, and of initiators nested deeper than levels go, only the innermost 64
    // count.
    std::vector<uint16_t> summary() const;
    // In a summary, for a letter of the direction that paragraphs without one have.
    static constexpr uint16_t kDefaultLetter = 0;

private:
    // What a character sees before it in its isolating run sequence: units that stand for the last
    // strong character and for a number behind it, 0 for none. An embedding's initiator stands for
    // one that just closed where a letter would decide on the paragraph.
    struct Seen {
        uint16_t strong = 0;
        uint16_t number = 0;
        // The two stand in brackets of the other direction, which is the embedding's.
        bool inBrackets = false;
        bool operator==(const Seen&) const = default;
    };
    struct Bracket {
        uint16_t opening;
        uint16_t closing;
        Seen before;
        unsigned inside;  // kinds of strong characters, those in inner brackets left out
    };
    struct Sequence {
        Seen seen;
        std::vector<Bracket> brackets;
    };
    // An embedding, override or isolate that is open.
    struct Opening {
        uint16_t initiator;  // resolved once its direction is known
        Sequence outer;
        bool hasContent = false;
        bool hasOwnContent = false;  // outside of inner embeddings
    };
    class Writer;

    void beginParagraph(UChar32 c);
    void addStrong(uint16_t unit);
    void addNumber(uint16_t unit);
    void addNeutral(UChar32 c);
    UCharDirection overridden(UCharDirection direction) const;
    bool addContent();
    void addInitiator(UChar32 c);
    void popEmbedding();
    void popIsolate();
    void resolveDirection(uint16_t strong);
    bool isDirectionOpen() const;
    void closeBracket(uint16_t unit);
    // A letter of the embedding's direction.
    uint16_t embeddingLetter() const;

    Sequence mSequence;
    std::vector<Opening> mOpen;
    std::vector<size_t> mIsolates;  // of mOpen
    uint16_t mParagraph = 0;        // strong unit that decides on its level, 0 if there is none yet
    // Of the context:
    unsigned mKinds = 0;
    std::vector<uint16_t> mParagraphs;  // mParagraph of the first one and of the one before this
};

}  // namespace minikin
