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

/// A chunk of these contents. A longer path is cut, between characters.
std::vector<std::uint8_t> encodeChunk(std::string_view path, const InstrumentSettings& settings,
                                      std::int32_t currentGroup,
                                      const std::vector<std::unique_ptr<ZGroup>>& groups);
/// Path and zero byte alone: what can be said while a load runs.
std::vector<std::uint8_t> encodeChunkPath(std::string_view path);

struct ChunkParts {
    std::string path;
    std::span<const std::uint8_t> tail; ///< into the chunk
};

/// Parts a chunk at its first zero byte; without one the whole chunk is both.
ChunkParts splitChunk(std::span<const std::uint8_t> chunk);

/// The twelve fields of the instrument record, from byte 32 to 79, that a project restores. The others are
/// the instrument maker's, and stay as loaded.
inline constexpr std::size_t restoredBegin = offsetof(InstrumentSettings, quality);
inline constexpr std::size_t restoredEnd = offsetof(InstrumentSettings, velocityFloor);

/// What a tail asks for, as far as it goes and can be believed.
struct ChunkState {
    std::optional<InstrumentSettings> settings; ///< only the restored fields are meant
    std::vector<GroupRecord> groups;            ///< one for each group of the instrument, or empty
    std::optional<std::int32_t> currentGroup;   ///< set when the tail's groups fit: an index, or -1 for none
};

/// Tails shorter than the restored fields ask for nothing; group records count only when all are there and as
/// many as the instrument has now.
ChunkState decodeTail(std::span<const std::uint8_t> tail, std::size_t groupCount);

/// Copies the restored fields alone.
void takeRestoredFields(InstrumentSettings& live, const InstrumentSettings& saved);

} // namespace zarno
