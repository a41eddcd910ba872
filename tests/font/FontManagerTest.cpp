#include "font/FontManager.h"

#include <gtest/gtest.h>
#include <hwui/Typeface.h>
#include <minikin/FontFamily.h>
#include <minikin/LocaleList.h>
#include <minikin/MinikinFont.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/Error.h"
#include "base/GxLog.h"
#include "base/GxString.h"
#include "base/List.h"
#include "font/GxFontFamily.h"
#include "support/AllocationFailure.h"
#include "support/Fonts.h"
#include "support/NativeErrors.h"
#include "support/TempFolder.h"

namespace GxFontEffect {
namespace {

using Families = std::vector<std::shared_ptr<minikin::FontFamily>>;
using FontPointer = std::shared_ptr<minikin::MinikinFont>;

constexpr const char* kNoFont = "AddMinikinFont() - Fail to get font";
constexpr const char* kNoTypeface = "AddMinikinFont() - Fail to create typeface";

// A string made in one expression.
class Text {
public:
    explicit Text(const std::string& text) { EXPECT_TRUE(string_.Construct(text.c_str())); }
    GxString* get() { return &string_; }

private:
    GxString string_;
};

// An array to hand over.
char* copyOf(const std::vector<char>& bytes) {
    char* copy = new char[bytes.size()];
    std::copy(bytes.begin(), bytes.end(), copy);
    return copy;
}

struct Entry {
    std::string path;
    int ttcIndex = 0;
    int weight = 400;
    bool italic = false;
};

GxFontFamily* makeFamilyRecord(uint32_t localeListId, const std::vector<Entry>& entries,
                               int loaded = 0, int variant = 0) {
    auto* family = new GxFontFamily;
    family->localeListId = localeListId;
    family->loaded = loaded;
    family->variant = variant;
    family->fonts = new List;
    EXPECT_TRUE(family->fonts->Construct());
    for (const Entry& entry : entries) {
        auto* record = new GxFontEntry;
        record->path = new GxString;
        EXPECT_TRUE(record->path->Construct(entry.path.c_str()));
        record->ttcIndex = entry.ttcIndex;
        record->weight = entry.weight;
        record->italic = entry.italic;
        family->fonts->Add(record);
    }
    return family;
}

List* makeFamilyList(const std::vector<GxFontFamily*>& families) {
    auto* list = new List;
    EXPECT_TRUE(list->Construct());
    for (GxFontFamily* family : families) list->Add(family);
    return list;
}

// While it lives, the process may have no more of a resource than it has.
class Exhausted {
public:
    explicit Exhausted(__rlimit_resource resource) : resource_(resource) {
        EXPECT_EQ(getrlimit(resource_, &before_), 0);
        const rlimit none{0, before_.rlim_max};
        EXPECT_EQ(setrlimit(resource_, &none), 0);
    }
    // An emulator of another processor takes the limit of addresses and does not hold a program to
    // it.
    static bool limitsAddresses() {
        const Exhausted addresses(RLIMIT_AS);
        constexpr size_t kSize = 1 << 20;
        void* memory = mmap(nullptr, kSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        return memory == MAP_FAILED || munmap(memory, kSize) != 0;
    }

    ~Exhausted() { EXPECT_EQ(setrlimit(resource_, &before_), 0); }
    Exhausted(const Exhausted&) = delete;
    Exhausted& operator=(const Exhausted&) = delete;

private:
    const __rlimit_resource resource_;
    rlimit before_{};
};

class FontManagerTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(manager.Construct()); }
    void TearDown() override { GxLog::DEBUG_ENABLE = false; }

    bool add(const std::string& path, int index = 0, bool checkExisting = false) {
        return manager.AddMinikinFont(path.c_str(), nullptr, 0, index, checkExisting);
    }
    bool addBytes(const std::string& name, const std::vector<char>& bytes, int index = 0,
                  bool checkExisting = true) {
        return manager.AddMinikinFont(name.c_str(), copyOf(bytes),
                                      static_cast<unsigned>(bytes.size()), index, checkExisting);
    }
    FontPointer font(const std::string& path, int index = 0) {
        FontPointer found;
        const bool known = manager.GetMinikinFont(found, Text(path).get(), index);
        EXPECT_EQ(known, found != nullptr);
        return found;
    }
    // The families for a user font; the weight that came out goes to `weightOut`.
    Families families(const std::string& userFont = "", int* weightOut = nullptr) {
        Families out;
        Text path(userFont);
        int weight = 400;
        EXPECT_TRUE(manager.GetMinikinFontFamilies(
            nullptr, out, userFont.empty() ? nullptr : path.get(), weight));
        if (weightOut) *weightOut = weight;
        return out;
    }

    FontManager manager;
    gxtest::TempFolder folder;
    const std::string sans = gxtest::fontPath(gxtest::kDejaVuSans);
    const std::string cjk = gxtest::fontPath(gxtest::kNotoCjk);
};

TEST_F(FontManagerTest, EveryOperationNeedsConstruct) {
    FontManager bare;
    FontPointer found;
    Families out;
    int weight = 400;
    Text path("/f.ttf");
    const std::vector<std::pair<int, std::function<bool()>>> operations = {
        {233, [&] { return bare.IsExisting("/f.ttf", 0); }},
        {269, [&] { return bare.AddMinikinFont("/f.ttf", new char[3], 3, 0, true); }},
        {269, [&] { return bare.AddMinikinFont(path.get(), nullptr, 0, 0, true); }},
        {345, [&] { return bare.BuildMinikinFamily(nullptr); }},
        {382, [&] { return bare.LoadMinikinFontFamily(1); }},
        {415, [&] { return bare.IsSystemFontFamiliesAlreadySet(); }},
        {422, [&] { return bare.SetSystemFontFamilies(nullptr); }},
        {440, [&] { return bare.GetMinikinFont(found, path.get(), 0); }},
        {475, [&] { return bare.GetMinikinFontFamilies(nullptr, out, nullptr, weight); }},
    };
    for (const auto& [site, operation] : operations) {
        Error::SetError(0);
        const gxtest::LogCapture log;
        EXPECT_FALSE(operation());
        EXPECT_EQ(log.texts(),
                  std::vector<std::string>{"@ Native Error 8 : " + std::to_string(site)});
        EXPECT_EQ(Error::GetError(), 8);
    }
    bare.ClearFontMaps();
    bare.ClearFontFamilies();
    gxtest::expectNativeError("GxFontManager", 4, [&] { EXPECT_FALSE(manager.Construct()); });
}

TEST_F(FontManagerTest, SaysGoodbye) {
    const gxtest::LogCapture log;
    char expected[64];
    {
        FontManager other;
        snprintf(expected, sizeof(expected), "~FontManager(%p)", static_cast<void*>(&other));
    }
    EXPECT_EQ(log.texts(), std::vector<std::string>{expected});
}

TEST_F(FontManagerTest, LoadsAFileByPath) {
    EXPECT_FALSE(manager.IsExisting(sans.c_str(), 0));
    gxtest::expectSilence([&] { EXPECT_TRUE(add(sans)); });
    EXPECT_TRUE(manager.IsExisting(sans.c_str(), 0));
    EXPECT_FALSE(manager.IsExisting(sans.c_str(), 1));
    const FontPointer first = font(sans);
    ASSERT_TRUE(first);
    const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kDejaVuSans);
    ASSERT_EQ(first->GetFontSize(), bytes.size());
    EXPECT_EQ(memcmp(first->GetFontData(), bytes.data(), bytes.size()), 0);
    EXPECT_TRUE(manager.AddMinikinFont(Text(sans).get(), nullptr, 0, 0, true));
    EXPECT_TRUE(add(sans));
    EXPECT_EQ(font(sans), first) << "the font that was there stays";
}

TEST_F(FontManagerTest, MapsACollectionOnceForAllItsFonts) {
    GxLog::DEBUG_ENABLE = true;
    const gxtest::LogCapture log;
    EXPECT_TRUE(add(cjk, 0));
    EXPECT_TRUE(add(cjk, 1));
    EXPECT_NE(font(cjk, 0), font(cjk, 1));
    EXPECT_EQ(font(cjk, 0)->GetFontData(), font(cjk, 1)->GetFontData());
    EXPECT_EQ(font(cjk, 1)->GetFontIndex(), 1);
    EXPECT_TRUE(add(sans));
    const auto megabytes = [](const std::string& path) {
        return static_cast<double>(std::filesystem::file_size(path)) / 1024000.0;
    };
    char first[512];
    char second[512];
    snprintf(first, sizeof(first), "BUFFER TOTAL SIZE(%.2fMB) <- %s(%.2fMB) ", megabytes(cjk),
             cjk.c_str(), megabytes(cjk));
    snprintf(second, sizeof(second), "BUFFER TOTAL SIZE(%.2fMB) <- %s(%.2fMB) ",
             megabytes(cjk) + megabytes(sans), sans.c_str(), megabytes(sans));
    EXPECT_EQ(log.texts(), (std::vector<std::string>{first, second}));
}

TEST_F(FontManagerTest, IndicesBeyondTheCollectionAreNoFonts) {
    EXPECT_TRUE(add(cjk, 0));
    for (int index : {10, 100, 207, 208, 255, 256, 65536, -1, INT_MIN, INT_MAX}) {
        const gxtest::LogCapture log;
        EXPECT_FALSE(add(cjk, index, true)) << index;
        EXPECT_EQ(log.texts(), std::vector<std::string>{kNoTypeface}) << index;
        EXPECT_FALSE(manager.IsExisting(cjk.c_str(), index)) << index;
        EXPECT_FALSE(font(cjk, index)) << index;
    }
}

TEST_F(FontManagerTest, FilesThatAreNoFontsFail) {
    const std::string bytes(gxtest::fontBytes(gxtest::kDejaVuSans).data(), 100);
    const std::string pipe = folder.path("pipe.ttf");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    struct Case {
        std::string path;
        const char* line;
        bool opens;
    };
    for (const Case& c : {Case{folder.path("missing.ttf"), kNoFont, false},
                          {folder.path(""), kNoFont, true},
                          {pipe, kNoFont, true},
                          {folder.write("empty.ttf", ""), kNoFont, true},
                          {folder.write("garbage.ttf", std::string(5000, 'x')), kNoTypeface, true},
                          {folder.write("truncated.ttf", bytes), kNoTypeface, true}}) {
        const gxtest::LogCapture log;
        EXPECT_FALSE(add(c.path)) << c.path;
        std::vector<std::string> expected = {c.line};
        if (!c.opens) expected.insert(expected.begin(), "GxFontManager");
        EXPECT_EQ(log.texts(), expected) << c.path;
        EXPECT_FALSE(manager.IsExisting(c.path.c_str(), 0));
    }
}

TEST_F(FontManagerTest, AFileThatFailedStaysFailed) {
    const std::string path = folder.path("late.ttf");
    EXPECT_FALSE(add(path));
    std::filesystem::copy_file(sans, path);
    const gxtest::LogCapture log;
    EXPECT_FALSE(add(path));
    EXPECT_EQ(log.texts(), std::vector<std::string>{kNoFont});
    manager.ClearFontMaps();
    EXPECT_TRUE(add(path)) << "until the maps are cleared";
    std::filesystem::remove(path);
    EXPECT_TRUE(add(path)) << "and one that was loaded stays";
}

// A sanitizer's allocator ends the process, and its checks need descriptors of their own.
#ifndef GXTEXT_WRAP_ALLOCATIONS
TEST_F(FontManagerTest, AFileIsNoWorseForWhatTheSystemLacked) {
    // Of these two one is read and one is mapped.
    for (const std::string& path : {sans, cjk}) {
        gxtest::expectNativeError("GxFontManager", GXE_ERROR_INVALID_ARGUMENT, [&] {
            const Exhausted descriptors(RLIMIT_NOFILE);
            EXPECT_FALSE(add(path));
        });
    }
    EXPECT_TRUE(add(sans));
    if (!Exhausted::limitsAddresses())
        GTEST_SKIP() << "this machine does not limit a process's addresses";
    gxtest::expectNativeError("GxFontManager", GXE_ERROR_INVALID_ARGUMENT, [&] {
        const Exhausted addresses(RLIMIT_AS);
        EXPECT_FALSE(add(cjk));
    });
    EXPECT_TRUE(add(cjk));
}
#endif

TEST_F(FontManagerTest, FilesThatChangeInPlaceStayAsTheyWereLoaded) {
    const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kDejaVuSans);
    const auto copy = [&](const char* name) {
        return folder.write(name, std::string(bytes.begin(), bytes.end()));
    };
    const std::string shortened = copy("shortened.ttf");
    const std::string overwritten = copy("overwritten.ttf");
    ASSERT_TRUE(add(shortened) && add(overwritten));
    std::filesystem::resize_file(shortened, 0);
    std::fstream(overwritten, std::ios::in | std::ios::out) << std::string(bytes.size(), 'x');
    for (const std::string& path : {shortened, overwritten}) {
        const FontPointer loaded = font(path);
        ASSERT_EQ(loaded->GetFontSize(), bytes.size());
        EXPECT_EQ(memcmp(loaded->GetFontData(), bytes.data(), bytes.size()), 0) << path;
    }
}

// That nothing leaks or is freed twice shows under the address sanitizer.
TEST_F(FontManagerTest, TakesOverBuffersWhateverTheOutcome) {
    const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kDejaVuSans);
    EXPECT_TRUE(addBytes("mine", bytes));
    const FontPointer mine = font("mine");
    ASSERT_TRUE(mine);
    EXPECT_TRUE(addBytes("mine", bytes)) << "there already: freed at once";
    EXPECT_TRUE(addBytes("mine", bytes, 0, false)) << "loaded again, the first one kept";
    EXPECT_EQ(font("mine"), mine);
    EXPECT_EQ(memcmp(mine->GetFontData(), bytes.data(), bytes.size()), 0);

    const gxtest::LogCapture log;
    EXPECT_FALSE(addBytes("garbage", std::vector<char>(100, 'x')));
    EXPECT_FALSE(manager.AddMinikinFont("none", new char[1], 0, 0, true));
    EXPECT_FALSE(addBytes("mine", bytes, 1));
    EXPECT_FALSE(addBytes("", bytes));
    EXPECT_FALSE(
        manager.AddMinikinFont(static_cast<const char*>(nullptr), new char[1], 1, 0, true));
    EXPECT_FALSE(
        manager.AddMinikinFont(static_cast<const GxString*>(nullptr), new char[1], 1, 0, true));
    const std::string noPath = "AddMinikinFont() - path is NULL";
    EXPECT_EQ(log.texts(), (std::vector<std::string>{kNoTypeface, kNoFont, kNoTypeface, noPath,
                                                     noPath, noPath}));
}

TEST_F(FontManagerTest, NullAndEmptyPathsAreNoFonts) {
    const gxtest::LogCapture log;
    EXPECT_FALSE(manager.IsExisting(nullptr, 0));
    EXPECT_FALSE(manager.IsExisting("", 0));
    EXPECT_EQ(log.texts(), std::vector<std::string>(2, "IsExisting() - path is NULL"));
    FontPointer found;
    EXPECT_FALSE(manager.GetMinikinFont(found, nullptr, 0));
    GxString bare;
    EXPECT_FALSE(manager.GetMinikinFont(found, &bare, 0));
    EXPECT_FALSE(manager.AddMinikinFont(&bare, nullptr, 0, 0, true));
}

TEST_F(FontManagerTest, TheUserFontComesFirstInTheStyleOfItsName) {
    ASSERT_TRUE(addBytes("/f/Mine-Italic.ttf", gxtest::fontBytes(gxtest::kDejaVuSans)));
    ASSERT_TRUE(addBytes("/f/Mine-Black.ttf", gxtest::fontBytes(gxtest::kDejaVuSans)));
    manager.SetSystemFontFamilies(makeFamilyList({makeFamilyRecord(0, {{sans}}, 1)}));
    ASSERT_TRUE(add(sans));
    using Slant = minikin::FontStyle::Slant;
    int weight = 0;
    Families found = families("/f/Mine-Black.ttf", &weight);
    EXPECT_EQ(weight, 900);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0]->getNumFonts(), 1u);
    EXPECT_EQ(found[0]->getFont(0)->typeface(), font("/f/Mine-Black.ttf"));
    EXPECT_EQ(found[0]->getFont(0)->style(), minikin::FontStyle(900, Slant::UPRIGHT));
    EXPECT_EQ(found[0]->localeListId(), 0u);
    EXPECT_EQ(found[1]->getFont(0)->typeface(), font(sans));
    found = families("/f/Mine-Italic.ttf", &weight);
    EXPECT_EQ(weight, 400);
    EXPECT_EQ(found[0]->getFont(0)->style(), minikin::FontStyle(400, Slant::ITALIC));
    found = families("/f/Unknown-Bold.ttf", &weight);
    EXPECT_EQ(weight, 700) << "told by the name, font or not";
    EXPECT_EQ(found.size(), 1u);
}

TEST_F(FontManagerTest, SystemRobotoAsUserFontGivesNoFamilyOfItsOwn) {
    for (const char* path : {"/system/fonts/Roboto-Bold.ttf", "/x/system/fonts/Roboto-Bold.ttf"}) {
        ASSERT_TRUE(addBytes(path, gxtest::fontBytes(gxtest::kDejaVuSans)));
        int weight = 0;
        EXPECT_TRUE(families(path, &weight).empty());
        EXPECT_EQ(weight, 700);
    }
}

TEST_F(FontManagerTest, AppendsToWhatIsThere) {
    ASSERT_TRUE(add(sans));
    Families out(1);
    int weight = 400;
    EXPECT_TRUE(manager.GetMinikinFontFamilies(nullptr, out, Text(sans).get(), weight));
    EXPECT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0], nullptr);
}

TEST_F(FontManagerTest, SystemFamiliesAreSetOnce) {
    EXPECT_FALSE(manager.IsSystemFontFamiliesAlreadySet());
    EXPECT_TRUE(manager.SetSystemFontFamilies(makeFamilyList({})));
    EXPECT_TRUE(manager.IsSystemFontFamiliesAlreadySet());
    List* late = makeFamilyList({makeFamilyRecord(7, {{sans}}), nullptr});
    EXPECT_TRUE(manager.SetSystemFontFamilies(late)) << "ignored";
    EXPECT_FALSE(manager.LoadMinikinFontFamily(7));
    manager.ClearFontFamilies();
    EXPECT_FALSE(manager.IsSystemFontFamiliesAlreadySet());
    EXPECT_TRUE(manager.SetSystemFontFamilies(late)) << "taken now";
    EXPECT_TRUE(manager.LoadMinikinFontFamily(7));
}

TEST_F(FontManagerTest, LoadsOneFamilyOfALocaleAtATime) {
    const uint32_t arabic = minikin::registerLocaleList("und-Arab");
    const uint32_t greek = minikin::registerLocaleList("und-Grek");
    ASSERT_NE(arabic, 0u);
    ASSERT_NE(arabic, greek);
    const std::string naskh = gxtest::fontPath(gxtest::kNotoArabic);
    List* list = makeFamilyList({
        makeFamilyRecord(greek, {{sans}}),
        makeFamilyRecord(arabic, {{naskh, 0, 300, true}}, 0, 2),
        makeFamilyRecord(arabic, {{sans}}, 0, 1),
    });
    ASSERT_TRUE(manager.SetSystemFontFamilies(list));
    EXPECT_TRUE(families().empty());
    EXPECT_TRUE(manager.LoadMinikinFontFamily(arabic));
    EXPECT_TRUE(manager.IsExisting(naskh.c_str(), 0));
    EXPECT_FALSE(manager.IsExisting(sans.c_str(), 0));
    EXPECT_TRUE(manager.LoadMinikinFontFamily(arabic));
    EXPECT_FALSE(manager.LoadMinikinFontFamily(arabic)) << "none left";
    EXPECT_FALSE(manager.LoadMinikinFontFamily(9999));

    const Families found = families();
    ASSERT_EQ(found.size(), 2u) << "the greek family's font is there, but the family is not loaded";
    EXPECT_EQ(found[0]->localeListId(), arabic);
    EXPECT_EQ(found[0]->variant(), minikin::FamilyVariant::ELEGANT);
    EXPECT_EQ(found[0]->getFont(0)->style(),
              minikin::FontStyle(300, minikin::FontStyle::Slant::ITALIC));
    EXPECT_FALSE(found[0]->isCustomFallback());
    EXPECT_EQ(found[1]->variant(), minikin::FamilyVariant::COMPACT);
}

TEST_F(FontManagerTest, AFamilyThatCannotBeBuiltIsTriedAgain) {
    const std::string late = folder.path("late.ttf");
    List* list = makeFamilyList({makeFamilyRecord(3, {{sans}, {late}})});
    ASSERT_TRUE(manager.SetSystemFontFamilies(list));
    EXPECT_TRUE(manager.LoadMinikinFontFamily(3)) << "there was one to load";
    EXPECT_TRUE(families().empty());
    EXPECT_TRUE(manager.LoadMinikinFontFamily(3));
    std::filesystem::copy_file(sans, late);
    manager.ClearFontMaps();
    EXPECT_TRUE(manager.LoadMinikinFontFamily(3));
    EXPECT_FALSE(manager.LoadMinikinFontFamily(3));
    ASSERT_EQ(families().size(), 1u);
    EXPECT_EQ(families()[0]->getNumFonts(), 2u);
}

TEST_F(FontManagerTest, FamiliesWithoutTheirFontsAreLeftOut) {
    GxFontFamily* odd = makeFamilyRecord(0, {{sans, 0, -5}, {"/f/gone.ttf"}}, 1);
    odd->fonts->Add(static_cast<void*>(nullptr));
    GxFontFamily* fontless = makeFamilyRecord(0, {}, 1);
    delete fontless->fonts;
    fontless->fonts = nullptr;
    List* list =
        makeFamilyList({nullptr, makeFamilyRecord(0, {{"/f/gone.ttf"}}, 1), fontless, odd});
    ASSERT_TRUE(manager.SetSystemFontFamilies(list));
    EXPECT_TRUE(families().empty());
    ASSERT_TRUE(add(sans));
    ASSERT_EQ(families().size(), 1u);
    EXPECT_EQ(families()[0]->getNumFonts(), 1u);
    EXPECT_FALSE(manager.BuildMinikinFamily(nullptr));
    EXPECT_FALSE(manager.BuildMinikinFamily(fontless));
    EXPECT_FALSE(manager.BuildMinikinFamily(odd)) << "one of its fonts is missing";
}

TEST_F(FontManagerTest, FamiliesAndTypefacesAreTheSameUntilFontsChange) {
    const std::string arabic = gxtest::fontPath(gxtest::kNotoArabic);
    ASSERT_TRUE(add(sans));
    ASSERT_TRUE(add(arabic));
    manager.SetSystemFontFamilies(makeFamilyList({makeFamilyRecord(0, {{arabic}}, 1)}));
    const Families first = families(sans);
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(families(sans), first);
    EXPECT_NE(families(arabic).front(), first.front());

    const auto typeface = manager.GetTypeface(first, 400, false);
    ASSERT_TRUE(typeface);
    EXPECT_EQ(manager.GetTypeface(first, 400, false), typeface);
    EXPECT_NE(manager.GetTypeface(first, 700, false), typeface);
    EXPECT_NE(manager.GetTypeface(first, 400, true), typeface);
    EXPECT_NE(manager.GetTypeface({first[1]}, 400, false), typeface);

    ASSERT_TRUE(add(sans));  // known already: nothing changes
    EXPECT_EQ(families(sans), first);
    ASSERT_TRUE(add(gxtest::fontPath(gxtest::kNotoHebrew)));
    Families second = families(sans);
    ASSERT_EQ(second.size(), 2u);
    EXPECT_NE(second.front(), first.front());
    EXPECT_NE(second.back(), first.back());

    const std::weak_ptr<minikin::FontFamily> released = second.front();
    const std::weak_ptr<const android::Typeface> releasedTypeface =
        manager.GetTypeface(second, 400, false);
    second.clear();
    manager.ClearFontMaps();
    EXPECT_TRUE(released.expired());
    EXPECT_TRUE(releasedTypeface.expired());
    EXPECT_TRUE(families(sans).empty());
}

TEST_F(FontManagerTest, FontsAndFamiliesOutliveTheManager) {
    FontPointer mapped, handedOver;
    Families kept;
    {
        FontManager other;
        ASSERT_TRUE(other.Construct());
        const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kNotoSans);
        ASSERT_TRUE(other.AddMinikinFont(sans.c_str(), nullptr, 0, 0, true));
        ASSERT_TRUE(other.AddMinikinFont("mine", copyOf(bytes), static_cast<unsigned>(bytes.size()),
                                         0, true));
        ASSERT_TRUE(other.GetMinikinFont(mapped, Text(sans).get(), 0));
        ASSERT_TRUE(other.GetMinikinFont(handedOver, Text("mine").get(), 0));
        int weight = 400;
        ASSERT_TRUE(other.GetMinikinFontFamilies(nullptr, kept, Text("mine").get(), weight));
    }
    for (const FontPointer& font : {mapped, handedOver}) {
        const char* data = static_cast<const char*>(font->GetFontData());
        EXPECT_NE(std::count(data, data + font->GetFontSize(), '\0'), 0);
    }
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_TRUE(kept[0]->hasGlyph('A', 0));
}

TEST_F(FontManagerTest, VerboseLinesNameTheFonts) {
    ASSERT_TRUE(add(sans));
    const gxtest::LogCapture log;
    families(sans);
    EXPECT_TRUE(log.lines().empty());
    GxLog::DEBUG_ENABLE = true;
    families(sans);
    EXPECT_EQ(log.texts(),
              (std::vector<std::string>{"GetMinikinFontFamilies >>> GetMinikinFontFamilies",
                                        "GetMinikinFontFamilies - userFont[" + sans + "]",
                                        "GetMinikinFontFamilies - familyFont[[### null ###]]",
                                        "GetMinikinFontFamilies <<< GetMinikinFontFamilies"}));
}

TEST_F(FontManagerTest, SurvivesEveryFailedAllocation) {
    const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kDejaVuSans);
    Text path(sans);
    EXPECT_GT(gxtest::failEachAllocation([&] {
                  FontManager other;
                  if (!other.Construct()) return;
                  other.AddMinikinFont(path.get(), nullptr, 0, 0, true);
              }),
              5);
    for (int n = 1;; n++) {
        FontManager other;
        ASSERT_TRUE(other.Construct());
        char* data = copyOf(bytes);
        bool added;
        bool triggered;
        {
            gxtest::AllocationFailure failure(n);
            added =
                other.AddMinikinFont("mine", data, static_cast<unsigned>(bytes.size()), 0, true);
            triggered = failure.triggered();
        }
        EXPECT_EQ(other.IsExisting("mine", 0), added) << n;
        if (!triggered) {
            EXPECT_TRUE(added);
            break;
        }
    }
    ASSERT_TRUE(add(sans));
    Families out;
    gxtest::failEachAllocation([&] {
        int weight = 123;
        out.clear();
        const bool collected = manager.GetMinikinFontFamilies(nullptr, out, path.get(), weight);
        EXPECT_EQ(out.size(), collected ? 1u : 0u);
    });
}

TEST_F(FontManagerTest, ThreadsLoadAndCollectAtOnce) {
    manager.SetSystemFontFamilies(
        makeFamilyList({makeFamilyRecord(1, {{cjk, 0}, {cjk, 1}}), makeFamilyRecord(2, {{sans}})}));
    const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kNotoSans);
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (unsigned t = 0; t < 4; t++) {
        threads.emplace_back([&, t] {
            const std::string own = "own" + std::to_string(t % 2);
            for (int i = 0; i < 10; i++) {
                EXPECT_TRUE(addBytes(own, bytes));
                manager.LoadMinikinFontFamily(1 + t % 2);
                for (const auto& family : families(own)) {
                    EXPECT_TRUE(family->hasGlyph('A', 0));
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(families("own0").size(), 3u);
}

}  // namespace
}  // namespace GxFontEffect
