// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

namespace zarno {

/// The frames of a sample held in memory: 16-bit integers or floats, interleaved by channel.
///
/// Frame 0 is aligned to 32 bytes. Before it and after the last frame lie guardFrames frames of silence, so
/// that a reader may look a few frames past either end without testing for it. Whoever fills the memory does
/// so before anybody plays it; after that any thread may read.
class SampleMemory {
  public:
    static constexpr std::uint64_t guardFrames = 8;
    static constexpr std::size_t alignment = 32;

    /// Takes zeroed memory for `frames` frames of 1 or 2 channels; what was held before is given back.
    /// False, and empty, when there is not enough memory.
    bool allocate(std::uint64_t frames, int channels, bool sixteenBit);
    void clear() { *this = SampleMemory(); }

    std::int16_t* shorts() { return sixteenBit_ ? static_cast<std::int16_t*>(frame0_) : nullptr; }
    const std::int16_t* shorts() const { return const_cast<SampleMemory*>(this)->shorts(); }
    float* floats() { return sixteenBit_ ? nullptr : static_cast<float*>(frame0_); }
    const float* floats() const { return const_cast<SampleMemory*>(this)->floats(); }

    std::uint64_t frames() const { return frames_; }
    int channels() const { return channels_; }
    bool isSixteenBit() const { return sixteenBit_; }
    std::uint64_t bytes() const {
        return frames_ * bytesPerFrame(channels_, sixteenBit_);
    } ///< without guards

    SampleMemory() = default;
    SampleMemory(SampleMemory&& other) noexcept { *this = std::move(other); }
    SampleMemory& operator=(SampleMemory&& other) noexcept;

  private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };

    static std::uint64_t bytesPerFrame(int channels, bool sixteenBit) {
        return static_cast<std::uint64_t>(channels) * (sixteenBit ? sizeof(std::int16_t) : sizeof(float));
    }

    std::unique_ptr<void, Free> block_;
    void* frame0_ = nullptr;
    std::uint64_t frames_ = 0;
    int channels_ = 0;
    bool sixteenBit_ = false;
};

inline bool SampleMemory::allocate(std::uint64_t frames, int channels, bool sixteenBit) {
    clear();
    if (channels < 1 || channels > 2) return false;
    const std::uint64_t frameBytes = bytesPerFrame(channels, sixteenBit);
    const std::uint64_t front = (guardFrames * frameBytes + alignment - 1) / alignment * alignment;
    const std::uint64_t spare = alignment + front + guardFrames * frameBytes;
    const std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) - spare;
    if (frames > limit / frameBytes) return false;

    // calloc takes large blocks straight from the system, already zero: a sample is not written twice.
    const auto wanted = static_cast<std::size_t>(frames * frameBytes + spare);
    block_.reset(std::calloc(wanted, 1));
    if (!block_) return false;
    void* aligned = block_.get();
    std::size_t room = wanted;
    aligned = std::align(alignment, wanted - alignment, aligned, room);
    frame0_ = static_cast<std::byte*>(aligned) + front;
    frames_ = frames;
    channels_ = channels;
    sixteenBit_ = sixteenBit;
    return true;
}

inline SampleMemory& SampleMemory::operator=(SampleMemory&& other) noexcept {
    block_ = std::move(other.block_);
    frame0_ = std::exchange(other.frame0_, nullptr);
    frames_ = std::exchange(other.frames_, 0);
    channels_ = std::exchange(other.channels_, 0);
    sixteenBit_ = std::exchange(other.sixteenBit_, false);
    return *this;
}

} // namespace zarno
