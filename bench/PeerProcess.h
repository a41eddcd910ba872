// Libraries of other languages as contenders: each is a program of bench/peers that lives as long
// as this one, is told what to draw once, and then times its own runs, by the clock where it is.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Bench.h"

namespace gxbench {

// What is installed for the peers (scripts/setup bench).
std::string peerFolder();
// A program of bench/peers.
std::string peerProgram(const std::string& name);

class PeerProcess {
public:
    // The one that `command` starts, started now or before. The first word is a file.
    static std::shared_ptr<PeerProcess> of(const std::vector<std::string>& command);
    ~PeerProcess();
    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;

    // Opens fonts and contexts for a job, a line of JSON, which is what it then repeats. Returns
    // the reason when it cannot, otherwise nothing.
    std::string prepare(const std::string& job);
    // What the prepared job is made with, "Pillow 13.0.0", and what it does otherwise than asked.
    const std::string& version() const { return version_; }
    const std::string& note() const { return note_; }
    // Seconds of one run: the median of runs that took this long, after one that is not counted.
    double seconds(double atLeast);
    // Writes the picture of the job to a file; false where it cannot.
    bool save(const std::string& file);

private:
    class Pipes;
    explicit PeerProcess(const std::vector<std::string>& command);

    std::unique_ptr<Pipes> pipes_;
    std::string version_;
    std::string note_;
};

// `name` with the job as its work, or what it is missing for.
Peer processPeer(const std::string& name, const std::vector<std::string>& command,
                 const std::string& job);

}  // namespace gxbench
