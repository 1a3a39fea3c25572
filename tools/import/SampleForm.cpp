// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SampleForm.h"

#include "tools/import/LoopSeam.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

std::uint64_t ceilingOf(std::uint64_t number, std::uint64_t divisor) {
    return (number + divisor - 1) / divisor;
}

} // namespace

SampleForms::Loop SampleForms::loopOf(const ImportedZone& zone) const {
    if (zone.loop != LoopMode::Loop) return {};
    const std::uint64_t end = std::min(zone.loopEnd, samples_[zone.sample].format.frames);
    return zone.start < end && zone.loopStart < end ? Loop{zone.loopStart, end} : Loop{};
}

// A zone that starts inside its loop has its own loop begin with the next pass: the engine moves a loop
// behind the start.
std::uint64_t SampleForms::passesFor(const ImportedZone& zone, const Loop& loop) const {
    const std::uint64_t length = loop.end - loop.start;
    const std::uint64_t extra = zone.start > loop.start ? 1 : 0;
    if (chunkFrames_ == 0) return ceilingOf(shortestLoop, length) + extra;
    // The loop's end must lie at or behind the first chunk's.
    const std::uint64_t furthest = zone.start + chunkFrames_;
    const std::uint64_t needed = furthest > loop.start ? ceilingOf(furthest - loop.start, length) : 1;
    return std::max(needed, 1 + extra);
}

SampleForms::Key SampleForms::keyOf(const ImportedZone& zone) const {
    const Loop loop = loopOf(zone);
    return {zone.sample, loop.start, loop.end};
}

void SampleForms::add(const ImportedZone& zone) {
    const Loop loop = loopOf(zone);
    if (zone.loop == LoopMode::Loop && !loop.exists())
        report_.add("loop outside the sample", "played once", zone.place);
    const auto [index, isNew] = indices_.try_emplace(keyOf(zone), forms_.size());
    SampleForm& form = isNew ? forms_.emplace_back() : forms_[index->second];
    form.sample = zone.sample;
    if (loop.exists()) {
        form.loopStart = loop.start;
        form.frames = loop.end;
        form.passes = std::max(form.passes, passesFor(zone, loop));
    } else {
        form.frames = std::max(form.frames, std::min(zone.end, samples_[zone.sample].format.frames));
    }
}

void SampleForms::moveSeams() {
    for (SampleForm& form : forms_)
        if (chunkFrames_ == 0 && form.passes > 0)
            form.seam = flattestSeam(samples_[form.sample], form.loopStart, form.frames);
}

// In memory a jump goes to one step behind the loop's start, from anywhere in the step that would pass the
// end. So at the recording's own pitch a loop needs one more frame, its first once more, and then has its
// length exactly; at others it has that on average.
std::uint64_t SampleForms::overshoot(const ImportedZone& zone) const {
    if (chunkFrames_ > 0) return 0;
    constexpr double usualRate = 44100.0;
    const double semitones = zone.keyTracking == 0.0
                                 ? 0.0
                                 : 0.5 * (zone.keys.low + zone.keys.high) - zone.rootKey + zone.tune / 100.0;
    const double step = samples_[zone.sample].format.sampleRate / usualRate * std::exp2(semitones / 12.0);
    if (step < 0.75) return 0;
    return static_cast<std::uint64_t>(std::clamp(std::round(step / 2.0), 1.0, 8.0));
}

void SampleForms::setPoints(const ImportedZone& zone, std::size_t index, ZoneRecord& record) const {
    const SampleForm& form = forms_[index];
    record.startFrame = zone.start;
    // A voice does not play the frame from which it would reach its end.
    record.endFrame = form.passes > 0 ? form.writtenFrames() - 1 : std::min(zone.end, form.frames) + 1;
    record.loopMode = static_cast<std::int32_t>(zone.loop == LoopMode::OneShot ? LoopMode::OneShot
                                                : form.passes > 0              ? LoopMode::Loop
                                                                               : LoopMode::None);
    record.loopStart = form.loopStart + form.seam + (zone.start > form.loopStart ? form.loopFrames() : 0);
    record.loopEnd = form.unrolledFrames() + overshoot(zone);
    if (form.passes == 0) record.loopStart = zone.start, record.loopEnd = record.endFrame;
}

} // namespace zarno
