// The program as a whole: arguments in, exit status and streams out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "Process.h"
#include "Style.h"
#include "scene/Png.h"
#include "style/FieldTable.h"
#include "support/Fonts.h"
#include "support/TempFolder.h"

namespace gxtool {
namespace {

using gxtest::fontPath;
using gxtest::Outcome;
using gxtest::runGxtext;
using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kLatin = fontPath(gxtest::kNotoSans);

std::vector<std::string> withFont(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--font", kLatin, "--font-size", "40"});
    return arguments;
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

gxtext::Image picture(const Outcome& outcome) {
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return gxtext::decodePng(outcome.out, "output");
}

int countInk(const gxtext::Image& image) {
    return static_cast<int>(std::count_if(image.pixels.begin(), image.pixels.end(),
                                          [](uint32_t pixel) { return pixel >> 24 != 0; }));
}

json measured(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "measure");
    arguments.push_back("--json");
    const Outcome outcome = runGxtext(withFont(arguments));
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return json::parse(outcome.out);
}

TEST(Program, TellsAboutItself) {
    const Outcome version = runGxtext({"--version"});
    EXPECT_EQ(version.status, 0);
    for (const char* name :
         {"gxtext ", "HarfBuzz ", "FreeType ", "ICU ", "libpng ", "libdeflate "}) {
        EXPECT_THAT(version.out, HasSubstr(name));
    }
    const Outcome help = runGxtext({"render", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, testing::ContainsRegex("--font-size PX .*1-4096"));
    EXPECT_EQ(help.err, "");
}

TEST(Program, WrongCommandLinesExitWith2AndSayWhatIsAllowed) {
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const Case cases[] = {
        {{},
         "a command is missing; allowed: render, measure, key, fonts, batch, import, compare, "
         "studio\n"},
        {{"paint"},
         "no command is called paint; allowed: render, measure, key, fonts, batch, import, "
         "compare, studio\n"},
        {{"rendr"}, "no command is called rendr; did you mean \"render\"?\n"},
        {{"--text", "a", "render"}, "--text goes after render\n"},
        {{"render"}, "there is no text"},
        {{"render", "--nonsense"}, "unknown option --nonsense\n"},
        {{"render", "--size=3"}, "unknown option --size; did you mean --font-size?\n"},
        {{"render", "a.json", "b.json"}, "unexpected argument b.json\n"},
        {{"render", "--text"}, "--text: "},
        {{"render", "--text", "a", "--font-size", "0"}, "0 is out of range 1-4096\n"},
        {{"render", "--text", "a", "--font-size", "nan"}, "nan is out of range 1-4096\n"},
        {{"render", "--text", "a", "--font-size", "4097"}, "4097 is out of range 1-4096\n"},
        {{"render", "--text", "a", "--width", "2147483648"}, " is out of range 1-65535\n"},
        {{"render", "--text", "a", "--width", "1.5"},
         "--width: 1.5 is not a whole number in the range 1-65535\n"},
        {{"render", "--text", "a", "--padding", "1,2"}, "four whole numbers, 0-4096\n"},
        {{"render", "--text", "a", "--color", "red"}, "red is not a colour"},
        {{"render", "--text", "a", "--opacity", "1.5"}, "1.5 is out of range 0-1\n"},
        {{"render", "--text", "a", "--align", "middle"}, "{start,left,center,right}"},
        {{"render", "--text", "a", "--compression", "best"}, "{fast,default,small}"},
        {{"render", "--text", "a", "--locale", "de_DE"}, "--locale: "},
        {{"render", "--text", "a", "--stroke", "4,7"}, "--stroke 4,7: "},
        {{"render", "--text", "a", "--set", "size"}, "--set size: "},
        {{"render", "--text", "a", "--set", "effects[0].size=1"}, "effects[0]"},
        {{"render", "--text", "a", "--scale", "0"}, "--scale: "},
        {{"render", "-", "--text", "-"}, "not both"},
        {{"render", "--font", kLatin}, "there is no text"},
        {{"render", "--text", "a", "-o", "x.jpg"}, "end the name in .png or .webp"},
        {{"render", "--text", "a", "--format", "gif"}, "{png,webp}"},
        {{"batch"}, "--output is required\n"},
        {{"batch", "-o", "{id}"}, "end the name in .png or .webp"},
        {{"batch", "-o", "{id.png"}, "brace"},
        {{"batch", "-o", "a.png", "--shard", "3/2"}, "--shard 3/2 is not I/N"},
        {{"batch", "-", "-o", "a.png"}, "not both\n"},
        {{"measure", "--text", "a", "-o", "x.png"}, "unknown option -o\n"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = runGxtext(c.arguments, "{}");
        EXPECT_EQ(outcome.status, 2) << c.message;
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, StartsWith("gxtext: "));
        EXPECT_THAT(outcome.err, HasSubstr(c.message));
    }
}

// Ranges, names and defaults in the help are those of the format.
TEST(Program, HelpFollowsTheFieldTable) {
    const std::string help = runGxtext({"render", "--help"}).out;
    const std::pair<const char*, const char*> options[] = {
        {"--font-index", "fontIndex"}, {"--font-size", "size"}, {"--color", "color"},
        {"--opacity", "opacity"},      {"--width", "width"},    {"--padding", "padding"},
        {"--align", "align"},
    };
    for (const auto& [option, name] : options) {
        const auto& field = gxtext::styleField(name);
        const std::string line = help.substr(help.find(std::string("  ") + option + " "), 160);
        if (field.range.max > 0) {
            EXPECT_THAT(line, HasSubstr(field.range.text())) << option;
        }
        if (const auto* number = std::get_if<double>(&field.initial)) {
            EXPECT_THAT(
                line, testing::ContainsRegex("default " + std::to_string(int(*number)) + "[^0-9]"));
        }
        if (const auto* text = std::get_if<std::string_view>(&field.initial)) {
            EXPECT_THAT(line, HasSubstr("default " + std::string(*text))) << option;
        }
        if (const auto* choice = std::get_if<gxtext::Choice<Style>>(&field.target)) {
            for (const auto choiceName : choice->names)
                EXPECT_THAT(line, HasSubstr(std::string(choiceName)));
        }
    }
}

TEST(Program, EffectsNeedNoFile) {
    const std::string style =
        R"({"text": "Hi", "font": ")" + kLatin + R"(", "size": 80, "effects": [
        {"type": "stroke", "size": 8, "color": "#102040", "position": "center"},
        {"type": "outerShadow", "distance": 12, "size": 16, "color": "#B0000000", "opacity": 0.5},
        {"type": "linearGradient", "angle": 45, "stops": [{"color": "#FF0000", "position": 0},
                                                          {"color": "#0000FF", "position": 1}]}]})";
    const Outcome shorthand = runGxtext(withFont(
        {"render", "--text", "Hi", "--stroke", "4,#102040,center", "--shadow", "6,8,#B0000000",
         "--gradient", "#FF0000,#0000FF,45", "--set", "effects[1].opacity=0.5", "--scale", "2"}));
    EXPECT_GT(countInk(picture(shorthand)), 100);
    EXPECT_EQ(shorthand.out, runGxtext({"render", "-"}, style).out);
    // An effect that the file has is changed.
    EXPECT_EQ(runGxtext({"key", "-", "--stroke", "9"}, style).out,
              runGxtext({"key", "-", "--set", "effects[0].size=9"}, style).out);
    const Outcome wrong = runGxtext({"key", "-", "--set", "effects[0].size=140"}, style);
    EXPECT_EQ(wrong.err,
              "gxtext: --set effects[0].size=140: $.effects[0].size: 140 is out of range 0-100\n");
}

TEST(Program, AFolderOrAListOfFontsIsAllThereIs) {
    const gxtest::TempFolder folder;
    std::filesystem::copy_file(kLatin, folder.path("latin.ttf"));
    const Outcome fonts =
        runGxtext({"fonts", "--fonts", folder.path(""), "--text", "a\u0E01", "--json"});
    EXPECT_EQ(fonts.status, 0);
    EXPECT_EQ(json::parse(fonts.out)[0]["file"], folder.path("latin.ttf"));
    EXPECT_EQ(fonts.err, "gxtext: warning: no font has U+0E01\n");
    const Outcome list =
        runGxtext({"fonts", "--fonts", kLatin, "--fonts", fontPath(gxtest::kNotoHebrew), "--text",
                   "a\u05D0\u0E01", "--json"});
    EXPECT_EQ(json::parse(list.out)[0]["file"], kLatin);
    EXPECT_EQ(json::parse(list.out)[1]["codePoints"], json({"U+05D0"}));
    EXPECT_EQ(list.err, fonts.err);
}

TEST(Program, FailuresExitWith1AndSayWhy) {
    const gxtest::TempFolder folder;
    const std::string truncated = folder.write("cut.ttf", readFile(kLatin).substr(0, 1000));
    const std::string empty = folder.write("empty.ttf", "");
    const std::string style = folder.write("bad.json", R"({"text": "a", "size": 9000, "bold": 1})");
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const Case cases[] = {
        {{"render", "no-such.json"},
         "gxtext: no-such.json: cannot open: No such file or directory\n"},
        {{"render", folder.path("")}, "Is a directory\n"},
        {{"render", style},
         "gxtext: " + style +
             ": $.size: 9000 is out of range 1-4096\n"
             "gxtext: " +
             style + ": $.bold: 1 is not true or false\n"},
        {{"render", "--text", "a", "--font", "no-such.ttf"}, "no-such.ttf: no such font file"},
        {{"render", "--text", "a", "--font", folder.path("")}, "not a regular file"},
        {{"render", "--text", "a", "--font", truncated}, "not a TrueType or OpenType font"},
        {{"render", "--text", "a", "--font", empty}, "not a TrueType or OpenType font"},
        {{"render", "--text", "a", "--font", kLatin, "--font-index", "7"}, ": no font 7 in it"},
        {{"render", "--text", "a", "--font", "No Such Family"},
         "font \"No Such Family\": no such family is installed"},
        {{"render", "--text", "a", "--font", "Noto Sans", "--font-index", "1"},
         "font index 1: needs a font file; \"Noto Sans\" is a family"},
        {{"render", "--text", ""}, "gxtext: the text: empty\n"},
        {{"render", "--text", "a\xFF"}, "gxtext: the text: not valid UTF-8\n"},
        {{"render", "--text", "\n"}, "the text: no width"},
        {{"render", "--text", std::string(100000, 'M'), "--font", kLatin},
         "allowed: up to 65535 pixels"},
        {{"render", "--text", "a", "--width", "10", "--padding", "5"},
         "no room within the padding"},
        {{"render", "--text", "a", "--font", kLatin, "-o", folder.path("no/such/dir.png")},
         "cannot create"},
        {{"render", "--text", "a", "--font", kLatin, "-o", "/dev/full"},
         "/dev/full: cannot write to"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = runGxtext(c.arguments);
        EXPECT_EQ(outcome.status, 1) << c.message;
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr(c.message));
        EXPECT_THAT(outcome.err, StartsWith("gxtext: "));
    }
}

// A folder with a style and what it reads, and a picture that must not get lost.
class Files : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy_file(kLatin, folder.path("latin.ttf"));
        std::filesystem::copy_file(GXTEXT_SOURCE_DIR "/examples/styles/patterns/checks.png",
                                   folder.path("pattern.png"));
        folder.write("old.png", "old");
        writeStyle("style.json", "latin.ttf", "pattern.png");
    }
    void writeStyle(const std::string& name, const std::string& font, const std::string& pattern) {
        const json effect{{"type", "pattern"}, {"pattern", pattern}};
        folder.write(name, json{{"text", "Hamburg"}, {"font", font}, {"effects", {effect}}}.dump());
    }

    gxtest::TempFolder folder;
};

TEST_F(Files, FailedWritesAreFailuresAndKeepWhatWasThere) {
    struct Case {
        const char* script;
        int status;
        const char* message;
    };
    const char* const kFull = "gxtext: standard output: cannot write to: No space left on device\n";
    const char* const kInput = "the output would replace ";
    const std::vector<std::string> inputs{"style.json", "pattern.png", "latin.ttf"};
    const auto bytesOf = [this](std::vector<std::string> files) {
        for (std::string& file : files) file = readFile(folder.path(file));
        return files;
    };
    const std::vector<std::string> before = bytesOf(inputs);
    for (const Case& c : std::initializer_list<Case>{
             {"ulimit -f 1; gxtext render style.json -o old.png", 1,
              "gxtext: old.png: cannot write to: File too large\n"},
             {"gxtext --version > /dev/full", 1, kFull},
             {"gxtext measure --help > /dev/full", 1, kFull},
             {"gxtext measure style.json > /dev/full", 1, kFull},
             {"gxtext render style.json > /dev/full", 1, kFull},
             {"gxtext render style.json >&-", 1,
              "standard output: cannot write to: Bad file descriptor\n"},
             {"gxtext render style.json -o pattern.png", 2, kInput},
             {"gxtext render style.json >> pattern.png", 2, kInput},
             {"ln -s style.json s.png; gxtext render style.json -o s.png", 2, kInput},
             {"ln style.json h.png; gxtext render - -o h.png < style.json", 2, kInput},
             {"ln latin.ttf f.png; gxtext render style.json -o ./f.png", 2, kInput}}) {
        const Outcome outcome = gxtest::runShell(c.script, folder.path(""));
        EXPECT_EQ(outcome.status, c.status) << c.script;
        EXPECT_THAT(outcome.err, HasSubstr(c.message)) << c.script;
        EXPECT_EQ(readFile(folder.path("old.png")), "old") << c.script;
        EXPECT_TRUE(bytesOf(inputs) == before) << c.script;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder.path(""))) {
        EXPECT_NE(entry.path().filename().string().front(), '.') << entry;
    }
}

TEST_F(Files, ComparesPicturesAndFolders) {
    const auto run = [this](const std::string& arguments) {
        return gxtest::runShell("gxtext compare " + arguments, folder.path(""));
    };
    ASSERT_EQ(
        gxtest::runShell("mkdir a b && cp pattern.png a/same.png && cp pattern.png b/same.png &&"
                         "gxtext render style.json -o a/x.png && cp a/x.png a/only.png &&"
                         "gxtext render style.json -o b/x.png --opacity 0.5 &&"
                         "gxtext render style.json -o a/moved.webp && cp a/x.png b/moved.webp &&"
                         "cp old.png b/broken.png; cp a/x.png a/broken.png",
                         folder.path(""))
            .status,
        0);
    EXPECT_EQ(run("a/same.png b/same.png").status, 0);
    const Outcome pair = run("a/x.png b/x.png --diff d/x.png");
    EXPECT_EQ(pair.status, 1);
    EXPECT_THAT(pair.out,
                testing::ContainsRegex("^b/x.png: [0-9]+ of [0-9]+ pixels differ, by up to "));
    const gxtext::Image drawn = gxtext::decodePng(readFile(folder.path("d/x.png")), "difference");
    EXPECT_EQ(drawn.width, 3 * gxtext::decodePng(readFile(folder.path("a/x.png")), "a").width);

    const Outcome folders = run("a b --diff sheet");
    EXPECT_EQ(folders.status, 1);
    EXPECT_THAT(folders.out, HasSubstr("only.png: not in b\n"));
    EXPECT_THAT(folders.out, HasSubstr("broken.png: b/broken.png: "));
    EXPECT_THAT(folders.out, testing::Not(HasSubstr("same.png")));
    EXPECT_THAT(folders.out, testing::Not(HasSubstr("moved.webp"))) << "the same pixels";
    const std::string page = readFile(folder.path("sheet/index.html"));
    EXPECT_THAT(page, HasSubstr("src=\"x.png.png\""));
    EXPECT_THAT(page, HasSubstr("3 of 5 pictures differ."));
    EXPECT_TRUE(std::filesystem::exists(folder.path("sheet/x.png.png")));
    const json list = json::parse(run("a b --json --tolerance 255").out);
    EXPECT_EQ(list[4]["name"], "x.png");
    EXPECT_EQ(list[4]["same"], true);
    EXPECT_GT(list[4]["largest"], 0);
    EXPECT_EQ(run("a/x.png none.png").status, 1);
}

TEST_F(Files, ImportsLayerEffectsAndSaysWhatIsLost) {
    const std::string exact = folder.write("exact.json", R"({"stroke": [{"size": 3}]})");
    const std::string noisy = folder.write("noisy.json", R"({"outerGlow": {"noise": 0.5}})");
    const std::string style = folder.path("out.json");
    const Outcome plain = runGxtext({"import", exact, "--strict"});
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(plain.err, "");
    EXPECT_EQ(gxtext::Style::fromJson(plain.out).effects.at(0).size, 3);

    const std::string loss =
        "gxtext: " + noisy + ": $.outerGlow.noise: dropped: glows have no noise\n";
    const Outcome lossy = runGxtext({"import", noisy, "-o", style});
    EXPECT_EQ(lossy.status, 0);
    EXPECT_EQ(lossy.out, "");
    EXPECT_EQ(lossy.err, loss);
    EXPECT_EQ(gxtext::Style::fromFile(style).effects.size(), 1u);

    const Outcome data = runGxtext({"import", "-", "--json"}, readFile(noisy));
    EXPECT_EQ(data.status, 0);
    EXPECT_EQ(data.err, "");
    const json report = json::parse(data.out);
    EXPECT_EQ(report["losses"][0]["path"], "$.outerGlow.noise");
    EXPECT_EQ(report["style"], json::parse(readFile(style)));

    const Outcome strict = runGxtext({"import", noisy, "-o", folder.path("no.json"), "--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.err, loss + "gxtext: " + noisy + ": 1 field is dropped or approximated\n");
    EXPECT_FALSE(std::filesystem::exists(folder.path("no.json")));
    EXPECT_EQ(runGxtext({"import", exact, "-o", exact}).status, 2);
}

TEST_F(Files, WritesToWhateverTakesBytes) {
    const std::string expected = gxtest::runShell("gxtext render style.json", folder.path("")).out;
    ASSERT_GT(countInk(gxtext::decodePng(expected, "output")), 100);
    writeStyle("absolute.json", folder.path("latin.ttf"), folder.path("pattern.png"));
    for (const char* script :
         {"gxtext render style.json -o old.png",
          "gxtext render style.json -o /dev/stdout > old.png",
          "gxtext render style.json -o /dev/stdout | cat > old.png",
          "mkfifo pipe; cat pipe > old.png & gxtext render style.json -o pipe; wait; test -p pipe",
          "cat absolute.json | gxtext render /dev/stdin -o old.png",
          "gxtext render style.json -o old.png 2>&-"}) {
        folder.write("old.png", "old");
        EXPECT_EQ(gxtest::runShell(script, folder.path("")).status, 0) << script;
        EXPECT_TRUE(readFile(folder.path("old.png")) == expected) << script;
    }
}

TEST_F(Files, PipesAreNotWaitedForWhereAFileIsNamed) {
    writeStyle("pattern.json", "latin.ttf", "pipe.ttf");
    writeStyle("font.json", "pipe.ttf", "pattern.png");
    for (const auto& [style, message] :
         {std::pair("pattern.json", "pipe.ttf: cannot read: not a regular file\n"),
          std::pair("font.json", "pipe.ttf: not a regular file\n"),
          std::pair("pipe.ttf", "pipe.ttf: cannot read: not a regular file\n")}) {
        const Outcome outcome = gxtest::runShell(
            "test -p pipe.ttf || mkfifo pipe.ttf; timeout 20 \"$program\" render " +
                std::string(style),
            folder.path(""));
        EXPECT_EQ(outcome.status, 1) << style;
        EXPECT_THAT(outcome.err, HasSubstr(message));
    }
}

TEST_F(Files, FallbackFontsThatCannotBeLoadedAreFailures) {
    std::filesystem::create_directory(folder.path("fonts"));
    const std::string hebrew = folder.path("fonts/hebrew.ttf");
    std::filesystem::copy_file(fontPath(gxtest::kNotoHebrew), hebrew);
    folder.write("fonts.conf", "<fontconfig><dir>" + folder.path("fonts") + "</dir><cachedir>" +
                                   folder.path("cache") + "</cachedir></fontconfig>");
    const std::string run =
        "export FONTCONFIG_FILE=$PWD/fonts.conf; gxtext fonts --font latin.ttf --text '\u05D0'";
    const Outcome good = gxtest::runShell(run, folder.path(""));
    EXPECT_THAT(good.out, HasSubstr(hebrew));
    // In place: what fontconfig remembers of the folder stays valid.
    std::filesystem::resize_file(hebrew, 100);
    const Outcome bad = gxtest::runShell(run, folder.path(""));
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.err, "gxtext: " + hebrew + ": not a TrueType or OpenType font\n");
}

TEST(Program, RendersTheSameBytesEveryTimeAndEverywhere) {
    const gxtest::TempFolder folder;
    const std::string file = folder.path("out.png");
    const auto arguments = withFont({"render", "--text", "Hamburg", "--color", "#80336699"});
    const Outcome first = runGxtext(arguments);
    const Outcome second = runGxtext(arguments);
    auto toFile = arguments;
    toFile.insert(toFile.end(), {"-o", file});
    const Outcome third = runGxtext(toFile);
    EXPECT_EQ(third.status, 0);
    EXPECT_EQ(third.out, "");
    EXPECT_EQ(first.err + second.err + third.err, "");
    EXPECT_EQ(first.out, second.out);
    EXPECT_EQ(first.out, readFile(file));
    const gxtext::Image image = picture(first);
    EXPECT_GT(countInk(image), 100);
    for (const uint32_t pixel : image.pixels) {
        ASSERT_LE(pixel >> 24, 0x80u) << "alpha beyond the colour's";
    }
}

TEST(Program, CompressionChangesTheFileAndNoPixel) {
    const auto rendered = [](std::vector<std::string> options) {
        options.insert(options.begin(),
                       {"render", "--text", "Compress", "--shadow", "6,8,#000000"});
        return runGxtext(withFont(options));
    };
    const Outcome normal = rendered({}), small = rendered({"--compression", "small"});
    const Outcome fast = rendered({"--compression", "fast"});
    EXPECT_EQ(rendered({"--compression", "default"}).out, normal.out);
    EXPECT_LT(small.out.size(), normal.out.size());
    EXPECT_LT(normal.out.size(), fast.out.size());
    EXPECT_EQ(picture(small).pixels, picture(normal).pixels);
    EXPECT_EQ(picture(fast).pixels, picture(normal).pixels);
}

TEST(Program, OpacityMultipliesTheColoursAlpha) {
    const gxtext::Image image = picture(runGxtext(
        withFont({"render", "--text", "Hamburg", "--color", "#C0336699", "--opacity", "0.5"})));
    uint32_t strongest = 0;
    for (const uint32_t pixel : image.pixels) strongest = std::max(strongest, pixel >> 24);
    EXPECT_EQ(strongest, 0x60u);
}

TEST(Program, TheEnvironmentChangesNoPicture) {
    // Letters joined to one cluster are not spaced.
    const std::string style =
        R"({"text": "\u0D30\u0D4D\u200D\u0D15", "letterSpacing": 0.2, "font": ")" +
        fontPath("truetype/noto/NotoSansMalayalam-Regular.ttf") + R"("})";
    const Outcome plain = runGxtext({"render", "-"}, style);
    EXPECT_GT(countInk(picture(plain)), 100);
    setenv("HB_OPTIONS", "uniscribe-bug-compatible", 1);
    setenv("HB_SHAPER_LIST", "fallback", 1);
    const Outcome other = runGxtext({"render", "-"}, style);
    unsetenv("HB_OPTIONS");
    unsetenv("HB_SHAPER_LIST");
    EXPECT_EQ(other.out, plain.out);
}

TEST(Program, PicturesAreAsLargeAsMeasured) {
    const std::vector<std::string> options{"--text", "Wide\nand tall", "--padding", "3,5,7,9"};
    const json measure = measured(options);
    auto arguments = options;
    arguments.insert(arguments.begin(), "render");
    const gxtext::Image image = picture(runGxtext(withFont(arguments)));
    EXPECT_EQ(image.width, measure["image"]["width"]);
    EXPECT_EQ(image.height, measure["image"]["height"]);
    // All ink lies in the lines' ink boxes.
    for (uint32_t y = 0; y < image.height; y++) {
        for (uint32_t x = 0; x < image.width; x++) {
            if (image.pixels[y * image.width + x] >> 24 == 0) continue;
            const auto& lines = measure["lines"];
            EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                                    [&](const json& line) {
                                        const json& ink = line["ink"];
                                        return x >= ink["left"] && x < ink["right"] &&
                                               y >= ink["top"] && y < ink["bottom"];
                                    }))
                << x << ',' << y;
        }
    }
}

TEST(Program, ReadsStyleAndTextFromStandardInput) {
    const std::string style = R"({"text": "Hi", "font": ")" + kLatin + R"(", "size": 40})";
    const Outcome fromStdin = runGxtext({"render", "-"}, style);
    const Outcome plain = runGxtext(withFont({"render", "--text", "Hi"}));
    EXPECT_GT(countInk(picture(plain)), 100);
    EXPECT_EQ(fromStdin.out, plain.out);
    // One final line end belongs to the file, not to the text.
    EXPECT_EQ(runGxtext(withFont({"render", "--text", "-"}), "Hi\n").out, plain.out);
}

TEST(Program, OptionsGoOverTheStyleFile) {
    const gxtest::TempFolder folder;
    const std::string style = folder.write(
        "s.json",
        R"({"text": "from file", "color": "#FF0000", "size": 10, "background": "#00FF00"})");
    const Outcome both = runGxtext(
        withFont({"render", style, "--text", "Hi", "--color", "#000000", "--background", "none"}));
    EXPECT_EQ(both.out, runGxtext(withFont({"render", "--text", "Hi"})).out);
}

TEST(Program, DoesNotWritePicturesToATerminal) {
    const auto outcome = gxtest::runGxtextOnTerminal(withFont({"render", "--text", "Hi"}));
    if (!outcome) GTEST_SKIP() << "this machine gives no pseudo-terminals";
    EXPECT_EQ(outcome->status, 2);
    EXPECT_THAT(outcome->err, HasSubstr("terminal"));
}

TEST(Program, NamesMissingGlyphs) {
    const gxtest::TempFolder folder;
    const std::string file = folder.path("out.png");
    // Private use, in no font; the joiner and the line break need no glyph.
    const std::string text = "a\xF4\x8F\xBF\xBD\u200D\n\xF3\xB0\x80\x80";
    const Outcome lenient = runGxtext(withFont({"render", "--text", text}));
    EXPECT_EQ(lenient.status, 0);
    EXPECT_EQ(lenient.err, "gxtext: warning: no font has U+F0000, U+10FFFD\n");
    const Outcome strict = runGxtext(withFont({"render", "--strict", "--text", text, "-o", file}));
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.err, "gxtext: no font has U+F0000, U+10FFFD\n");
    EXPECT_FALSE(std::filesystem::exists(file));
    std::string many;
    for (int i = 0; i < 30000; i++) {
        const int c = 0xF0000 + i;
        for (const int byte :
             {0xF3, 0x80 | (c >> 12 & 0x3F), 0x80 | (c >> 6 & 0x3F), 0x80 | (c & 0x3F)})
            many += static_cast<char>(byte);
        if (i % 100 == 99) many += '\n';
    }
    const Outcome all = runGxtext({"fonts", "--font-size", "1", "--text", "-"}, many);
    EXPECT_EQ(all.status, 0);
    EXPECT_THAT(all.err, testing::EndsWith(", U+F0013 and 29980 others\n"));
}

TEST(Program, ShowsTheLibrarysLogOnlyWhenAsked) {
    const auto arguments = withFont({"measure", "--text", "Hi"});
    EXPECT_EQ(runGxtext(arguments).err, "");
    auto verbose = arguments;
    verbose.push_back("--verbose");
    EXPECT_THAT(runGxtext(verbose).err, HasSubstr("D GxTextObject: Construct("));
}

TEST(Program, AlignsLines) {
    const auto leftOf = [](const std::vector<std::string>& extra) {
        std::vector<std::string> arguments{"--text", "Hi", "--width", "301"};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        return measured(arguments)["lines"][0]["x"].get<int>();
    };
    const int advance = measured({"--text", "Hi"})["lines"][0]["advance"].get<float>();
    EXPECT_EQ(leftOf({}), 0);
    EXPECT_EQ(leftOf({"--align", "left", "--padding", "4"}), 4);
    EXPECT_EQ(leftOf({"--align", "center"}), (301 - advance) / 2);
    EXPECT_EQ(leftOf({"--align", "right"}), 301 - advance);
    EXPECT_EQ(leftOf({"--align", "right", "--padding", "10,0,20,0"}), 281 - advance);
}

TEST(Program, RightToLeftParagraphsStartAtTheRight) {
    const json lines =
        measured({"--text", "\u05D0\u05D1\u05D2 abc\nabc \u05D0", "--width", "400"})["lines"];
    EXPECT_EQ(lines[0]["direction"], "rtl");
    EXPECT_NEAR(lines[0]["x"].get<int>() + lines[0]["advance"].get<float>(), 400, 1);
    EXPECT_EQ(lines[1]["direction"], "ltr");
    EXPECT_EQ(lines[1]["x"], 0);
}

TEST(Program, WrapsAndStacksLines) {
    const json measure = measured({"--text", "one two three four five six", "--width", "150"});
    int bottom = 0;
    ASSERT_GT(measure["lines"].size(), 2u);
    for (const json& line : measure["lines"]) {
        EXPECT_LE(line["advance"], 150);
        EXPECT_EQ(line["box"]["top"], bottom);
        bottom = line["box"]["bottom"];
        EXPECT_GT(line["baseline"], line["box"]["top"]);
        EXPECT_LT(line["baseline"], bottom);
    }
    EXPECT_EQ(measure["image"]["width"], 150);
    EXPECT_EQ(measure["image"]["height"], bottom);
}

TEST(Program, BackgroundFillsTheBoxes) {
    const gxtext::Image image =
        picture(runGxtext(withFont({"render", "--text", "ab", "--background", "#FF00FF00"})));
    EXPECT_EQ(image.pixels.front(), 0xFF00FF00u);
    EXPECT_TRUE(std::all_of(image.pixels.begin(), image.pixels.end() - image.width,
                            [](uint32_t pixel) { return pixel >> 24 != 0; }));
}

TEST(Program, FakesBoldAndItalic) {
    const gxtext::Image regular = picture(runGxtext(withFont({"render", "--text", "Il"})));
    const gxtext::Image bold = picture(runGxtext(withFont({"render", "--text", "Il", "--bold"})));
    const gxtext::Image italic =
        picture(runGxtext(withFont({"render", "--text", "Il", "--italic"})));
    EXPECT_GT(countInk(bold), countInk(regular));
    EXPECT_NE(italic.pixels, regular.pixels);
}

TEST(Program, PrintsTheEffectKey) {
    const Outcome plain = runGxtext({"key", "--color", "#336699"});
    EXPECT_EQ(plain.status, 0);
    // The fill's letter and the colour's eight digits.
    EXPECT_EQ(plain.out, "548f8f838386868989\n");
}

TEST(Program, ListsTheFontsOfAText) {
    const Outcome outcome = runGxtext(withFont({"fonts", "--json", "--text", "aa\u0628\u4E2D"}));
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const json fonts = json::parse(outcome.out);
    ASSERT_GE(fonts.size(), 2u);
    EXPECT_EQ(fonts[0]["file"], kLatin);
    EXPECT_EQ(fonts[0]["codePoints"], json({"U+0061"}));
    json all = json::array();
    for (const json& font : fonts) {
        for (const json& c : font["codePoints"]) all.push_back(c);
    }
    EXPECT_THAT(all, testing::UnorderedElementsAre("U+0061", "U+0628", "U+4E2D"));
}

TEST(Program, FindsAFontInACollection) {
    const std::string collection = fontPath(gxtest::kNotoCjk);
    const auto render = [&](const char* index) {
        return runGxtext(
            {"render", "--font", collection, "--font-index", index, "--text", "\u76F4"});
    };
    // Japanese and simplified Chinese draw this character differently.
    const gxtext::Image japanese = picture(render("0"));
    const gxtext::Image chinese = picture(render("2"));
    EXPECT_GT(countInk(japanese), 100);
    EXPECT_NE(japanese.pixels, chinese.pixels);
}

}  // namespace
}  // namespace gxtool
