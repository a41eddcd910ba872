// Random texts that are hard to lay out.
#pragma once

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>

#include "support/Random.h"

namespace gxtest {

// Texts of pieces that favour what reaches far: brackets, numbers, embeddings, isolates. Of two
// canonically equivalent forms of a bracket only one: ICU lets one bracket pair with both.
// Embeddings do not open right where another one ended.
class TextMaker {
public:
    explicit TextMaker(Random& random) : random_(random) {}

    std::u16string text(int pieces) {
        // Few kinds to a text, so that some have no letters of one direction, no controls, ...
        kinds_ = random_.word() | 1u << random_.between(0, kKinds - 1);
        std::u16string text;
        for (int i = 0; i < pieces; i++) addPiece(text, 0);
        return text;
    }

private:
    static constexpr int kKinds = 12;

    void add(std::u16string& text, std::u16string_view from) {
        const int at = random_.between(0, static_cast<int>(from.size()) - 1);
        text += from[static_cast<size_t>(at)];
    }
    void addSome(std::u16string& text, std::u16string_view from) {
        for (int i = random_.between(1, 6); i > 0; i--) add(text, from);
    }

    void addPiece(std::u16string& text, int depth) {
        const int kind = random_.between(0, kKinds - 1);
        if (!(kinds_ >> kind & 1)) return addSome(text, u" .");
        switch (kind) {
            case 0:
                return addSome(text, u"abcfixyzAVT");
            case 1:
                return addSome(text, u"\u05D0\u05D1\u05D2");
            case 2:
                return addSome(text, u"\u0627\u0628\u0644\u0645");
            case 3:
                return addSome(text, u"0123456789");
            case 4:
                return addSome(text, u"\u0660\u0661\u0669");
            case 5:
                return addSome(text, u" !*-+,:/%$#\u00A0\u2028\t\u200B\u0301");
            case 6:
                return add(text, u"()[]{}\u3008\u3009<>");
            case 7:
                add(text, u"\u202A\u202B\u202D\u202E\u202C\u202C\u2066\u2067\u2068\u2069");
                return separate(text);
            case 8:
                text += random_.oneIn(2) ? u"\U0001F468\u200D\U0001F469" : u"\U0001F44D\U0001F3FD";
                return;
            case 9:
                return add(text, u"\u200E\u200F\u061C\u4E2D\u6587");
            case 10:
                return random_.oneIn(4) ? add(text, u"\n\r\u2029\u0085\u001C")
                                        : addSome(text, u" ");
            default:
                return addSpan(text, depth);
        }
    }

    // Well-formed, as people write them.
    void addSpan(std::u16string& text, int depth) {
        constexpr const char16_t* kSpans[] = {u"()",           u"[]",           u"\u202A\u202C",
                                              u"\u202B\u202C", u"\u202D\u202C", u"\u202E\u202C",
                                              u"\u2066\u2069", u"\u2067\u2069", u"\u2068\u2069"};
        const char16_t* span = kSpans[random_.between(0, static_cast<int>(std::size(kSpans)) - 1)];
        text += span[0];
        for (int i = random_.between(0, 4); i > 0 && depth < 70; i--) addPiece(text, depth + 1);
        text += span[1];
        separate(text);
    }

    static void separate(std::u16string& text) {
        if (text.back() == u'\u202C') text += u'.';
    }

    Random& random_;
    uint32_t kinds_ = 0;
};

// In hexadecimal, where letters of several directions would stand in no clear order.
inline std::string hexUnits(std::u16string_view text) {
    std::string result;
    for (const char16_t unit : text) {
        char shown[8];
        snprintf(shown, sizeof(shown), " %X", static_cast<unsigned>(unit));
        result += shown;
    }
    return result;
}

}  // namespace gxtest
