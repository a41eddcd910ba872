#include "CommandLine.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include <hb.h>
#include <libdeflate.h>
#include <png.h>
#include <unicode/uversion.h>
#include <webp/encode.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <new>
#include <sstream>
#include <utility>
#include FT_FREETYPE_H

#include "BatchCommand.h"
#include "Commands.h"
#include "CompareCommand.h"
#include "EffectOptions.h"
#include "EncodingOptions.h"
#include "FontPaths.h"
#include "Streams.h"
#include "ToolError.h"
#include "UsageMessage.h"
#include "base/GxLog.h"
#include "scene/FontChoice.h"
#include "style/FieldTable.h"
#include "style/TextSettings.h"

namespace gxtool {

namespace {

using gxtext::parseColor;
using gxtext::parsePadding;
using gxtext::Range;
using gxtext::styleField;

// What the command line says about the style: the file, and changes that go over it, in the order
// in which the options are defined.
struct StyleArguments {
    std::string file;
    std::string text;
    bool hasText = false;
    std::vector<std::string> fonts;  // a folder, or files
    std::vector<std::function<void(Style&)>> changes;
    EffectOptions effects;
};

// T is int for whole numbers.
template <typename T>
CLI::Validator inRange(const Range& range) {
    return CLI::Validator(
        [range](std::string& text) {
            double value = 0;
            T converted{};
            const bool isNumber = CLI::detail::lexical_cast(text, value);
            if (isNumber && !range.contains(value))
                return text + " is out of range " + range.text();
            if (isNumber && CLI::detail::lexical_cast(text, converted)) return std::string();
            return text + (std::is_integral_v<T> ? " is not a whole number" : " is not a number") +
                   " in the range " + range.text();
        },
        "");
}

// What a picture's file may be called; devices and pipes are called as they are.
CLI::Validator isPictureName() {
    return CLI::Validator(
        [](std::string& text) {
            const std::filesystem::path path = text;
            if (path.empty()) return std::string("the name is empty");
            std::error_code isNoFile;
            const auto status = std::filesystem::status(path, isNoFile);
            const bool isDevice = std::filesystem::is_other(status);
            const bool isKnown = path.extension().empty() || gxtext::pictureFormatOf(path);
            if (isKnown || isDevice) return std::string();
            return text +
                   " is neither a PNG nor a WebP picture; end the name in .png or .webp, or "
                   "without extension";
        },
        "");
}

CLI::Validator isColor(bool orNone) {
    return CLI::Validator(
        [orNone](std::string& text) {
            if (parseColor(text) || (orNone && text == "none")) return std::string();
            return text + " is not a colour (#RRGGBB or #AARRGGBB" + (orNone ? ", none)" : ")");
        },
        "");
}

CLI::Validator isPadding() {
    return CLI::Validator(
        [](std::string& text) {
            if (parsePadding(text)) return std::string();
            return text + " is not one or four whole numbers, " +
                   styleField("padding").range.text();
        },
        "");
}

// The name is one of them.
void setAlign(Style& style, const std::string& name) {
    const auto& choice = std::get<gxtext::Choice<Style>>(styleField("align").target);
    const auto found = std::find(choice.names.begin(), choice.names.end(), name);
    choice.set(style, static_cast<int>(found - choice.names.begin()));
}

CLI::Validator isLocale() {
    return CLI::Validator(
        [](std::string& text) { return gxtext::checkLocale(text).value_or(std::string()); }, "");
}

// One option of the style: converted, checked, and applied over the file later.
class StyleOptions {
public:
    StyleOptions(CLI::App& app, StyleArguments& arguments) : app_(app), arguments_(arguments) {}

    template <typename T>
    CLI::Option* add(const char* name, const char* help, const char* value, const char* group,
                     std::function<void(Style&, const T&)> apply) {
        const auto store = [this, apply](const T& given) {
            arguments_.changes.push_back([apply, given](Style& style) { apply(style, given); });
        };
        return app_.add_option_function<T>(name, store, help)->type_name(value)->group(group);
    }

    void flag(const char* name, const char* help, const char* group, bool Style::*member) {
        app_.add_flag_callback(
                name,
                [this, member] {
                    arguments_.changes.push_back([member](Style& style) { style.*member = true; });
                },
                help)
            ->group(group);
    }

private:
    CLI::App& app_;
    StyleArguments& arguments_;
};

void addTextOptions(CLI::App& app, StyleArguments& arguments, StyleOptions& options) {
    const char* group = "Text";
    app.add_option("--text", arguments.text, "Text in UTF-8; - reads standard input")
        ->type_name("T")
        ->group(group)
        ->each([&arguments](const std::string&) { arguments.hasText = true; });
    options.add<std::string>("--font",
                             "Font file or family name (default: the system's sans-serif)", "FILE",
                             group, [](Style& style, const std::string& font) {
                                 style.font = font;
                                 const auto file = gxtext::asFontFile(font, {});
                                 if (file && !style.folder().empty()) {
                                     style.font = std::filesystem::absolute(*file).string();
                                 }
                                 style.fontIndex = 0;  // an index is one of the file it came with
                             });
    options
        .add<int>("--font-index", "Font inside a collection file, 0-99 (default 0)", "N", group,
                  [](Style& style, const int& index) { style.fontIndex = index; })
        ->check(inRange<int>(styleField("fontIndex").range));
    options
        .add<float>("--font-size", "Size in pixels, 1-4096 (default 64)", "PX", group,
                    [](Style& style, const float& size) { style.size = size; })
        ->check(inRange<float>(styleField("size").range));
    options.flag("--bold", "Bold; faked when the font is not", group, &Style::bold);
    options.flag("--italic", "Italic; faked when the font is not", group, &Style::italic);
    options
        .add<std::string>("--locale", "Languages, BCP 47, comma-separated (default none)", "TAGS",
                          group, [](Style& style, const std::string& tags) { style.locale = tags; })
        ->check(isLocale());
}

void addColorOptions(StyleOptions& options) {
    const char* group = "Colour";
    options
        .add<std::string>(
            "--color", "Text colour, #RRGGBB or #AARRGGBB (default #FF000000)", "#AARRGGBB", group,
            [](Style& style, const std::string& text) { style.color = *parseColor(text); })
        ->check(isColor(false));
    options
        .add<std::string>(
            "--background", "Box behind each line, or none (default none)", "#AARRGGBB", group,
            [](Style& style, const std::string& text) { style.background = parseColor(text); })
        ->check(isColor(true));
    options
        .add<float>("--opacity", "Fades the picture, effects included, 0-1 (default 1)", "N", group,
                    [](Style& style, const float& opacity) { style.opacity = opacity; })
        ->check(inRange<float>(styleField("opacity").range));
}

void addFonts(CLI::App& app, std::vector<std::string>& paths) {
    app.add_option("--fonts", paths,
                   "Folder of fonts, or font files one by one, taken instead of those installed")
        ->type_name("FILE|DIR")
        ->allow_extra_args(false)
        ->group("Text");
}

void addLayoutOptions(StyleOptions& options) {
    const char* group = "Layout";
    options
        .add<int>("--width",
                  "Width in pixels to wrap at, padding included, 1-65535 (default: no wrap)", "PX",
                  group, [](Style& style, const int& width) { style.width = width; })
        ->check(inRange<int>(styleField("width").range));
    options
        .add<std::string>("--align", "start, left, center or right (default start)", "ALIGN", group,
                          [](Style& style, const std::string& name) { setAlign(style, name); })
        ->check(CLI::IsMember({"start", "left", "center", "right"}).description(""));
    options
        .add<std::string>(
            "--padding", "All sides, or left, top, right, bottom; pixels, 0-4096 (default 0)",
            "N[,N,N,N]", group,
            [](Style& style, const std::string& text) { style.padding = *parsePadding(text); })
        ->check(isPadding());
}

void addStyleOptions(CLI::App& app, StyleArguments& arguments, StyleOptions& options) {
    app.add_option("style", arguments.file,
                   "Style file, JSON; - reads standard input. Options go over it")
        ->type_name("STYLE.json");
    addTextOptions(app, arguments, options);
    addFonts(app, arguments.fonts);
    addColorOptions(options);
    addLayoutOptions(options);
    arguments.effects.addTo(app);
}

// The style with what the options say about it, but for the scale.
Style optionsOver(const StyleArguments& arguments, Style style) {
    for (const auto& change : arguments.changes) change(style);
    return arguments.effects.applyTo(std::move(style));
}

Style unscaledStyle(const StyleArguments& arguments) {
    if (arguments.file == "-" && arguments.hasText && arguments.text == "-") {
        throw ToolError("standard input can be the style or the text, not both", kUsage);
    }
    Style style;
    if (!arguments.file.empty()) style = loadStyle(arguments.file);
    if (arguments.hasText) {
        style.text = arguments.text;
        if (arguments.text == "-") {
            style.text = readInput("-", kMaxTextBytes);
            // The line end that every text tool puts after the last line.
            if (style.text->ends_with('\n')) style.text->pop_back();
        }
    }
    return optionsOver(arguments, std::move(style));
}

Style makeStyle(const StyleArguments& arguments) {
    return arguments.effects.scaled(unscaledStyle(arguments));
}

Request makeRequest(const StyleArguments& arguments) {
    Style style = makeStyle(arguments);
    return {std::move(style), fontsAt(arguments.fonts)};
}

std::vector<std::string> inputsOf(const StyleArguments& arguments) {
    std::vector<std::string> inputs;
    if (!arguments.file.empty()) inputs.push_back(arguments.file);
    if (arguments.hasText && arguments.text == "-") inputs.push_back("-");
    return inputs;
}

std::string versionText() {
    unsigned hbMajor = 0;
    unsigned hbMinor = 0;
    unsigned hbMicro = 0;
    hb_version(&hbMajor, &hbMinor, &hbMicro);
    FT_Library library = nullptr;
    FT_Int ftMajor = 0;
    FT_Int ftMinor = 0;
    FT_Int ftPatch = 0;
    if (FT_Init_FreeType(&library) == 0) {
        FT_Library_Version(library, &ftMajor, &ftMinor, &ftPatch);
        FT_Done_FreeType(library);
    }
    UVersionInfo icuVersion;
    char icu[U_MAX_VERSION_STRING_LENGTH];
    u_getVersion(icuVersion);
    u_versionToString(icuVersion, icu);
    const int fc = FcGetVersion();
    const int webp = WebPGetEncoderVersion();
    char text[256];
    snprintf(text, sizeof(text),
             "gxtext %s\nHarfBuzz %u.%u.%u\nFreeType %d.%d.%d\nICU %s\nlibpng %s\nlibdeflate %s\n"
             "libwebp %d.%d.%d\nfontconfig %d.%d.%d",
             GXTEXT_VERSION, hbMajor, hbMinor, hbMicro, ftMajor, ftMinor, ftPatch, icu,
             png_get_libpng_ver(nullptr), LIBDEFLATE_VERSION_STRING, webp >> 16, webp >> 8 & 0xFF,
             webp & 0xFF, fc / 10000, fc / 100 % 100, fc % 100);
    return text;
}

// One subcommand with its arguments; they live as long as the parser does. Its options are made
// when it is named: those of all take longer than the text of a title.
struct Subcommand {
    StyleArguments arguments;
    std::unique_ptr<StyleOptions> options;
    RenderOptions render;
    BatchArguments batch;
    bool json = false;
    CLI::App* app = nullptr;

    Subcommand(CLI::App& parent, const char* name, const char* help,
               const std::function<void(Subcommand&)>& addOwnOptions)
        : app(parent.add_subcommand(name, help)) {
        app->preparse_callback([this, addOwnOptions](size_t) {
            options = std::make_unique<StyleOptions>(*app, arguments);
            addStyleOptions(*app, arguments, *options);
            addOwnOptions(*this);
        });
    }
};

// The one that has no style to begin with.
CLI::App* addImport(CLI::App& parent, ImportOptions& options) {
    CLI::App* app = parent.add_subcommand("import", "Make a style of an image editor's effects");
    app->add_option("effects", options.input,
                    "Layer effects, JSON as ag-psd gives it; - reads standard input")
        ->type_name("FILE.json")
        ->required();
    const char* group = "Output";
    app->add_option("-o", options.output, "Style file; - writes standard output (default -)")
        ->type_name("FILE|-")
        ->group(group);
    app->add_flag("--strict", options.strict, "Fail when a field is dropped or approximated")
        ->group(group);
    app->add_flag("--json", options.json, "What is dropped or approximated as JSON")->group(group);
    return app;
}

// What the page itself has controls for is no option.
CLI::App* addStudio(CLI::App& parent, StudioOptions& options) {
    CLI::App* app = parent.add_subcommand("studio", "Open a page that makes styles");
    app->add_option("style", options.file, "Style file to begin with, JSON")
        ->type_name("STYLE.json");
    addFonts(*app, options.fonts);
    const char* group = "Page";
    app->add_option("--port", options.port, "Port, 0-65535; 0 takes a free one (default 0)")
        ->type_name("N")
        ->check(inRange<int>({0, 65535}))
        ->group(group);
    app->add_option("--idle", options.idleSeconds,
                    "Seconds without a page until it ends, 1-86400 (default 600)")
        ->type_name("N")
        ->check(inRange<int>({1, 86400}))
        ->group(group);
    app->add_flag("--no-browser", options.noBrowser, "Print the address, and open nothing")
        ->group(group);
    return app;
}

void addJson(Subcommand& command) {
    command.app->add_flag("--json", command.json, "As JSON")->group("Output");
}

void addOutput(Subcommand& render) {
    render.app
        ->add_option("-o", render.render.output,
                     "PNG or WebP file; - writes standard output (default -)")
        ->type_name("FILE|-")
        ->check(isPictureName())
        ->group("Output");
    render.app->add_flag("--strict", render.render.strict, "Fail when a character has no glyph")
        ->group("Output");
    addEncoding(*render.app, render.render.encoding);
}

void addBatch(Subcommand& batch) {
    addBatchOptions(*batch.app, batch.batch);
}

// What goes over the style of a row goes over the batch's own.
int runBatchCommand(const Subcommand& batch) {
    const StyleArguments& arguments = batch.arguments;
    gxtext::TitleOptions title{
        unscaledStyle(arguments),
        [&arguments](Style style) { return optionsOver(arguments, std::move(style)); },
        arguments.effects.scale(), fontsAt(arguments.fonts)};
    title.version = versionText();
    static_cast<void>(arguments.effects.scaled(title.style));  // fails now rather than in each row
    return batchCommand(batch.batch, std::move(title), inputsOf(arguments));
}

// Help and version are data; everything else is a mistake.
void endParsing(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw ToolError(usageMessage(app, error), kUsage);
    std::ostringstream text;
    app.exit(error, text);
    writeOutput("-", text.str());
}

int parseAndRun(int argc, char** argv, const std::function<void(bool)>& showLibraryLog) {
    CLI::App app("Renders text with effects to pictures.", "gxtext");
    app.set_version_flag("--version", versionText);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(
        "Exit status: 0 success, 1 failure, 2 wrong command line, 3 some rows of a batch failed.");
    bool verbose = false;
    app.add_flag("-v,--verbose", verbose, "Print the library's log on standard error");

    Subcommand render(app, "render", "Render a text to a picture", addOutput);
    Subcommand measure(app, "measure", "Print margins, picture size and the box of each line",
                       addJson);
    Subcommand key(app, "key", "Print the effect key text as hexadecimal bytes",
                   [](Subcommand&) {});
    Subcommand fonts(app, "fonts", "Print the fonts that a text would use", addJson);
    Subcommand batch(app, "batch", "Render many texts, a picture for each row of a file", addBatch);
    ImportOptions importOptions;
    const CLI::App* import = addImport(app, importOptions);
    CompareOptions compareOptions;
    const CLI::App* compare = addCompare(app, compareOptions);
    StudioOptions studioOptions;
    const CLI::App* studio = addStudio(app, studioOptions);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        endParsing(app, error);
        return kOk;
    }
    showLibraryLog(verbose);
    GxFontEffect::GxLog::DEBUG_ENABLE = verbose;
    if (render.app->parsed()) {
        render.render.inputs = inputsOf(render.arguments);
        renderCommand(makeRequest(render.arguments), render.render);
    }
    if (batch.app->parsed()) return runBatchCommand(batch);
    if (measure.app->parsed()) measureCommand(makeRequest(measure.arguments), measure.json);
    if (key.app->parsed()) keyCommand(makeStyle(key.arguments));
    if (fonts.app->parsed()) fontsCommand(makeRequest(fonts.arguments), fonts.json);
    if (compare->parsed()) return compareCommand(compareOptions);
    if (import->parsed()) importCommand(importOptions);
    if (studio->parsed()) studioCommand(studioOptions);
    return kOk;
}

// A line for each mistake.
int fail(const char* message, int status) {
    std::istringstream lines(message);
    for (std::string line; std::getline(lines, line);)
        fprintf(stderr, "gxtext: %s\n", line.c_str());
    return status;
}

}  // namespace

int run(int argc, char** argv, const std::function<void(bool)>& showLibraryLog) {
    reserveStandardStreams();
    // A file that may not grow further is a failed write.
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return parseAndRun(argc, argv, showLibraryLog);
    } catch (const ToolError& error) {
        return fail(error.what(), error.status);
    } catch (const std::bad_alloc&) {
        return fail("out of memory", kFailure);
    } catch (const std::exception& error) {
        return fail(error.what(), kFailure);
    }
}

}  // namespace gxtool
