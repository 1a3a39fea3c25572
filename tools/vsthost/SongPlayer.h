// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/common/Levels.h"
#include "tools/common/SongReader.h"

#include <functional>

namespace zarno {

class HostedPlugin;

struct PlayedSong {
    std::int64_t frames = 0;
    int notes = 0;
    Levels levels;
    double slowestBlockMs = 0.0;
};

/// Gives the song to an active plug-in block by block, every event at its sample, and `tailSeconds` more.
/// Each block goes to `sink` (left and right, frames); false from it ends the song early.
PlayedSong playSong(HostedPlugin& plugin, const Song& song, double tailSeconds,
                    const std::function<bool(const float* const* channels, int frames)>& sink);

} // namespace zarno
