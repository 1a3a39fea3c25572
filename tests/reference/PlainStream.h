// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ZZone.h"
#include "tests/support/MemorySound.h"

#include <array>
#include <vector>

namespace zarno {

// How a streaming voice comes to its frames, with a disk that needs no time: the first chunk, then two
// buffers in turn, each filled again at the moment it has been used up. Knows only zones of MemorySound.
class PlainStream {
  public:
    void start(const ZZone& zone) {
        zone_ = zone.streaming ? &zone : nullptr;
        if (!isOn()) return;
        chunk_ = zone.chunkFrames;
        current_ = -1;
        first_ = true;
        std::int64_t ignored = 0;
        fill(preload_, startFrame(), ignored);
        next_ = behindPreload();
    }
    bool isOn() const { return zone_ != nullptr; }
    std::int64_t ringFrames() const { return chunk_; }
    double end() const {
        return loops() ? 1e15
                       : static_cast<double>(zone_->record.endFrame) - static_cast<double>(startFrame());
    }

    void advanced(double position) {
        if (first_) {
            first_ = false;
            fill(buffers_[0], next_, next_);
            fill(buffers_[1], next_, next_);
            return;
        }
        const double behind = position - static_cast<double>(chunk_);
        if (behind < 0) return;
        const int half = static_cast<int>(static_cast<std::int64_t>(behind) / chunk_ % 2);
        if (half == current_) return;
        if (current_ != -1) fill(buffers_[static_cast<std::size_t>(current_)], next_, next_);
        current_ = half;
    }

    float frame(std::int64_t index, int channel) const {
        const auto& buffer = current_ == -1 ? preload_ : buffers_[static_cast<std::size_t>(current_)];
        return buffer[static_cast<std::size_t>(index)][static_cast<std::size_t>(channel)];
    }

  private:
    using Buffer = std::vector<std::array<float, 2>>;

    std::int64_t startFrame() const { return static_cast<std::int64_t>(zone_->record.startFrame); }
    std::int64_t loopStart() const { return static_cast<std::int64_t>(zone_->record.loopStart); }
    std::int64_t loopEnd() const { return static_cast<std::int64_t>(zone_->record.loopEnd); }
    bool loops() const { return zone_->record.loopMode > 1 && loopEnd() - loopStart() >= 1; }

    std::int64_t behindPreload() const {
        if (!loops() || loopEnd() >= startFrame() + chunk_) return startFrame() + chunk_;
        const auto distance = static_cast<std::uint32_t>(chunk_ - loopEnd() - 1 + startFrame());
        return distance % static_cast<std::uint32_t>(loopEnd() - loopStart() + 1) + loopStart();
    }

    // Returns the frames that there were.
    std::int64_t read(Buffer& buffer, std::int64_t frame, std::int64_t count, std::int64_t offset) const {
        const SampleMemory& file = static_cast<const MemorySound&>(*zone_->sound).memory();
        std::int64_t done = 0;
        for (; done < count && frame + done < static_cast<std::int64_t>(file.frames()); ++done)
            for (int channel = 0; channel < 2; ++channel) {
                const std::int64_t at =
                    (frame + done) * file.channels() + (file.channels() == 2 ? channel : 0);
                buffer[static_cast<std::size_t>(offset + done)][static_cast<std::size_t>(channel)] =
                    file.isSixteenBit() ? file.shorts()[at] * 0.000030517578125f : file.floats()[at];
            }
        return done;
    }

    void fill(Buffer& buffer, std::int64_t frame, std::int64_t& result) const {
        buffer.assign(static_cast<std::size_t>(chunk_), {});
        if (!loops() || loopEnd() >= frame + chunk_) {
            result = frame + read(buffer, frame, chunk_, 0);
            return;
        }
        const std::int64_t first = std::max<std::int64_t>(loopEnd() - frame, 0);
        read(buffer, frame, first, 0);
        const std::int64_t length = loopEnd() - loopStart(), rest = chunk_ - first;
        for (std::int64_t pass = 0; pass < rest / length; ++pass)
            read(buffer, loopStart(), length, first + pass * length);
        result = loopStart() + read(buffer, loopStart(), rest % length, rest / length * length + first);
    }

    const ZZone* zone_ = nullptr;
    std::int64_t chunk_ = 1, next_ = 0;
    int current_ = -1;
    bool first_ = false;
    Buffer preload_;
    std::array<Buffer, 2> buffers_;
};

} // namespace zarno
