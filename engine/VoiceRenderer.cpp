// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/VoiceRenderer.h"

#include <algorithm>

namespace zarno {
namespace {

bool hasKernel(std::int32_t quality) {
    return quality >= 0 && quality <= 2;
}

} // namespace

void VoiceRenderer::render(const VoicePool& pool, const ModulationSegment& segment, float* left,
                           float* right) {
    static_assert(ModulationSegment::maxFrames <= kernelFrames);
    const Mix mix{left, right};
    const int moving = segment.modulated ? segment.frames : segment.movingFrames;
    if (moving > 0) renderRun(pool, {segment, 0, moving, true}, mix);
    if (moving < segment.frames) renderRun(pool, {segment, moving, segment.frames, false}, mix);
    modulation_.showSample(segment, segment.frames - 1);
}

void VoiceRenderer::renderRun(const VoicePool& pool, const SegmentRun& run, const Mix& mix) {
    members_ = 0;
    for (const auto& voice : pool.voices()) {
        if (!voice->isPlaying()) continue;
        voice->takeGains();
        voice_[static_cast<std::size_t>(members_++)] = voice.get();
        if (members_ == batchSize) renderBatch(run, mix);
    }
    renderBatch(run, mix);
}

void VoiceRenderer::renderBatch(const SegmentRun& run, const Mix& mix) {
    for (std::size_t m = 0; m < static_cast<std::size_t>(members_); ++m) {
        window_[m] = windowOf(*voice_[m]);
        row_[m] = &rows_[m];
        done_[m] = run.from;
    }
    if (kernels_ != nullptr) advanceShared(run);
    for (int m = 0; m < members_; ++m)
        finish(m, run, mix);
    members_ = 0;
}

void VoiceRenderer::advanceShared(const SegmentRun& run) {
    VoiceLanes lanes{};
    std::size_t used = 0;
    std::array<std::size_t, batchSize> memberOf{};
    for (std::size_t m = 0; m < static_cast<std::size_t>(members_); ++m) {
        if (window_[m].data == nullptr || !VoiceRow::canShareLanes(*voice_[m], window_[m], run)) continue;
        VoiceRow::putIntoLane(*voice_[m], lanes, static_cast<int>(used), run.pitchFollows);
        memberOf[used++] = m;
    }
    if (used == 0) return;
    // A coefficient of 0 leaves an envelope where it is, to the bit.
    const bool envelopesHold = std::all_of(lanes.coefficient, lanes.coefficient + used,
                                           [](float coefficient) { return coefficient == 0.0f; });
    if (envelopesHold && !run.pitchFollows) {
        for (std::size_t lane = 0; lane < used; ++lane)
            VoiceRow::holdEnvelope(rows_[lane], lanes.envelope[lane]);
        kernels_->advanceHeld(lanes, rows_.data(), run.frames());
    } else {
        for (FrameRow& row : rows_)
            row.envelopeHeld = false;
        if (run.pitchFollows)
            kernels_->advanceFollowing(lanes, rows_.data(), run.frames(),
                                       run.segment.bendRatio.data() + run.from,
                                       run.segment.vibrato.data() + run.from);
        else
            kernels_->advance(lanes, rows_.data(), run.frames());
    }

    // The kernel fills the rows in lane order; members without a lane take those that are left.
    std::size_t lane = 0, left = used;
    for (std::size_t m = 0; m < static_cast<std::size_t>(members_); ++m) {
        if (lane == used || memberOf[lane] != m) {
            row_[m] = &rows_[left++];
            continue;
        }
        VoiceRow::takeFromLane(*voice_[m], lanes, static_cast<int>(lane), run);
        row_[m] = &rows_[lane++];
        done_[m] = run.to;
    }
}

// Mixes the row and, where it stops short, takes the voice through the rest of the run.
void VoiceRenderer::finish(int member, const SegmentRun& run, const Mix& mix) {
    const auto m = static_cast<std::size_t>(member);
    ZVoice& voice = *voice_[m];
    mixRow(member, run, run.from, done_[m], mix);
    for (int index = done_[m]; index < run.to && voice.isPlaying();) {
        const int reached = VoiceRow::advance(voice, window_[m], run, index, *row_[m]);
        mixRow(member, run, index, reached, mix);
        index = reached;
        if (index == run.to) return;
        renderExactly(voice, run.segment, index++, mix);
        window_[m] = windowOf(voice);
    }
}

FrameWindow VoiceRenderer::windowOf(const ZVoice& voice) const {
    const bool fast = kernels_ != nullptr && hasKernel(voice.quality_) && voice.isPlaying();
    return fast ? voice.frameWindow() : FrameWindow{};
}

void VoiceRenderer::mixRow(int member, const SegmentRun& run, int from, int to, const Mix& mix) {
    if (from == to) return;
    const auto m = static_cast<std::size_t>(member);
    const ZVoice& voice = *voice_[m];
    const FrameWindow& window = window_[m];
    const ModulationSegment& segment = run.segment;
    MixJob job;
    job.data = window.data;
    job.origin = window.origin;
    job.position = row_[m]->position + (from - run.from);
    job.envelope = row_[m]->envelope + (from - run.from);
    job.expression = segment.expression.data() + from;
    job.panLeft = segment.panLeft.data() + from;
    job.panRight = segment.panRight.data() + from;
    job.leftGain = voice.leftGain_;
    job.rightGain = voice.rightGain_;
    job.left = mix.left + from;
    job.right = mix.right + from;
    job.frames = to - from;
    kernels_->mix[voice.quality_][window.sixteenBit][window.stereo](job);
}

void VoiceRenderer::renderExactly(ZVoice& voice, const ModulationSegment& segment, int index,
                                  const Mix& mix) {
    modulation_.showSample(segment, index);
    float left = 0.0f, right = 0.0f;
    if (!voice.render(left, right)) return;
    mix.left[index] += left * segment.expression[index] * segment.panLeft[index];
    mix.right[index] += right * segment.expression[index] * segment.panRight[index];
}

} // namespace zarno
