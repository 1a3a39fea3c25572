// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/StreamBuffer.h"

#include "engine/Interpolation.h"
#include "platform/ThreadRole.h"

#include <atomic>
#include <bit>
#include <cstring>
#include <new>

namespace zarno {

void StreamBuffer::allocate(std::uint64_t frames, bool sixteenBit) {
    thread::mustBe(thread::loading);
    if (!memory_.allocate(frames, 2, sixteenBit)) throw std::bad_alloc();
    frame0_ = sixteenBit ? static_cast<void*>(memory_.shorts()) : memory_.floats();
}

void StreamBuffer::write(const ChunkTarget& chunk) {
    thread::mustBe(thread::disk);
    const std::size_t before = SampleMemory::guardFrames * chunk.frameBytes();
    const std::size_t bytes = 2 * before + static_cast<std::size_t>(chunk.frames) * chunk.frameBytes();
    const auto* from = static_cast<const std::byte*>(chunk.frame0) - before;
    Word* to = words() - before / sizeof(Word);
    // The last frame may end within a word; both sides have room for a whole one.
    for (std::size_t at = 0; at < bytes; at += sizeof(Word)) {
        Word word;
        std::memcpy(&word, from + at, sizeof word);
        std::atomic_ref<Word>(to[at / sizeof(Word)]).store(word, std::memory_order_relaxed);
    }
}

// The bits that begin at this byte of the buffer, the low ones of the result.
StreamBuffer::Word StreamBuffer::bitsAt(std::int64_t byte) const {
    constexpr std::int64_t wordBytes = sizeof(Word);
    const Word word = std::atomic_ref<Word>(words()[byte / wordBytes]).load(std::memory_order_relaxed);
    return word >> (8 * (byte % wordBytes));
}

float StreamBuffer::sampleAt(std::int64_t sample) const {
    if (!isSixteenBit()) return std::bit_cast<float>(static_cast<std::uint32_t>(bitsAt(sample * 4)));
    return static_cast<float>(static_cast<std::int16_t>(bitsAt(sample * 2) & 0xFFFF)) * sixteenBitScale;
}

void StreamBuffer::readFrame(std::int64_t index, bool mono, float& left, float& right) const {
    thread::mustBe(thread::audio);
    left = sampleAt(mono ? index : 2 * index);
    right = mono ? left : sampleAt(2 * index + 1);
}

} // namespace zarno
