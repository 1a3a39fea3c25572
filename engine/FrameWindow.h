// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace zarno {

// A stretch of sample frames that a voice may read without a test a frame. While the voice's position lies in
// [origin, limit) the frames from one before it to two behind it can be read at (index - origin) and are what
// the voice's own readFrame gives; up to six behind it are readable memory. An advance that would reach limit
// must be done by the voice itself.
// An empty window (data == nullptr) sends every frame through the voice.
struct FrameWindow {
    // Frames are counted in 32 bits inside a window.
    static constexpr double maxFrames = 2147483000.0;

    const void* data = nullptr; // the frame at origin; interleaved 16-bit integers or floats
    double origin = 0.0;        // a whole number of frames
    double limit = 0.0;         // position, in frames
    bool sixteenBit = true;
    bool stereo = true;
};

} // namespace zarno
