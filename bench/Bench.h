// A table of measurements: each row times this library, its plain form and, where one exists, a
// library that does the same work, all in one process and in turns.
//
// A row is one addRow call in the file of its subject; main does the rest.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Measure.h"

namespace gxbench {

// One of several that do the work of a row.
struct Peer {
    std::string name;  // "resvg"
    Run run;           // empty: not on this machine
    std::string note;  // what it does otherwise, or why it is missing
    double target = 0;
    bool isPartial = false;  // does less than is asked
};

// What is timed in a row. Everything a contender needs lives in the functions' captures.
struct Contenders {
    std::function<void()> prepare;  // before each run, not timed; may be empty
    Run ours{};
    Run plain{};                // may be empty
    Run peer{};                 // empty where the peer is not built in
    std::vector<Peer> peers{};  // more of them, a line each
};

// What ours must reach against the others, as their time divided by ours; 0 asks for nothing.
struct Targets {
    double plain = 0;
    double peer = 0;
};

struct Row {
    std::string operation;  // "mask src-over, clear layer"
    std::string peerName;   // "pixman"
    Targets targets;
    uint64_t pixels = 0;  // that a run works on, for the time per pixel; 0 gives ms per run
    std::function<Contenders()> make;
};

// Rows in the order of addition. Called by the add...Rows functions of the subjects.
void addRow(Row row);

void addBlendRows();
void addBlurRows();
void addDilationRows();
void addFillRows();
void addGlowRows();
void addReliefRows();
void addShadowRows();
void addLimitRows();
void addLookRows();
#ifdef GXBENCH_LINES
#ifdef GXBENCH_EMOJI_FONT
void addColorGlyphRows();
#endif
void addFontRows();  // need the portable text stack
void addLineRows();
#endif
#ifdef GXBENCH_TITLES
void addTitleRows();  // need the scene library
void addThreadRows();
void addCommandRows();  // need the program
void addBatchRows();
#endif

// The names of peers that this build lacks are said above the table.
void addMissingPeer(const std::string& name);

}  // namespace gxbench
