// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zarno {

struct RenderOptions {
    std::string instrument, song, out; // paths, UTF-8
    int rate = 44100;                  // Hz
    int block = 512;                   // frames
    double tailSeconds = 30.0;         // at most, behind the song's end
    int bits = 16;                     // 16, 24 or 32 (float)
    std::optional<std::uint32_t> seed; // none: by the time
    bool stats = false; // say how streaming went
    bool realtime = false;             // as a host that plays live, instead of one that bounces
};

// Plays a song on an instrument through the engine and writes it as a wave file; ends when the song is over
// and the last voice has faded. Prints what it did. Returns the exit code: 0, or 1 after a message on stderr.
int render(const RenderOptions& options);

} // namespace zarno
