// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/HostChunk.h"

#include "data/Limits.h"
#include "engine/ZGroup.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zarno {
namespace {

static_assert(std::endian::native == std::endian::little, "records are copied as they lie in memory");
static_assert(restoredBegin == 32 && restoredEnd == 80);

constexpr std::size_t countAt = sizeof(InstrumentSettings);
constexpr std::size_t currentAt = countAt + 4;
constexpr std::size_t groupsAt = currentAt + 4;

template <typename Value>
void append(std::vector<std::uint8_t>& bytes, const Value& value) {
    const auto* raw = reinterpret_cast<const std::uint8_t*>(&value);
    bytes.insert(bytes.end(), raw, raw + sizeof(Value));
}

std::int32_t readInt(std::span<const std::uint8_t> bytes, std::size_t offset) {
    std::int32_t value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

} // namespace

std::vector<std::uint8_t> encodeChunkPath(std::string_view path) {
    path = path.substr(0, path.find('\0'));
    std::size_t length = std::min(path.size(), limits::chunkPathBytes - 1);
    while (length < path.size() && length > 0 && (static_cast<unsigned char>(path[length]) & 0xC0) == 0x80)
        --length;
    std::vector<std::uint8_t> bytes(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(length));
    bytes.push_back(0);
    return bytes;
}

std::vector<std::uint8_t> encodeChunk(std::string_view path, const InstrumentSettings& settings,
                                      std::int32_t currentGroup,
                                      const std::vector<std::unique_ptr<ZGroup>>& groups) {
    auto bytes = encodeChunkPath(path);
    bytes.reserve(bytes.size() + groupsAt + groups.size() * sizeof(GroupRecord));
    InstrumentSettings saved;
    copySettings(saved, settings);
    append(bytes, saved);
    append(bytes, static_cast<std::int32_t>(groups.size()));
    append(bytes, currentGroup);
    for (const auto& group : groups) {
        GroupRecord record;
        copyGroup(record, group->record);
        append(bytes, record);
    }
    return bytes;
}

ChunkParts splitChunk(std::span<const std::uint8_t> chunk) {
    const auto zero = std::find(chunk.begin(), chunk.end(), std::uint8_t{0});
    const auto length = static_cast<std::size_t>(zero - chunk.begin());
    const std::string path(chunk.begin(), zero);
    return {path, zero == chunk.end() ? chunk : chunk.subspan(length + 1)};
}

ChunkState decodeTail(std::span<const std::uint8_t> tail, std::size_t groupCount) {
    ChunkState state;
    if (tail.size() < restoredEnd) return state;
    state.settings.emplace();
    std::memcpy(&*state.settings, tail.data(), std::min(tail.size(), sizeof(InstrumentSettings)));
    if (tail.size() < groupsAt) return state;
    const std::int64_t count = readInt(tail, countAt);
    const auto available = static_cast<std::int64_t>((tail.size() - groupsAt) / sizeof(GroupRecord));
    if (count != static_cast<std::int64_t>(groupCount) || count > available) return state;
    state.groups.resize(groupCount);
    if (groupCount > 0)
        std::memcpy(state.groups.data(), tail.data() + groupsAt, groupCount * sizeof(GroupRecord));
    const std::int64_t current = readInt(tail, currentAt);
    state.currentGroup = current >= 0 && current < count ? static_cast<std::int32_t>(current) : -1;
    return state;
}

void takeRestoredFields(InstrumentSettings& live, const InstrumentSettings& saved) {
    InstrumentSettings wanted;
    copySettings(wanted, live);
    std::memcpy(reinterpret_cast<char*>(&wanted) + restoredBegin,
                reinterpret_cast<const char*>(&saved) + restoredBegin, restoredEnd - restoredBegin);
    copySettings(live, wanted);
}

} // namespace zarno
