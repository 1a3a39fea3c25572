// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/SongPlayer.h"

#include "tools/vsthost/HostedPlugin.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace zarno {
namespace {

// The events that fall into the block at `start`, from `next` on, which moves past them.
std::vector<HostEvent> takeEvents(const Song& song, std::size_t& next, std::int64_t start, int frames,
                                  double rate) {
    std::vector<HostEvent> events;
    for (; next < song.events.size(); ++next) {
        const SongEvent& event = song.events[next];
        const auto at = static_cast<std::int64_t>(std::llround(event.seconds * rate));
        if (at >= start + frames) break;
        events.push_back({static_cast<int>(std::max<std::int64_t>(at - start, 0)),
                          {event.bytes, event.bytes + event.size}});
    }
    return events;
}

} // namespace

PlayedSong playSong(HostedPlugin& plugin, const Song& song, double tailSeconds,
                    const std::function<bool(const float* const*, int)>& sink) {
    using Clock = std::chrono::steady_clock;
    const double rate = plugin.options().sampleRate;
    const int block = plugin.options().blockSize;
    const auto total = static_cast<std::int64_t>(std::ceil((song.lengthSeconds + tailSeconds) * rate));
    std::vector<float> left(static_cast<std::size_t>(block)), right(left);
    const float* const channels[] = {left.data(), right.data()};
    PlayedSong played;
    played.notes = song.noteCount();
    std::size_t next = 0;
    while (played.frames < total) {
        const int frames = static_cast<int>(std::min<std::int64_t>(block, total - played.frames));
        plugin.send(takeEvents(song, next, played.frames, frames, rate));
        const auto begin = Clock::now();
        plugin.process(left.data(), right.data(), frames);
        const std::chrono::duration<double, std::milli> took = Clock::now() - begin;
        played.slowestBlockMs = std::max(played.slowestBlockMs, took.count());
        for (const float* channel : channels)
            played.levels.add(channel, static_cast<std::size_t>(frames));
        played.frames += frames;
        if (!sink(channels, frames)) break;
    }
    return played;
}

} // namespace zarno
