// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

// The instrument file ("*.zse", "*.zs2"): a plain sequence of little-endian fields without padding. Texts are
// 8-bit and end with a zero byte; counts are signed and count nothing when below 1. A text has a limit,
// nameBytes or layoutBytes of data/Limits.h: with no zero byte among limit + 1 bytes it takes exactly those,
// and the last one is not part of it.
//
//   magic              4 bytes "ZSE "
//   version            int32
//   storage            1 byte, see Storage
//   name               text, nameBytes: shown in the library
//   title              text, nameBytes: the library lists a file only when it is not empty
//   settings           InstrumentSettings, 592 bytes
//   remark             text, nameBytes
//   image size         int32, then that many bytes: the panel's background, an encoded picture
//   layout             text, layoutBytes: the panel's layout XML
//   licence count      int32, then that many texts, nameBytes
//   group count        int32, then that many groups:
//     name             text, nameBytes
//     record           GroupRecord, 580 bytes
//     zone count       int32, then that many zones:
//       sample         text, nameBytes: a path in backslash form, relative to the instrument
//       sample block   only in embedded storage, and only when this sample name is new in this file:
//                      SampleBlockHeader, 24 bytes, then frames x channels samples, each of the width that
//                      sixteenBitStored says, whatever the block's own header says
//       record         ZoneRecord, 608 bytes
namespace zarno::format {

inline constexpr char magic[4] = {'Z', 'S', 'E', ' '};
inline constexpr std::int32_t newestVersion = 215;

enum Storage : std::uint8_t {
    External = 0, ///< samples are wave files; every other value means embedded
    Embedded = 1
};

// The smallest a repeated entry can be, to judge a count before room is made for it.
inline constexpr std::size_t smallestGroup = 1 + 580 + 4;
inline constexpr std::size_t smallestZone = 1 + 608;

/// Bytes of a sample's data in the file, saturated when the product is too large; 0 for negative counts.
constexpr std::uint64_t sampleDataBytes(bool sixteenBit, std::int32_t channels, std::int64_t frames) {
    if (channels < 1 || frames < 1) return 0;
    const std::uint64_t perFrame = (sixteenBit ? 2u : 4u) * static_cast<std::uint64_t>(channels);
    const auto count = static_cast<std::uint64_t>(frames);
    return count > UINT64_MAX / perFrame ? UINT64_MAX : count * perFrame;
}

} // namespace zarno::format
