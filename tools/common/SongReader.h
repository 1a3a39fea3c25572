// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zarno {

/// One channel message (notes, controllers, bends ...) of a song.
struct SongEvent {
    double seconds = 0.0;
    std::uint8_t bytes[3] = {};
    int size = 0; ///< 2 or 3

    int type() const { return bytes[0] & 0xF0; }
    int channel() const { return bytes[0] & 0x0F; }
    bool isNoteOn() const { return type() == 0x90 && bytes[2] > 0; }
};

struct Song {
    std::vector<SongEvent> events; ///< in the order of time; of equal times, in file order
    double lengthSeconds = 0.0;    ///< of the last event, end marks of tracks included

    int noteCount() const;
};

/// Reads a standard MIDI file: all tracks merged, tempo changes applied, everything but channel messages left
/// out. None when the file is not one, or beyond data/Limits.h; `error` then says why.
std::optional<Song> readSong(const std::string& path, std::string& error);

} // namespace zarno
