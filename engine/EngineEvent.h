// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace zarno {

// Message types: the high nibble of a MIDI status byte.
namespace midi {
inline constexpr int noteOff = 0x80;
inline constexpr int noteOn = 0x90;
inline constexpr int polyAftertouch = 0xA0;
inline constexpr int controller = 0xB0;
inline constexpr int programChange = 0xC0;
inline constexpr int pitchBend = 0xE0;
} // namespace midi

// Given as a sample offset: the event takes effect at the start of the next block.
inline constexpr std::uint32_t immediateOffset = 0xFFFFFFFFu;

// One short MIDI message on its way to the engine, due at a sample of the coming block.
struct EngineEvent {
    std::uint8_t status = 0; // type in the high nibble, channel 0..15 in the low one
    std::uint8_t data1 = 0;  // key or controller number
    std::uint8_t data2 = 0;  // velocity or value
    std::uint32_t sampleOffset = 0;

    int type() const { return status & 0xF0; }
    int channel() const { return status & 0x0F; }
    bool isNoteOn() const { return type() == midi::noteOn && data2 > 0; }
    bool isNoteOff() const { return type() == midi::noteOff || (type() == midi::noteOn && data2 == 0); }
};

} // namespace zarno
