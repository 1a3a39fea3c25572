// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"
#include "tests/support/RawBytes.h"

#include <optional>
#include <vector>

namespace zarno::test {

// Writes an instrument file field by field; counts can be made to lie.
struct InstrumentBuilder {
    struct Zone {
        std::string sample;
        ZoneRecord record;
        std::string block; // header and frames, written when not empty
    };
    struct Group {
        std::string name;
        GroupRecord record;
        std::vector<Zone> zones;
        std::optional<std::int32_t> zoneCount;
    };

    std::string magic = "ZSE ";
    std::int32_t version = 215;
    std::uint8_t storage = 0;
    std::string name = "Name", title = "Title", remark = "Remark", image, layout;
    std::optional<std::int32_t> imageSize, licenceCount, groupCount;
    InstrumentSettings settings;
    std::vector<std::string> licences;
    std::vector<Group> groups;

    static std::int32_t count(const std::optional<std::int32_t>& given, std::size_t real) {
        return given.value_or(static_cast<std::int32_t>(real));
    }

    std::string head() const {
        std::string out = magic + raw(version, storage) + zeroTerminated(name) + zeroTerminated(title) +
                          raw(settings) + zeroTerminated(remark) + raw(count(imageSize, image.size())) +
                          image + zeroTerminated(layout) + raw(count(licenceCount, licences.size()));
        for (const auto& licence : licences)
            out += zeroTerminated(licence);
        return out;
    }
    std::string bytes() const {
        std::string out = head() + raw(count(groupCount, groups.size()));
        for (const auto& group : groups) {
            out += zeroTerminated(group.name) + raw(group.record, count(group.zoneCount, group.zones.size()));
            for (const auto& zone : group.zones)
                out += zeroTerminated(zone.sample) + zone.block + raw(zone.record);
        }
        return out;
    }
};

inline std::string block(std::int32_t bytesPerSample, std::int32_t rate, std::int32_t channels,
                         std::int64_t frames, const std::string& data) {
    return raw(bytesPerSample, rate, channels, std::int32_t{0}, frames) + data;
}

// A zone that plays `sample` to its end on all keys.
inline InstrumentBuilder::Zone zone(const std::string& sample, const std::string& block = {}) {
    InstrumentBuilder::Zone made{sample, {}, block};
    made.record.rootKey = 60;
    made.record.highKey = made.record.highVelocity = 127;
    made.record.endFrame = UINT64_MAX;
    return made;
}

} // namespace zarno::test
