// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Tables.h"
#include "tools/check/InstrumentCheck.h"
#include "tools/check/SamplePeaks.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <cstdio>

namespace zarno {
namespace {

using Severity = Finding::Severity;

constexpr int keyCount = 128;
constexpr double tolerance = 0.01;  // dB: full scale itself is no fault
constexpr double inaudible = -66.0; // dB
constexpr double onOneSide = 40.0;  // dB that the other side is down

std::string decibels(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%+.1f", value);
    return text;
}

double decibelsOf(double gain) {
    return gain > 0.0 ? 20.0 * std::log10(gain) : -200.0;
}

// Whether the group sounds after loading, before any keyswitch, controller or program change came.
bool soundsAtStart(const InstrumentFile& file, std::size_t index) {
    const GroupRecord& group = file.groups[index].record;
    if (group.excluded != 0 || group.releaseTrigger != 0) return false;
    switch (static_cast<GroupTrigger>(static_cast<std::int32_t>(group.trigger))) {
    case GroupTrigger::Always:
        return true;
    case GroupTrigger::Controller:
        return group.controllerLow <= 0 && group.controllerHigh >= 0;
    case GroupTrigger::Program:
        return group.program == 0;
    case GroupTrigger::Channel:
        return group.channel == 0;
    default: // the first group is active until another one is chosen
        return index == 0;
    }
}

// Who is heard, zone by zone.
class Listening {
  public:
    Listening(const InstrumentReport& report, Findings& findings)
        : file_(report.file)
        , peaks_(report)
        , findings_(findings) {}

    void zone(std::size_t group, std::size_t zone);
    void finish();

  private:
    const InstrumentFile& file_;
    SamplePeaks peaks_;
    Findings& findings_;
    std::bitset<keyCount> played_, heard_; // keys of groups that sound at the start
    double left_ = -200.0, right_ = -200.0;
};

void Listening::zone(std::size_t groupIndex, std::size_t zoneIndex) {
    const GroupEntry& group = file_.groups[groupIndex];
    const ZoneRecord& zone = group.zones[zoneIndex].record;
    const SamplePeaks::Peak peak = peaks_.of(group.zones[zoneIndex]);
    const int highest =
        std::clamp(std::min<std::int32_t>(zone.highVelocity, group.record.highVelocity), 0, 127);
    const double velocity = zone.ignoreVelocity != 0 ? 1.0 : velocityGain(file_.settings, highest);
    const double level = group.record.volume <= -30.0f ? -200.0
                                                       : decibelsOf(velocity) + zone.volume +
                                                             group.record.volume + file_.settings.volume;
    const double pan = std::clamp(static_cast<double>(zone.pan), -1.0, 1.0);
    const double left = level + decibelsOf(peak.left * std::min(1.0, 1.0 - pan));
    const double right = level + decibelsOf(peak.right * std::min(1.0, 1.0 + pan));
    const double louder = std::max(left, right);
    if (louder > tolerance)
        findings_.push_back({Severity::Error, zonePlace(file_, groupIndex, zoneIndex),
                             "its loudest note peaks at " + decibels(louder) + " dB and is clipped"});
    left_ = std::max(left_, left);
    right_ = std::max(right_, right);
    if (!soundsAtStart(file_, groupIndex)) return;
    const int low = std::max({zone.lowKey, static_cast<std::int32_t>(group.record.lowKey), 0});
    const int high = std::min({zone.highKey, static_cast<std::int32_t>(group.record.highKey), keyCount - 1});
    for (int key = low; key <= high; ++key) {
        played_.set(static_cast<std::size_t>(key));
        if (louder > inaudible) heard_.set(static_cast<std::size_t>(key));
    }
}

std::string rangesOf(const std::bitset<keyCount>& keys) {
    std::string text;
    for (int key = 0; key < keyCount; ++key) {
        if (!keys[static_cast<std::size_t>(key)]) continue;
        const int first = key;
        while (key + 1 < keyCount && keys[static_cast<std::size_t>(key + 1)])
            ++key;
        text += (text.empty() ? "" : ", ") + std::to_string(first) +
                (key > first ? ".." + std::to_string(key) : "");
    }
    return text;
}

void Listening::finish() {
    if (file_.groups.empty()) return; // that is said elsewhere
    const auto add = [&](const std::string& what) { findings_.push_back({Severity::Error, "sound", what}); };
    if (heard_.none())
        return add(
            "no note sounds when the instrument has been loaded: no zone of the groups that are active then "
            "is louder than " +
            decibels(inaudible) + " dB");
    if (const auto silent = played_ & ~heard_; silent.any())
        add("keys " + rangesOf(silent) + " are silent: all their zones are below " + decibels(inaudible) +
            " dB");
    if (std::fabs(left_ - right_) > onOneSide)
        add(std::string("it sounds on the ") + (left_ > right_ ? "left" : "right") + " side only");
}

} // namespace

void checkLevels(const InstrumentReport& report, const std::function<void(double)>& progress,
                 Findings& findings) {
    const InstrumentFile& file = report.file;
    Listening listening(report, findings);
    for (std::size_t g = 0; g < file.groups.size(); ++g)
        for (std::size_t z = 0; z < file.groups[g].zones.size(); ++z) {
            progress((static_cast<double>(z) / static_cast<double>(file.groups[g].zones.size()) +
                      static_cast<double>(g)) /
                     static_cast<double>(file.groups.size()));
            listening.zone(g, z);
        }
    listening.finish();
}

} // namespace zarno
