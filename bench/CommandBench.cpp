// Rows of one command that writes a picture of a text as a PNG: processor time from its start to
// its end, which is mostly starting, opening a font and packing the file.
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "ChildProcess.h"
#include "PeerProcess.h"
#include "TitlePicture.h"
#include "TitleSvg.h"
#include "Workplace.h"

namespace gxbench {

namespace {

using Command = std::vector<std::string>;

constexpr const char* kFillAlone = "the fill alone";

// The mean of some, as one is over within the clock's grain.
Run commandRun(const Command& command, const std::shared_ptr<Workplace>& workplace) {
    if (cpuSeconds(command) < 0) return {};
    return [command, workplace] {
        constexpr int kRuns = 4;
        double seconds = 0;
        for (int i = 0; i < kRuns; ++i) seconds += cpuSeconds(command);
        return seconds / kRuns;
    };
}

Peer commandPeer(const Command& command, const std::shared_ptr<Workplace>& workplace,
                 const std::string& note) {
    const Run run = commandRun(command, workplace);
    const std::string name = std::filesystem::path(command.front()).filename();
    return {name, run, run ? note : "not installed", 1, note == kFillAlone};
}

std::string hexOf(const TitlePaint& paint) {
    char text[8];
    std::snprintf(text, sizeof(text), "%02x%02x%02x", static_cast<unsigned>(255 * paint.red + 0.5),
                  static_cast<unsigned>(255 * paint.green + 0.5),
                  static_cast<unsigned>(255 * paint.blue + 0.5));
    return text;
}

struct Subject {
    const char* name;
    const char* style;  // of bench/pictures
    const char* font;
    bool plainTools;  // whether those that only fill are peers
};

Contenders contendersOf(const Subject& subject) {
    const auto workplace = std::make_shared<Workplace>();
    const TitlePicture picture = titlePicture(subject.style, subject.font, 0);
    const std::string svg = workplace->file("title.svg"), png = workplace->file("title.png");
    std::ofstream(svg) << svgOf(picture);
    const std::string style = std::string(GXBENCH_PICTURES) + "/" + subject.style + ".json";
    Contenders contenders;
    contenders.ours = commandRun(
        {GXBENCH_TOOL, "render", style, "--font", picture.fontFile, "-o", png}, workplace);
    contenders.peers = {commandPeer({peerFolder() + "/cargo/bin/resvg", "--skip-system-fonts",
                                     "--use-font-file", picture.fontFile, svg, png},
                                    workplace, "one font file"),
                        commandPeer({"rsvg-convert", svg, "-o", png}, workplace, "")};
    if (!subject.plainTools) return contenders;
    const std::string size = std::to_string(static_cast<int>(picture.size));
    const std::string color = hexOf(picture.paint);
    const std::string note = picture.layers.empty() ? "" : kFillAlone;
    const std::string& text = *picture.style.text;
    contenders.peers.push_back(commandPeer(
        {"hb-view", "--font-size=" + size, "--foreground=" + color, "--background=00000000",
         "--output-format=png", "--output-file=" + png, picture.fontFile, text},
        workplace, note));
    contenders.peers.push_back(commandPeer(
        {"pango-view", "--no-display", "--dpi=72",
         "--font=" + picture.family + (picture.weight >= 600 ? " Bold " : " ") + size,
         "--foreground=#" + color, "--background=transparent", "--text=" + text, "--output=" + png},
        workplace, note));
    return contenders;
}

}  // namespace

void addCommandRows() {
    static constexpr Subject kSubjects[] = {
        {"command: fill only", "fill", GXBENCH_FONT, true},
        {"command: stroke, shadow, glow", "title", GXBENCH_FONT, false},
#ifdef GXBENCH_ARABIC_FONT
        {"command: Arabic, stroke", "arabic", GXBENCH_ARABIC_FONT, true},
#endif
    };
    for (const Subject& subject : kSubjects) {
        addRow({subject.name, "", {}, 0, [&subject] { return contendersOf(subject); }});
    }
}

}  // namespace gxbench
