// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Utf8.h"
#include "tools/check/InstrumentCheck.h"

#include <algorithm>

namespace zarno {
namespace {

using Severity = Finding::Severity;

std::string range(std::int64_t low, std::int64_t high) {
    return std::to_string(low) + ".." + std::to_string(high);
}

// One zone. Findings about it are errors unless said otherwise.
class ZoneCheck {
  public:
    ZoneCheck(const GroupRecord& group, const ZoneRecord& zone, std::string place, Findings& findings)
        : group_(group)
        , zone_(zone)
        , place_(std::move(place))
        , findings_(findings) {}

    void ranges() {
        meets("keys", zone_.lowKey, zone_.highKey, group_.lowKey, group_.highKey, 0);
        // Velocity 0 is a note-off.
        meets("velocities", zone_.lowVelocity, zone_.highVelocity, group_.lowVelocity, group_.highVelocity,
              1);
        if (zone_.rootKey < 0 || zone_.rootKey > 127)
            add("root key " + std::to_string(zone_.rootKey) + " is no key", Severity::Warning);
    }

    void points(std::uint64_t frames) {
        if (frames == 0) return add("the sample is empty");
        if (zone_.startFrame >= zone_.endFrame)
            add("start " + std::to_string(zone_.startFrame) + " is not before end " +
                std::to_string(zone_.endFrame));
        if (zone_.endFrame >= frames) outside("end", zone_.endFrame, frames);
        if (zone_.startFrame >= frames) outside("start", zone_.startFrame, frames);
        if (!loops(zone_)) return;
        if (zone_.loopEnd > zone_.endFrame)
            add("the loop ends at " + std::to_string(zone_.loopEnd) + ", behind the zone's end " +
                std::to_string(zone_.endFrame) + ": it is moved");
        if (zone_.loopStart < zone_.startFrame)
            add("the loop starts at " + std::to_string(zone_.loopStart) + ", before the zone's start " +
                std::to_string(zone_.startFrame) + ": it is moved");
        if (zone_.loopStart >= zone_.loopEnd)
            add("the loop's start " + std::to_string(zone_.loopStart) + " is not before its end " +
                std::to_string(zone_.loopEnd));
    }

  private:
    void add(const std::string& what, Severity severity = Severity::Error) {
        findings_.push_back({severity, place_, what});
    }
    void outside(const char* point, std::uint64_t frame, std::uint64_t frames) {
        add(std::string(point) + ' ' + std::to_string(frame) + " lies behind the sample's last frame " +
            std::to_string(frames - 1) + ": it is moved");
    }
    void meets(const char* what, std::int32_t low, std::int32_t high, std::int32_t groupLow,
               std::int32_t groupHigh, std::int32_t lowest) {
        const std::string own = std::string(what) + ' ' + range(low, high);
        if (low > high)
            add(own + ": the first is above the last, so nothing reaches the zone");
        else if (high < lowest || low > 127)
            add(own + " do not exist, so nothing reaches the zone");
        else if (high < groupLow || low > groupHigh)
            add(own + " lie outside the group's " + range(groupLow, groupHigh) +
                ", so nothing reaches the zone");
    }

    const GroupRecord& group_;
    const ZoneRecord& zone_;
    std::string place_;
    Findings& findings_;
};

} // namespace

void checkZones(const InstrumentReport& report, Findings& findings) {
    const InstrumentFile& file = report.file;
    for (std::size_t g = 0; g < file.groups.size(); ++g) {
        for (std::size_t z = 0; z < file.groups[g].zones.size(); ++z) {
            const ZoneEntry& zone = file.groups[g].zones[z];
            ZoneCheck check(file.groups[g].record, zone.record, zonePlace(file, g, z), findings);
            check.ranges();
            const auto* sample = sampleOf(report, zone);
            if (sample && sample->found)
                check.points(static_cast<std::uint64_t>(std::max<std::int64_t>(0, sample->frames)));
        }
    }
}

void checkSamples(const InstrumentReport& report, Findings& findings) {
    const bool sixteenBit = report.file.settings.sixteenBitStored != 0;
    for (const auto& sample : report.samples) {
        const std::string place = "sample \"" + toUtf8(sample.name) + '"';
        const std::string zones = std::to_string(sample.zones) + (sample.zones == 1 ? " zone" : " zones");
        const auto add = [&](const std::string& what) { findings.push_back({Severity::Error, place, what}); };
        if (sample.name.empty()) {
            add("the name is empty, in " + zones);
        } else if (!sample.found) {
            add("there is no wave that can be read at " + toUtf8(sample.path) + ", for " + zones);
        } else if (report.file.isEmbedded() && sample.bytesPerSample != (sixteenBit ? 2 : 4)) {
            add(std::to_string(sample.bytesPerSample) + " bytes a value do not fit the setting sixteenBit " +
                (sixteenBit ? "1" : "0") + ": " + zones + " stay silent");
        } else if (!report.file.isEmbedded() && sixteenBit && sample.bytesPerSample == 4) {
            add("32-bit waves are silent while the setting sixteenBit is 1, in " + zones);
        }
        if (sample.found && sample.sampleRate < 1) add("it has no sample rate");
    }
}

} // namespace zarno
