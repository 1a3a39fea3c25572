// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/VelocitySlices.h"

#include "engine/Tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace zarno {
namespace {

struct Slice {
    ImportedRange velocities;
    double volume = 0.0;  ///< dB
    bool follows = false; ///< the instrument's curve
};

// The least and the largest of a row of values, and what lies between them.
struct Span {
    double low = 1e9, high = -1e9;

    Span with(double value) const { return {std::min(low, value), std::max(high, value)}; }
    double middle() const { return 0.5 * (low + high); }
    bool isWithin(double error) const { return high - low <= 2.0 * error; }
};

using Slices = std::vector<Slice>;

class Slicer {
  public:
    Slicer(const InstrumentSettings& settings, double error)
        : error_(error) {
        for (int v = 0; v < 128; ++v)
            curve_[static_cast<std::size_t>(v)] =
                20.0 * std::log10(std::max(1e-9f, velocityGain(settings, v)));
    }

    const Slices& slicesOf(const ImportedZone& zone) {
        const ImportedRange range{std::max(zone.velocities.low, 0), std::min(zone.velocities.high, 127)};
        const auto [found, isNew] = known_.try_emplace({zone.velocityGains.get(), range});
        if (isNew) found->second = slice(*zone.velocityGains, range);
        return found->second;
    }

  private:
    // From the loudest end on, each slice as long as the error allows.
    Slices slice(ImportedGains gains, ImportedRange range) const {
        Slices slices;
        constexpr double coarse = 16.0; // dB: silence between velocities is no end of a slice any more
        if (error_ >= coarse)
            for (float& gain : gains)
                gain = std::max(gain, silentGain + 1.0f);
        for (int top = range.high; top >= range.low;) {
            if (gains[static_cast<std::size_t>(top)] <= silentGain) {
                --top;
                continue;
            }
            Span flat, followed;
            int flatLow = top, followedLow = top;
            Span flatSpan, followedSpan;
            bool flatGoesOn = true, followedGoesOn = true;
            for (int v = top; v >= range.low && (flatGoesOn || followedGoesOn); --v) {
                const double gain = gains[static_cast<std::size_t>(v)];
                if (gain <= silentGain) break;
                flat = flat.with(gain);
                followed = followed.with(gain - curve_[static_cast<std::size_t>(v)]);
                if (flatGoesOn && (flatGoesOn = flat.isWithin(error_))) flatLow = v, flatSpan = flat;
                if (followedGoesOn && (followedGoesOn = followed.isWithin(error_)))
                    followedLow = v, followedSpan = followed;
            }
            const bool follows = followedLow < flatLow;
            slices.push_back({{follows ? followedLow : flatLow, top},
                              follows ? followedSpan.middle() : flatSpan.middle(),
                              follows});
            top = slices.back().velocities.low - 1;
        }
        return slices;
    }

    const double error_;
    std::array<double, 128> curve_;
    std::map<std::pair<const ImportedGains*, ImportedRange>, Slices> known_;
};

std::size_t countSlices(const std::vector<MappedGroup>& groups, Slicer& slicer) {
    std::size_t count = 0;
    for (const MappedGroup& group : groups)
        for (const ImportedZone& zone : group.zones)
            count += zone.velocityGains ? slicer.slicesOf(zone).size() : 1;
    return count;
}

void sliceGroup(MappedGroup& group, Slicer& slicer) {
    std::vector<ImportedZone> sliced;
    for (const ImportedZone& zone : group.zones) {
        if (!zone.velocityGains) {
            sliced.push_back(zone);
            continue;
        }
        for (const Slice& slice : slicer.slicesOf(zone)) {
            ImportedZone one = zone;
            one.velocities = slice.velocities;
            if (slice.velocities.high == zone.velocities.high) one.velocities.high = zone.velocities.high;
            one.volume += slice.volume;
            one.velocityTracking = slice.follows ? 1.0 : 0.0;
            one.velocityGains = nullptr;
            sliced.push_back(std::move(one));
        }
    }
    group.zones = std::move(sliced);
}

} // namespace

void sliceVelocities(std::vector<MappedGroup>& groups, const InstrumentSettings& settings,
                     ImportReport& report) {
    constexpr double mostError = 64.0; // then a zone is no more than a few slices
    for (double error = leastSliceError; error <= mostError; error *= 2.0) {
        Slicer slicer(settings, error);
        std::size_t zones = 0;
        for (const MappedGroup& group : groups)
            zones += group.zones.size();
        if (error < mostError && countSlices(groups, slicer) > std::max(mostSlices, zones)) continue;
        for (MappedGroup& group : groups)
            sliceGroup(group, slicer);
        if (error > leastSliceError) {
            char text[64];
            std::snprintf(text, sizeof text, "within %.0f dB: closer would take too many zones", error);
            report.add("velocity curves", text, report.source);
        }
        std::erase_if(groups, [](const MappedGroup& group) { return group.zones.empty(); });
        return;
    }
}

} // namespace zarno
