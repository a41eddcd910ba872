#include "OpenCvPeer.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "PeerProcess.h"
#include "Workplace.h"

namespace gxbench {

namespace {

using nlohmann::json;

Peer filterPeer(const Mask& mask, int radius, json job, double target) {
    const Workplace workplace;  // the file is read before this returns
    const std::string file = workplace.file("mask");
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(mask.data()),
               static_cast<std::streamsize>(mask.size()));
    job["mask"] = file;
    job["width"] = kWidth;
    job["height"] = kHeight;
    job["radius"] = radius;
    // A process for each operation: one has one job at a time.
    Peer peer = processPeer("OpenCV with IPP",
                            {peerFolder() + "/python/bin/python", peerProgram("opencv_filters.py"),
                             job["operation"].get<std::string>()},
                            job.dump());
    peer.target = target;
    return peer;
}

}  // namespace

Peer ippDilation(const Mask& mask, int radius, double target) {
    return filterPeer(mask, radius, {{"operation", "dilate"}}, target);
}

std::vector<Peer> ippBlurs(const Mask& mask, int radius, const std::vector<int32_t>& weights,
                           double target) {
    std::vector<double> taps;
    for (int i = -radius; i <= radius; ++i) {
        taps.push_back(weights[static_cast<size_t>(std::abs(i))]);
    }
    double sum = 0;
    for (const double tap : taps) sum += tap;
    for (double& tap : taps) tap /= sum;
    const double deviation = radius / std::sqrt(2 * std::log(100.0));
    return {filterPeer(mask, radius, {{"operation", "sepFilter2D"}, {"taps", taps}}, target),
            filterPeer(mask, radius, {{"operation", "GaussianBlur"}, {"deviation", deviation}},
                       target)};
}

}  // namespace gxbench
