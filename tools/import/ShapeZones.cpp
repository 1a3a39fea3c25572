// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/ShapeZones.h"

#include "data/Limits.h"
#include "tools/import/ShapedFrames.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace zarno {
namespace {

struct Effort {
    int keys;       // a copy serves
    double longest; // ms that a loop waits for what moves before it
};
constexpr Effort efforts[] = {{3, 4000.0}, {3, 2000.0}, {3, 1000.0}, {5, 1000.0},
                              {7, 500.0},  {12, 500.0}, {24, 250.0}};

class ZoneShaper {
  public:
    ZoneShaper(const std::vector<ImportedSample>& samples, Effort effort)
        : samples_(samples)
        , effort_(effort) {}

    void add(const ImportedZone& zone);
    /// Of 16-bit samples.
    std::uint64_t bytes() const;
    void addSamples(std::vector<ImportedSample>& samples) const;

    std::size_t copies() const { return parts_.size(); }
    std::vector<ImportedZone> zones;

  private:
    int keysFrom(int key, const ImportedShaping& shaping) const;
    void addPiece(ImportedZone piece);
    ShapedPart partOf(const ImportedZone& zone) const;

    const std::vector<ImportedSample>& samples_;
    const Effort effort_;
    std::map<std::pair<std::size_t, ShapedPart>, std::size_t> parts_; // to the index of the new sample
};

// Whole semitones: layers that are detuned by less share a copy.
ShapedPart ZoneShaper::partOf(const ImportedZone& zone) const {
    const SoundFormat& format = samples_[zone.sample].format;
    const double middle = 0.5 * (zone.keys.low + zone.keys.high);
    const double semitones = zone.keyTracking == 0.0 ? 0.0 : middle - zone.rootKey + zone.tune / 100.0;
    constexpr double most = 96.0; // beyond there is nothing to be heard
    ShapedPart part;
    part.rate = format.sampleRate * std::exp2(std::round(std::clamp(semitones, -most, most)) / 12.0);
    part.shaping = zone.shaping.atKey(middle).audibleAt(part.rate);
    if (format.channels < 2) part.shaping.width = 1.0;
    if (zone.loop != LoopMode::Loop) part.shaping.loopFade = 0;
    constexpr std::uint64_t mostReversed = 8u << 20; // frames: they are held in memory
    if (zone.loop == LoopMode::Loop || std::min(zone.end, format.frames) > zone.start + mostReversed)
        part.shaping.isReversed = false;
    part.start = zone.start;
    part.end = part.loopStart = std::min(zone.end, format.frames);
    if (zone.loop == LoopMode::Loop && zone.loopStart < std::min(zone.loopEnd, format.frames)) {
        part.end = std::min(zone.loopEnd, format.frames);
        part.loopStart = zone.loopStart;
        // Two octaves up a second has four times as many frames, and no more above.
        constexpr double mostSpeed = 4.0;
        part.shaping.longest = effort_.longest * std::min(1.0, mostSpeed * format.sampleRate / part.rate);
    }
    return withWholeTurns(part);
}

void ZoneShaper::addPiece(ImportedZone piece) {
    const ShapedPart part = partOf(piece);
    if (part.shaping.exists() && part.start < part.end) {
        const auto [found, isNew] = parts_.try_emplace({piece.sample, part}, samples_.size() + parts_.size());
        const ShapedLength length = lengthOf(part);
        piece.sample = found->second;
        piece.volume += part.shaping.headroom();
        piece.start = 0;
        piece.end = piece.loopEnd = length.frames;
        piece.loopStart = length.loopStart;
    }
    piece.shaping = {};
    zones.push_back(std::move(piece));
}

void ZoneShaper::add(const ImportedZone& zone) {
    if (!zone.shaping.exists()) return zones.push_back(zone);
    if (zone.keyTracking == 0.0) return addPiece(zone); // all keys are alike
    ImportedZone piece = zone;
    for (int key = zone.keys.low; key <= zone.keys.high; key = piece.keys.high + 1) {
        piece.keys.low = key;
        piece.keys.high = std::min(zone.keys.high, key + keysFrom(key, zone.shaping) - 1);
        addPiece(piece);
    }
}

// Where even the fundamental is on the filter's slope each semitone is a decibel.
int ZoneShaper::keysFrom(int key, const ImportedShaping& shaping) const {
    const double fundamental = 8.1758 * std::exp2(key / 12.0);
    const bool isSteep = shaping.cutoff > 0.0 && shaping.cutoffAt(shaping.contour.end()) < 2.0 * fundamental;
    return isSteep ? (effort_.keys + 2) / 3 : effort_.keys;
}

std::uint64_t ZoneShaper::bytes() const {
    std::uint64_t bytes = 0;
    for (const auto& [part, index] : parts_)
        bytes += 2ull * static_cast<std::uint64_t>(std::clamp(samples_[part.first].format.channels, 1, 2)) *
                 lengthOf(part.second).frames;
    return bytes;
}

void ZoneShaper::addSamples(std::vector<ImportedSample>& samples) const {
    std::vector<ImportedSample> made(parts_.size());
    for (const auto& [part, index] : parts_)
        made[index - samples_.size()] = shapedSample(samples_[part.first], part.second);
    samples.insert(samples.end(), std::make_move_iterator(made.begin()), std::make_move_iterator(made.end()));
}

// Of 16-bit frames. What little there is may not ask for much: a file of a kilobyte can have copies of
// hundreds of megabytes otherwise.
std::uint64_t mostBytesFrom(const std::vector<ImportedSample>& samples) {
    std::uint64_t bytes = leastShapedBytes;
    for (const ImportedSample& sample : samples)
        bytes +=
            shapedBytesPerByte * 2 * std::min(sample.format.frames, mostShapedBytes / shapedBytesPerByte);
    return std::min(bytes, mostShapedBytes);
}

} // namespace

std::vector<ImportedZone> shapeZones(const std::vector<ImportedZone>& zones,
                                     std::vector<ImportedSample>& samples, ImportReport& report,
                                     std::uint64_t mostBytes) {
    mostBytes = std::min(mostBytes, mostBytesFrom(samples));
    for (const Effort& effort : efforts) {
        ZoneShaper shaper(samples, effort);
        for (const ImportedZone& zone : zones)
            shaper.add(zone);
        if (shaper.bytes() > mostBytes || shaper.zones.size() > limits::importedZones) continue;
        if (shaper.copies() > 0)
            report.note("filters and contours",
                        "done to copies of the samples, each for " + std::to_string(effort.keys) +
                            " keys at most",
                        report.source, shaper.copies());
        shaper.addSamples(samples);
        return std::move(shaper.zones);
    }
    report.add("filters and contours", "left out: copies would be too large", report.source);
    return withoutShaping(zones, report);
}

std::vector<ImportedZone> withoutShaping(std::vector<ImportedZone> zones, ImportReport& report) {
    for (ImportedZone& zone : zones) {
        const ImportedShaping& shaping = zone.shaping;
        if (shaping.cutoff > 0.0) report.add("low-pass filter", "left out", zone.place);
        if (shaping.bands[0].exists()) report.add("filter or equaliser", "left out", zone.place);
        if (shaping.width != 1.0) report.add("width", "the recording's own", zone.place);
        if (shaping.isReversed) report.add("direction=reverse", "played forwards", zone.place);
        if (shaping.loopFade > 0) report.add("loop_crossfade", "loops without it", zone.place);
        if (shaping.contourToPitch != 0.0) report.add("pitch envelope", "left out", zone.place);
        if (shaping.swings[0].exists() || shaping.swings[1].exists())
            report.add("vibrato or tremolo", "left out", zone.place);
        if (shaping.level.exists())
            report.add("delay, slow attack, hold or decay to a sustain level", "the engine's envelope",
                       zone.place);
        zone.shaping = {};
    }
    return zones;
}

} // namespace zarno
