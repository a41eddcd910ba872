#include "minikin/BidiState.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace minikin {
namespace {

// Characters that stand for all of their kind.
constexpr uint16_t kLetter = 'a';
constexpr uint16_t kHebrewLetter = 0x05D0;
constexpr uint16_t kArabicLetter = 0x0627;
constexpr uint16_t kDigit = '1';
constexpr uint16_t kArabicDigit = 0x0660;
constexpr uint16_t kOther = '!';
constexpr uint16_t kParagraphSeparator = 0x2029;

constexpr uint16_t kLre = 0x202A;
constexpr uint16_t kRle = 0x202B;
constexpr uint16_t kPdf = 0x202C;
constexpr uint16_t kLro = 0x202D;
constexpr uint16_t kRlo = 0x202E;
constexpr uint16_t kLri = 0x2066;
constexpr uint16_t kRli = 0x2067;
constexpr uint16_t kFsi = 0x2068;
constexpr uint16_t kPdi = 0x2069;

// Kinds of characters, as bits.
constexpr unsigned kLtr = 1;
constexpr unsigned kRtl = 2;
constexpr unsigned kNumber = 4;
constexpr unsigned kArabicNumber = 8;
constexpr unsigned kNeutral = 16;
constexpr unsigned kFormatting = 32;

constexpr size_t kMaxBrackets = 64;
// There are 125 levels. Initiators beyond do nothing, but what ends them must not end others.
constexpr size_t kMaxDepth = 126;
constexpr size_t kMaxExcess = 64;

// Of closing brackets: one pair has equivalents.
uint16_t canonical(uint16_t bracket) {
    return bracket == 0x232A ? 0x3009 : bracket;
}

bool isIsolate(uint16_t initiator) {
    return initiator >= kLri && initiator <= kFsi;
}

bool isOverride(uint16_t initiator) {
    return initiator == kLro || initiator == kRlo;
}

bool isRtlInitiator(uint16_t initiator) {
    return initiator == kRle || initiator == kRlo || initiator == kRli;
}

// Text of one direction is laid out without regard to levels: what is in the context decides.
unsigned kindsOf(UCharDirection direction) {
    switch (direction) {
        case U_LEFT_TO_RIGHT:
            return kLtr;
        case U_RIGHT_TO_LEFT:
        case U_RIGHT_TO_LEFT_ARABIC:
            return kRtl;
        case U_EUROPEAN_NUMBER:
            return kNumber;
        case U_ARABIC_NUMBER:
            return kArabicNumber;
        case U_LEFT_TO_RIGHT_EMBEDDING:
        case U_LEFT_TO_RIGHT_OVERRIDE:
            return kLtr | kFormatting;
        case U_RIGHT_TO_LEFT_EMBEDDING:
        case U_RIGHT_TO_LEFT_OVERRIDE:
            return kRtl | kFormatting;
        case U_LEFT_TO_RIGHT_ISOLATE:
        case U_FIRST_STRONG_ISOLATE:
            return kLtr | kNeutral | kFormatting;
        case U_RIGHT_TO_LEFT_ISOLATE:
            return kRtl | kNeutral | kFormatting;
        case U_POP_DIRECTIONAL_FORMAT:
        case U_POP_DIRECTIONAL_ISOLATE:
            return kNeutral | kFormatting;
        default:
            return kNeutral;
    }
}

}  // namespace

void BidiState::add(UChar32 c) {
    const UCharDirection direction = u_charDirection(c);
    mKinds |= kindsOf(overridden(direction));
    switch (direction) {
        case U_BLOCK_SEPARATOR:
            return beginParagraph(c);
        case U_LEFT_TO_RIGHT:
            return addStrong(kLetter);
        case U_RIGHT_TO_LEFT:
            return addStrong(kHebrewLetter);
        case U_RIGHT_TO_LEFT_ARABIC:
            return addStrong(kArabicLetter);
        case U_EUROPEAN_NUMBER:
            return addNumber(kDigit);
        case U_ARABIC_NUMBER:
            return addNumber(kArabicDigit);
        case U_LEFT_TO_RIGHT_EMBEDDING:
        case U_RIGHT_TO_LEFT_EMBEDDING:
        case U_LEFT_TO_RIGHT_OVERRIDE:
        case U_RIGHT_TO_LEFT_OVERRIDE:
        case U_LEFT_TO_RIGHT_ISOLATE:
        case U_RIGHT_TO_LEFT_ISOLATE:
        case U_FIRST_STRONG_ISOLATE:
            return addInitiator(c);
        case U_POP_DIRECTIONAL_FORMAT:
            return popEmbedding();
        case U_POP_DIRECTIONAL_ISOLATE:
            popIsolate();
            return addNeutral(c);
        case U_BOUNDARY_NEUTRAL:
            return;
        default:
            return addNeutral(c);
    }
}

void BidiState::beginParagraph(UChar32 c) {
    if (c == '\n' || c == '\r') {
        mKinds = kNeutral;
        mParagraphs = {0};
    } else {
        if (mParagraphs.size() == 2) mParagraphs.pop_back();
        mParagraphs.push_back(mParagraph);
    }
    mSequence = Sequence();
    mOpen.clear();
    mIsolates.clear();
    mParagraph = 0;
}

void BidiState::addStrong(uint16_t unit) {
    resolveDirection(unit);
    if (addContent()) return;
    mSequence.seen = {unit, 0};
    if (!mSequence.brackets.empty()) {
        mSequence.brackets.back().inside |= unit == kLetter ? kLtr : kRtl;
    }
}

void BidiState::addNumber(uint16_t unit) {
    if (addContent()) return;
    Seen& seen = mSequence.seen;
    seen = {seen.strong, unit};
    if (mSequence.brackets.empty()) return;
    unsigned& inside = mSequence.brackets.back().inside;
    switch (seen.strong) {
        case kLetter:
            inside |= unit == kDigit ? kLtr : kRtl;
            return;
        case kHebrewLetter:
        case kArabicLetter:
            inside |= kRtl;
            return;
        default:
            inside |= unit == kDigit ? kNumber : kArabicNumber;
            return;
    }
}

void BidiState::addNeutral(UChar32 c) {
    if (addContent()) return;
    const auto unit = static_cast<uint16_t>(c);
    std::vector<Bracket>& brackets = mSequence.brackets;
    switch (u_getIntPropertyValue(c, UCHAR_BIDI_PAIRED_BRACKET_TYPE)) {
        case U_BPT_OPEN:
            if (brackets.size() == kMaxBrackets) brackets.erase(brackets.begin());
            brackets.push_back({unit, canonical(static_cast<uint16_t>(u_getBidiPairedBracket(c))),
                                mSequence.seen, 0});
            return;
        case U_BPT_CLOSE:
            return closeBracket(canonical(unit));
        default:
            return;
    }
}

void BidiState::closeBracket(uint16_t unit) {
    std::vector<Bracket>& brackets = mSequence.brackets;
    const auto found =
        std::find_if(brackets.rbegin(), brackets.rend(),
                     [&](const Bracket& bracket) { return bracket.closing == unit; });
    if (found == brackets.rend()) return;
    const auto opening = std::prev(found.base());
    unsigned inside = 0;
    for (auto bracket = opening; bracket != brackets.end(); ++bracket) inside |= bracket->inside;
    if (!isDirectionOpen()) {
        // The pair takes the embedding's direction, if that is inside, or nothing of the other one
        // is inside and before it.
        const bool isRtl = embeddingLetter() != kLetter;
        const Seen& before = opening->before;
        const bool isRtlBefore = !before.inBrackets && before.strong != 0
                                     ? before.strong != kLetter || before.number == kArabicDigit
                                     : isRtl;
        const unsigned own = isRtl ? kRtl : kLtr;
        const unsigned other = isRtl ? kLtr : kRtl;
        if (inside & own || (inside & other && isRtlBefore == isRtl)) {
            mSequence.seen.inBrackets = true;
        }
    }
    brackets.erase(opening, brackets.end());
    if (!brackets.empty()) brackets.back().inside |= inside;
}

void BidiState::addInitiator(UChar32 c) {
    const auto initiator = static_cast<uint16_t>(c);
    if (isIsolate(initiator)) {
        addNeutral(c);
        mIsolates.push_back(mOpen.size());
    }
    mOpen.push_back({initiator, std::exchange(mSequence, Sequence())});
}

void BidiState::popEmbedding() {
    if (mOpen.empty() || isIsolate(mOpen.back().initiator)) return;
    Opening opening = std::move(mOpen.back());
    mOpen.pop_back();
    if (!opening.hasContent) {
        mSequence = std::move(opening.outer);
        return;
    }
    // What follows begins a sequence; it sees the direction of the higher level.
    uint16_t strong = mSequence.seen.strong;
    if (opening.hasOwnContent) {
        const bool isRtl = isRtlInitiator(opening.initiator);
        if (isDirectionOpen()) {
            strong = isRtl ? kRle : kLre;
        } else {
            strong = isRtl ? kHebrewLetter : kLetter;
        }
    }
    mSequence = Sequence();
    mSequence.seen.strong = strong;
    if (!mOpen.empty()) mOpen.back().hasContent = true;
}

void BidiState::popIsolate() {
    if (mIsolates.empty()) return;
    const size_t isolate = mIsolates.back();
    mIsolates.pop_back();
    mSequence = std::move(mOpen[isolate].outer);
    mOpen.erase(mOpen.begin() + static_cast<ptrdiff_t>(isolate), mOpen.end());
}

// The first strong character decides on a paragraph or on an isolate that asks for it.
void BidiState::resolveDirection(uint16_t strong) {
    if (!isDirectionOpen()) return;
    if (mIsolates.empty()) {
        mParagraph = strong;
    } else {
        mOpen[mIsolates.back()].initiator = strong == kLetter ? kLri : kRli;
    }
}

bool BidiState::isDirectionOpen() const {
    return mIsolates.empty() ? mParagraph == 0 : mOpen[mIsolates.back()].initiator == kFsi;
}

uint16_t BidiState::embeddingLetter() const {
    if (mOpen.empty()) return mParagraph == kLetter ? kLetter : kHebrewLetter;
    return isRtlInitiator(mOpen.back().initiator) ? kHebrewLetter : kLetter;
}

UCharDirection BidiState::overridden(UCharDirection direction) const {
    if (mOpen.empty() || !isOverride(mOpen.back().initiator)) return direction;
    if (direction == U_BLOCK_SEPARATOR || kindsOf(direction) & kFormatting) return direction;
    return isRtlInitiator(mOpen.back().initiator) ? U_RIGHT_TO_LEFT : U_LEFT_TO_RIGHT;
}

// True in an override, where all characters are alike.
bool BidiState::addContent() {
    if (mOpen.empty()) return false;
    mOpen.back().hasContent = mOpen.back().hasOwnContent = true;
    if (!isOverride(mOpen.back().initiator)) return false;
    mSequence.seen = {kOther, 0};
    return true;
}

// Writes characters that lead to a state, none of them twice in a row: a bracket's direction comes
// from all that stands in it.
class BidiState::Writer {
public:
    // Leaves the first `skippedBrackets` out.
    explicit Writer(size_t skippedBrackets) : skippedBrackets_(skippedBrackets) {}

    void put(uint16_t unit) { text_.push_back(unit); }
    void put(std::initializer_list<uint16_t> units) { text_.insert(text_.end(), units); }

    void begin() { last_ = {}; }

    void putKinds(unsigned kinds) {
        if (kinds & kLtr) putSeen({kLetter, 0});
        if (kinds & kRtl) putSeen({kHebrewLetter, 0});
        if (kinds & kNumber) putSeen({last_.strong, kDigit});
        if (kinds & kArabicNumber) putSeen({last_.strong, kArabicDigit});
    }

    // Nothing of what follows sees what is in them.
    void putIsolates(unsigned kinds) {
        if (kinds & kLtr) put({kLri, kLetter, kPdi});
        if (kinds & kRtl) put({kRli, kHebrewLetter, kPdi});
        if (kinds & kNumber) put({kLri, kDigit, kPdi});
        if (kinds & kArabicNumber) put({kLri, kArabicDigit, kPdi});
    }

    void putSequence(const Sequence& sequence) {
        for (const Bracket& bracket : sequence.brackets) {
            if (skippedBrackets_ > 0) {
                skippedBrackets_--;
                continue;
            }
            putSeen(bracket.before);
            put(bracket.opening);
            // What is inside has to stand inside, whatever is before.
            if (bracket.inside & (kLtr | kRtl)) begin();
            if (bracket.inside != 0) last_.number = 0;
            putKinds(bracket.inside);
        }
        putSeen(sequence.seen);
    }

    void putSeen(const Seen& seen) {
        if (seen == last_) return;
        if (last_.inBrackets) begin();
        if (seen.inBrackets) {
            const bool isRtl = seen.strong != kLetter || seen.number == kArabicDigit;
            putSeen({isRtl ? kLetter : kHebrewLetter, 0});
            put('[');
        }
        if (seen.strong != 0 && (seen.strong != last_.strong || seen.number < last_.number)) {
            put(seen.strong);
            if (seen.strong == kLre || seen.strong == kRle) put({kOther, kPdf, kOther});
            last_.number = 0;
        }
        if (seen.number != 0 && seen.number != last_.number) put(seen.number);
        if (seen.inBrackets) put(']');
        last_ = seen;
    }

    std::vector<uint16_t> text() { return std::move(text_); }

private:
    size_t skippedBrackets_;
    std::vector<uint16_t> text_;
    Seen last_;
};

std::vector<uint16_t> BidiState::summary() const {
    size_t brackets = mSequence.brackets.size();
    for (const Opening& opening : mOpen) brackets += opening.outer.brackets.size();
    Writer writer(brackets - std::min(brackets, kMaxBrackets));
    // ICU takes another way through texts with formatting characters, and resolves brackets by the
    // levels of paragraphs before.
    const bool hasFormatting = mKinds & kFormatting;
    for (const uint16_t& paragraph : mParagraphs) {
        writer.begin();
        paragraph == 0 ? writer.put(kDefaultLetter) : writer.putSeen({paragraph, 0});
        if (!hasFormatting && &paragraph == &mParagraphs.front()) writer.putKinds(mKinds);
        writer.put(kParagraphSeparator);
    }
    writer.begin();
    writer.putSeen({mParagraph, 0});
    if (hasFormatting) {
        writer.putIsolates(mKinds);
    } else if (mParagraphs.empty() && mParagraph != 0) {
        writer.putKinds(mKinds);
    }
    for (size_t i = 0; i < mOpen.size(); i++) {
        if (i >= kMaxDepth && i + kMaxExcess < mOpen.size()) continue;
        writer.putSequence(mOpen[i].outer);
        writer.put(mOpen[i].initiator);
        writer.begin();
    }
    writer.putSequence(mSequence);
    if (mKinds & kNeutral) writer.put(' ');
    return writer.text();
}

}  // namespace minikin
