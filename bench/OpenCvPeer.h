// OpenCV as its makers ship it to Python, with IPP where that helps: filters of a mask in a process
// of its own.
#pragma once

#include <cstdint>
#include <vector>

#include "Bench.h"
#include "Planes.h"

namespace gxbench {

// cv::dilate by the ellipse of 2 x radius + 1, padding included.
Peer ippDilation(const Mask& mask, int radius, double target);

// cv::sepFilter2D with these weights from the centre outwards, `radius` + 1 of them, and
// cv::GaussianBlur with the deviation at whose `radius` a hundredth of the centre is left.
std::vector<Peer> ippBlurs(const Mask& mask, int radius, const std::vector<int32_t>& weights,
                           double target);

}  // namespace gxbench
