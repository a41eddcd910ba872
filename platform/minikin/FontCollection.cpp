#include "minikin/FontCollection.h"

#include <algorithm>
#include <atomic>

#include "minikin/LayoutCache.h"
#include "minikin/Locale.h"
#include "minikin/Unicode.h"

namespace minikin {
namespace {

constexpr size_t kMaxFamilies = 254;
constexpr uint32_t kEndOfText = 0xFFFFFFFF;

// Scores of how well a family covers a code point; they weigh more than
// locale and variant together.
constexpr uint32_t kNotCovered = 0;
constexpr uint32_t kCovered = 1;
constexpr uint32_t kEmojiStyleFits = 2;
constexpr uint32_t kSequenceCovered = 3;
constexpr unsigned kCoverageShift = 29;
constexpr unsigned kLocaleShift = 1;

// Requested locales are digits of this base, the first one most significant. Twelve of them stay
// below 2^28.
constexpr uint32_t kLocaleScoreBase = 5;

uint32_t nextId() {
    static std::atomic<uint32_t> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}

uint32_t localeScore(const LocaleList& requested, const LocaleList& provided) {
    uint32_t score = 0;
    for (const Locale& locale : requested.locales()) {
        score = score * kLocaleScoreBase + locale.scoreFor(provided.locales());
    }
    return score;
}

uint32_t variantScore(FamilyVariant requested, FamilyVariant provided) {
    return provided == FamilyVariant::DEFAULT || provided == requested ||
           (requested == FamilyVariant::DEFAULT && provided == FamilyVariant::COMPACT);
}

// Whether the text or, failing that, the locales ask for emoji as pictures; DEFAULT if neither
// does.
EmojiStyle requestedEmojiStyle(uint32_t selector, const LocaleList& locales) {
    if (selector == kEmojiStyleSelector) return EmojiStyle::EMOJI;
    if (selector == kTextStyleSelector) return EmojiStyle::TEXT;
    const EmojiStyle style = locales.emojiStyle();
    return style == EmojiStyle::EMPTY ? EmojiStyle::DEFAULT : style;
}

}  // namespace

struct FontCollection::Request {
    const LocaleList& locales;
    FamilyVariant variant;
};

FontCollection::FontCollection(const std::vector<std::shared_ptr<FontFamily>>& typefaces)
    : mId(nextId()) {
    for (const std::shared_ptr<FontFamily>& family : typefaces) {
        if (!family || family->getNumFonts() == 0) continue;
        if (mFamilies.size() == kMaxFamilies) break;
        mFamilies.push_back(family);
        mMaxChar = std::max(mMaxChar, family->getCoverage().length());
    }
}

FontCollection::~FontCollection() {
    LayoutCache::shared().forget(mId);
}

const FontFamily* FontCollection::bestFamily(uint32_t codepoint, uint32_t selector,
                                             const Request& request) const {
    const FontFamily* best = nullptr;
    uint32_t bestScore = kNotCovered;
    for (const std::shared_ptr<FontFamily>& family : mFamilies) {
        const bool sequence = selector != 0 && family->hasGlyph(codepoint, selector);
        if (!sequence && !family->getCoverage().get(codepoint)) continue;

        const bool preferred = family == mFamilies.front() || family->isCustomFallback();
        if (preferred && (selector == 0 || sequence)) return family.get();

        uint32_t coverage = kCovered;
        if (sequence) {
            coverage = kSequenceCovered;
        } else {
            const EmojiStyle style = requestedEmojiStyle(selector, request.locales);
            const bool fits = style == EmojiStyle::EMOJI ? family->isColorEmojiFamily()
                                                         : !family->isColorEmojiFamily();
            if (style != EmojiStyle::DEFAULT && fits) coverage = kEmojiStyleFits;
        }
        const uint32_t score = coverage << kCoverageShift |
                               localeScore(request.locales, family->locales()) << kLocaleShift |
                               variantScore(request.variant, family->variant());
        if (score > bestScore) {
            bestScore = score;
            best = family.get();
        }
    }
    return best;
}

const FontFamily& FontCollection::familyFor(uint32_t codepoint, uint32_t selector,
                                            const Request& request) const {
    while (codepoint < mMaxChar) {
        const FontFamily* best = bestFamily(codepoint, selector, request);
        if (best) return *best;
        const uint32_t first = firstOfDecomposition(codepoint);
        if (first == codepoint) break;
        codepoint = first;
    }
    return *mFamilies.front();
}

std::vector<FontCollection::Run> FontCollection::itemize(U16StringPiece text, FontStyle style,
                                                         uint32_t localeListId,
                                                         FamilyVariant familyVariant) const {
    std::vector<Run> runs;
    if (mFamilies.empty() || text.size() == 0) return runs;
    const Request request{localeListById(localeListId), familyVariant};

    const FontFamily* family = nullptr;  // of the last run
    uint32_t previous = 0;
    uint32_t position = 0;
    uint32_t nextPosition = 0;
    uint32_t next = nextCodePoint(text, &nextPosition);
    while (next != kEndOfText) {
        const uint32_t codepoint = next;
        const uint32_t start = position;
        position = nextPosition;
        next = nextPosition < text.size() ? nextCodePoint(text, &nextPosition) : kEndOfText;

        bool continues = needsNoFont(codepoint);
        if (!continues && family && keepsFont(codepoint)) {
            continues = family->getCoverage().get(codepoint);
        }
        if (!continues) {
            const FontFamily& wanted =
                familyFor(codepoint, isVariationSelector(next) ? next : 0, request);
            if (&wanted != family) {
                uint32_t runStart = start;
                const bool attaches = isCombining(codepoint) ||
                                      (isEmojiModifier(codepoint) && isEmojiModifierBase(previous));
                // A mark and what it sits on have to come from one font to be put together.
                if (start != 0 && attaches && wanted.getCoverage().get(previous)) {
                    runStart -= utf16Length(previous);
                    if (!runs.empty()) {
                        runs.back().end = static_cast<int>(runStart);
                        if (runs.back().start == runs.back().end) runs.pop_back();
                    }
                }
                // Leading characters without a font of their own join the first run.
                if (!family) runStart = 0;
                runs.push_back({wanted.getClosestMatch(style), static_cast<int>(runStart), 0});
                family = &wanted;
            }
        }
        previous = codepoint;
        if (!runs.empty()) runs.back().end = static_cast<int>(position);
    }
    if (runs.empty()) {
        runs.push_back(
            {mFamilies.front()->getClosestMatch(style), 0, static_cast<int>(text.size())});
    }
    return runs;
}

}  // namespace minikin
