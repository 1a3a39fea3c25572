// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What a host keeps in its project: which instrument was loaded, and the player's settings for it. No magic,
// no version, no lengths; all integers little-endian:
//
//   - from 0: the path, n bytes of UTF-8 with its zero byte, at most 1024; one zero byte when nothing is loaded
//   - from n: the instrument record, 592 bytes
//   - from n + 592: the group count, 4 bytes
//   - from n + 596: the index of the current group, 4 bytes, -1 for none
//   - from n + 600: the group records in group order, 580 bytes each
//
// What follows the path is the chunk's tail.
namespace zarno {

class ZGroup;

/// A chunk of these contents. A path longer than the field is cut between characters.
std::vector<std::uint8_t> encodeChunk(std::string_view path, const InstrumentSettings& settings,
                                      std::int32_t currentGroup,
                                      const std::vector<std::unique_ptr<ZGroup>>& groups);
/// Path and zero byte alone, for a save during a load, when the engine's values belong to no instrument.
std::vector<std::uint8_t> encodeChunkPath(std::string_view path);

struct ChunkParts {
    std::string path;
    std::span<const std::uint8_t> tail; ///< into the chunk
};

/// Splits a chunk after its first zero byte. Without one, path and tail are the whole chunk.
ChunkParts splitChunk(std::span<const std::uint8_t> chunk);

/// The twelve fields of the instrument record, from byte 32 to 79, that a project restores. The others are
/// the instrument maker's and stay as loaded.
inline constexpr std::size_t restoredBegin = offsetof(InstrumentSettings, quality);
inline constexpr std::size_t restoredEnd = offsetof(InstrumentSettings, velocityFloor);

/// The contents of a tail, as far as its size allows.
struct ChunkState {
    std::optional<InstrumentSettings> settings; ///< only the restored fields are used
    std::vector<GroupRecord> groups;            ///< one for each group of the instrument, or empty
    std::optional<std::int32_t> currentGroup;   ///< set when the tail's groups fit: an index, or -1 for none
};

/// A tail shorter than the restored fields gives nothing. Group records are taken only when all are there and their
/// count equals `groupCount`.
ChunkState decodeTail(std::span<const std::uint8_t> tail, std::size_t groupCount);

/// Copies the restored fields alone.
void takeRestoredFields(InstrumentSettings& live, const InstrumentSettings& saved);

} // namespace zarno
