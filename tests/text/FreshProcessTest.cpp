// What only a process that has drawn nothing yet can show: renders in which memory runs out, where
// libraries keep what they make on first use, and what they read from the environment.
#include <gtest/gtest.h>
#include <hwui/Paint.h>
#include <minikin/LocaleList.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "base/Error.h"
#include "base/GxString.h"
#include "base/List.h"
#include "effect/GxEffect.h"
#include "font/FontManager.h"
#include "font/GxFontFamily.h"
#include "raster/GxBitmap.h"
#include "support/AllocationFailure.h"
#include "support/Fonts.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

namespace GxFontEffect {
namespace {

using gxtest::AllocationFailure;
using gxtest::FailureSpan;

constexpr int kWidth = 300;
constexpr int kHeight = 170;
constexpr size_t kPixels = size_t{kWidth} * kHeight;
constexpr uint32_t kFirstColor = 0xFF803010;
constexpr uint32_t kColor = 0xF0203040;

// Kerning and a ligature, Arabic and Hebrew against the line's direction, a decomposed letter; from
// system families Devanagari, and a picture that is a PNG file in the font.
constexpr const wchar_t* kText = L"AVfi \x0628\x062A \x05D0 e\x0301\x0915\x094D\x0937\x093F\x1F60D";
constexpr int kTextUnits = 18;

struct SystemFont {
    const char* language;
    const char* file;
};
constexpr SystemFont kSystemFonts[] = {{"und-Deva", gxtest::kNotoDevanagari},
                                       {"und-Zsye", gxtest::kNotoColorEmoji}};

// How a process has come to the render in which memory runs out.
enum class Before {
    kNothing,      // the very first text: setting it up is part of it
    kObject,       // the object is set up; nothing was ever drawn
    kWarm,         // another object has drawn the same
    kFrame,        // the object has drawn, in another colour
    kFrameNewFont  // likewise, with another font
};

struct State {
    Before before;
    const char* name;
};
constexpr State kStates[] = {
    {Before::kNothing, "first text"},
    {Before::kObject, "first render"},
    {Before::kWarm, "warm"},
    {Before::kFrame, "with a frame"},
    {Before::kFrameNewFont, "with a frame, new font"},
};

// What a process found out, in memory shared with the one that started it.
struct Outcome {
    enum First { kUnknown, kRight, kFrame, kNull, kRefused, kWrong } first;
    bool triggered;
    bool errorRecorded;
    bool boxesKept;
    bool nextRight;
    bool nextOfNewObjectRight;
};
struct Shared {
    uint32_t expected[kPixels];
    uint32_t previous[kPixels];
    Outcome outcome;
};

GxFontFamily* gPictures = nullptr;

void addSystemFamilies() {
    auto* list = new List;
    list->Construct();
    for (const SystemFont& font : kSystemFonts) {
        auto* entry = new GxFontEntry;
        entry->path = new GxString;
        entry->path->Construct(gxtest::fontPath(font.file).c_str());
        auto* family = new GxFontFamily;
        family->localeListId = minikin::registerLocaleList(font.language);
        family->fonts = new List;
        family->fonts->Construct();
        family->fonts->Add(entry);
        list->Add(family);
        gPictures = family;  // the last one
    }
    FontManager::GetInstance().SetSystemFontFamilies(list);
}

// A text object that is set up step by step; what was refused can be tried again.
class Subject {
public:
    // False when a step was refused.
    bool setUp(const char* font) {
        return construct() && loadPictures() && text_->SetFont(font) && setLines() &&
               text_->SetText(kText) && addEffects() && setPaint();
    }
    bool setFont(const char* font) { return text_->SetFont(font); }
    void setColor(uint32_t color) { text_->SetTextColor(color); }
    const uint32_t* render() {
        const GxBitmap* before = text_->GetResultBitmap();
        const uint32_t* pixels = text_->RenderTextEffect(kWidth, kHeight);
        hasFailed_ = text_->GetResultBitmap() == before;
        return pixels;
    }
    bool hasFailed() const { return hasFailed_; }
    GxLineInfo* line() { return static_cast<GxLineInfo*>(text_->GetLineInfo()->Get(0)); }

private:
    bool construct() {
        if (text_) return true;
        std::unique_ptr<GxTextObject> fresh(new (std::nothrow) GxTextObject);
        if (!fresh || !fresh->Construct()) return false;
        text_ = std::move(fresh);
        text_->GetView()->SetBitmapWidth(kWidth);
        text_->GetView()->SetBitmapHeight(kHeight);
        text_->SetBackgroundColor(0x60FFFF00, true);
        text_->SetTextColor(kColor);
        text_->setKeepsColorGlyphs(true);
        return true;
    }
    // Texts do not ask for this family: whoever configures the families loads it.
    static bool loadPictures() {
        GxFontFamily* family = gPictures;
        if (!family->loaded) {
            family->loaded = FontManager::GetInstance().BuildMinikinFamily(family);
        }
        return family->loaded;
    }
    bool setLines() {
        if (text_->GetLineInfo()->GetCount() > 0) return true;
        std::unique_ptr<GxLineInfo> record(new (std::nothrow) GxLineInfo);
        List lines;
        if (!record || !lines.Construct()) return false;
        record->x = 4;
        record->y = 70;
        record->end = kTextUnits;
        record->rect = GxRect(4, 30, 5, 100);
        if (!lines.Add(record.get()) || !text_->SetLineInfo(&lines)) return false;
        static_cast<void>(record.release());
        return true;
    }
    // Longer than a string holds without an allocation.
    static bool trySetFeatures(android::Paint& paint) {
        try {
            paint.setFontFeatureSettings("'kern' on, 'liga' on, 'calt' on");
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }
    bool setPaint() {
        android::Paint paint;
        paint.setJavaFlags(0x1);  // antialias
        paint.getSkFont().setSize(40);
        if (!trySetFeatures(paint)) return false;
        return text_->SetPaint(paint);
    }
    bool addEffects() {
        static const GxGradient stops[] = {
            {0xFFFF0000, 1, 0}, {0xFF00FF00, 0.5f, 0.5f}, {0xFF0000FF, 1, 1}};
        GxBitmap pattern(3, 3, 4);
        if (!pattern.data) return false;
        for (int i = 0; i < 36; ++i) pattern.data[i] = static_cast<uint8_t>(255 - i);
        GxEffect& stack = *text_->GetEffect();
        return stack.addOuterShadowText(120, 6, 4, 0xFF000000, 0.6f) >= 0 &&
               stack.addInnerShadowText(300, 3, 2, 0xFFFFFFFF, 0.5f) >= 0 &&
               stack.addOuterGlowText(8, 0, 1, 3, stops) >= 0 &&
               stack.addInnerGlowText(2, 0xFFFFFF00, 0.4f, 0, nullptr) >= 0 &&
               stack.addLinearGradientText(45, 1, 0.5f, 3, stops) >= 0 &&
               stack.addRadialGradientText(1.5f, 0.5f, 3, stops) >= 0 &&
               stack.addStrokeText(3, 0xFF101010, 0.9f, 0, GxStrokeProperty::kCenter) >= 0 &&
               stack.addPatternText(&pattern, 2, 0.7f) >= 0;
    }

    std::unique_ptr<GxTextObject> text_;
    bool hasFailed_ = false;
};

bool same(const uint32_t* a, const uint32_t* b) {
    return a && std::memcmp(a, b, kPixels * sizeof(*a)) == 0;
}

bool sameBox(const GxRect& a, const GxRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

class FreshProcess : public testing::Test {
protected:
    void SetUp() override {
        void* memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(memory, MAP_FAILED);
        shared_ = static_cast<Shared*>(memory);
    }
    void TearDown() override { munmap(shared_, sizeof(Shared)); }

    // Runs the body in a process of its own: this one never draws, so that each starts as new.
    template <typename Body>
    bool inProcess(Body body) {
        const pid_t child = fork();
        if (child == 0) {
            body();
            _exit(0);
        }
        int status = 0;
        return child > 0 && waitpid(child, &status, 0) == child && status == 0;
    }

    static void draw(uint32_t* pixels) {
        addSystemFamilies();
        Subject subject;
        subject.setUp(gxtest::fontPath(gxtest::kDejaVuSans).c_str());
        std::memcpy(pixels, subject.render(), kPixels * sizeof(*pixels));
    }

    void failNth(Before before, int n, FailureSpan span) {
        const std::string font = gxtest::fontPath(gxtest::kDejaVuSans);
        const std::string otherFont = gxtest::fontPath(gxtest::kNotoSans);
        addSystemFamilies();
        Subject subject;
        if (before != Before::kNothing) {
            subject.setUp((before == Before::kFrameNewFont ? otherFont : font).c_str());
        }
        if (before == Before::kWarm) {
            Subject other;
            other.setUp(font.c_str());
            other.render();
        }
        const bool hasFrame = before == Before::kFrame || before == Before::kFrameNewFont;
        GxRect box;
        if (hasFrame) {
            subject.setColor(kFirstColor);
            std::memcpy(shared_->previous, subject.render(), sizeof(shared_->previous));
            // Two renders would move the box twice.
            subject.line()->rect = GxRect(4, 30, 5, 100);
            box = subject.line()->rect;
            subject.setColor(kColor);
        }
        Error::SetError(0);

        Outcome& outcome = shared_->outcome;
        outcome = {};
        bool isSetUp = true;
        const uint32_t* pixels = nullptr;
        {
            const AllocationFailure failure(n, span);
            if (before == Before::kNothing) isSetUp = subject.setUp(font.c_str());
            if (before == Before::kFrameNewFont) isSetUp = subject.setFont(font.c_str());
            if (isSetUp) pixels = subject.render();
            outcome.triggered = failure.triggered();
        }
        const bool failed = !isSetUp || subject.hasFailed();
        outcome.errorRecorded =
            !isSetUp || !failed || Error::GetError() == GXE_ERROR_INVALID_ARGUMENT;
        if (!isSetUp) {
            outcome.first = Outcome::kRefused;
        } else if (!failed) {
            outcome.first = same(pixels, shared_->expected) ? Outcome::kRight : Outcome::kWrong;
        } else if (!pixels) {
            outcome.first = hasFrame ? Outcome::kWrong : Outcome::kNull;
        } else {
            outcome.first = same(pixels, shared_->previous) ? Outcome::kFrame : Outcome::kWrong;
        }
        outcome.boxesKept = !(hasFrame && failed) || sameBox(subject.line()->rect, box);
        if (!isSetUp) {
            before == Before::kFrameNewFont ? subject.setFont(font.c_str())
                                            : subject.setUp(font.c_str());
        }
        if (failed) pixels = subject.render();
        outcome.nextRight = same(pixels, shared_->expected);
        Subject next;
        outcome.nextOfNewObjectRight =
            next.setUp(font.c_str()) && same(next.render(), shared_->expected);
    }

    void walk(const State& state, FailureSpan span);

    Shared* shared_ = nullptr;
};

// Which allocations fail: every so many, all of them with GXTEXT_ALLOCATION_STRIDE=1.
int stride() {
    const char* wanted = std::getenv("GXTEXT_ALLOCATION_STRIDE");
    return wanted ? std::max(std::atoi(wanted), 1) : 23;
}

void FreshProcess::walk(const State& state, FailureSpan span) {
    int runs = 0;
    for (int n = 1;; n += stride()) {
        const bool ended = inProcess([&] { failNth(state.before, n, span); });
        const Outcome& outcome = shared_->outcome;
        if (ended && !outcome.triggered) break;
        SCOPED_TRACE("allocation " + std::to_string(n));
        ASSERT_TRUE(ended) << "the process died";
        ++runs;
        EXPECT_NE(outcome.first, Outcome::kWrong);
        EXPECT_TRUE(outcome.errorRecorded);
        EXPECT_TRUE(outcome.boxesKept);
        EXPECT_TRUE(outcome.nextRight) << "the next render";
        EXPECT_TRUE(outcome.nextOfNewObjectRight) << "the next render of a new object";
    }
    EXPECT_GT(runs, 0);
}

// Every allocation fails once, those of HarfBuzz, FreeType and ICU among them, alone or with all
// after it: the answer is the right picture, the frame before or none, and the next render is
// right.
TEST_F(FreshProcess, LosesNothingWhenMemoryRunsOut) {
    ASSERT_TRUE(inProcess([this] { draw(shared_->expected); }));
    for (const State& state : kStates) {
        for (const FailureSpan span : {FailureSpan::kOne, FailureSpan::kAllFromThere}) {
            SCOPED_TRACE(state.name);
            walk(state, span);
        }
    }
}

TEST_F(FreshProcess, TheEnvironmentChangesNothing) {
    constexpr const char* kVariables[][2] = {
        {"HB_SHAPER_LIST", "fallback"},
        {"HB_OPTIONS", "uniscribe-bug-compatible"},
        {"FREETYPE_PROPERTIES",
         "truetype:interpreter-version=35 cff:hinting-engine=freetype autofitter:warping=1"},
        {"ICU_DATA", "/nowhere"},
        {"LC_ALL", "tr_TR.UTF-8"},
    };
    ASSERT_TRUE(inProcess([this] { draw(shared_->expected); }));
    for (const auto& [name, value] : kVariables) {
        ASSERT_TRUE(inProcess([&, name = name, value = value] {
            setenv(name, value, 1);
            draw(shared_->previous);
        }));
        EXPECT_TRUE(same(shared_->previous, shared_->expected)) << name << "=" << value;
    }
}

}  // namespace
}  // namespace GxFontEffect
