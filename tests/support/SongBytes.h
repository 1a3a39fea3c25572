// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zarno::test {

inline std::string bigEndian(unsigned value, int bytes) {
    std::string text;
    while (bytes-- > 0)
        text += static_cast<char>(value >> (8 * bytes));
    return text;
}

// A standard MIDI file of some tracks, each its events with the delays before them.
inline std::string songBytes(unsigned timeFormat, const std::vector<std::string_view>& tracks) {
    std::string song = "MThd" + bigEndian(6, 4) + bigEndian(1, 2) +
                       bigEndian(static_cast<unsigned>(tracks.size()), 2) + bigEndian(timeFormat, 2);
    for (const std::string_view track : tracks)
        song.append("MTrk" + bigEndian(static_cast<unsigned>(track.size()), 4)).append(track);
    return song;
}

} // namespace zarno::test
