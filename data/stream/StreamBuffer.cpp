// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/StreamBuffer.h"

#include "engine/Interpolation.h"

#include <atomic>
#include <bit>
#include <cstring>
#include <new>

namespace zarno {

void StreamBuffer::allocate(std::uint64_t frames, bool sixteenBit) {
    if (!memory_.allocate(frames, 2, sixteenBit)) throw std::bad_alloc();
    frame0_ = sixteenBit ? static_cast<void*>(memory_.shorts()) : memory_.floats();
}

void StreamBuffer::write(const ChunkTarget& chunk) {
    const std::size_t before = SampleMemory::guardFrames * chunk.frameBytes();
    const std::size_t bytes = 2 * before + static_cast<std::size_t>(chunk.frames) * chunk.frameBytes();
    const auto* from = static_cast<const std::byte*>(chunk.frame0) - before;
    Word* to = words() - before / sizeof(Word);
    // Mono frames of 16 bits may end in half a word; both sides have room for a whole one.
    for (std::size_t at = 0; at < bytes; at += sizeof(Word)) {
        Word word;
        std::memcpy(&word, from + at, sizeof word);
        std::atomic_ref<Word>(to[at / sizeof(Word)]).store(word, std::memory_order_relaxed);
    }
}

StreamBuffer::Word StreamBuffer::load(std::int64_t word) const {
    return std::atomic_ref<Word>(words()[word]).load(std::memory_order_relaxed);
}

void StreamBuffer::readFrame(std::int64_t index, bool mono, float& left, float& right) const {
    if (!isSixteenBit()) {
        left = std::bit_cast<float>(load(mono ? index : 2 * index));
        right = mono ? left : std::bit_cast<float>(load(2 * index + 1));
        return;
    }
    const auto sample = [](Word bits) {
        return static_cast<float>(static_cast<std::int16_t>(bits & 0xFFFF)) * sixteenBitScale;
    };
    const Word word = load(mono ? index / 2 : index);
    left = sample(mono && index % 2 != 0 ? word >> 16 : word);
    right = mono ? left : sample(word >> 16);
}

} // namespace zarno
