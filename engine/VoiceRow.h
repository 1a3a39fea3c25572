// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Modulation.h"
#include "engine/VoiceKernel.h"
#include "engine/ZVoice.h"

namespace zarno {

// A stretch of a segment in which either every sample changes the pitch or none does.
struct SegmentRun {
    const ModulationSegment& segment;
    int from, to;
    bool pitchFollows;

    int frames() const { return to - from; }
};

// Positions and envelopes of one voice over a run, computed ahead of the interpolation: the recurrences of
// ZVoice::render without its reads. Audio thread.
class VoiceRow {
  public:
    // True when the voice cannot end, loop, change its envelope stage or leave its window within the run, so
    // that it may share lanes with others.
    static bool canShareLanes(const ZVoice& voice, const FrameWindow& window, const SegmentRun& run);

    static void putIntoLane(const ZVoice& voice, VoiceLanes& lanes, int lane, bool pitchFollows);
    // Every frame of the row has this envelope.
    static void holdEnvelope(FrameRow& row, float envelope);
    static void takeFromLane(ZVoice& voice, const VoiceLanes& lanes, int lane, const SegmentRun& run);

    // Moves the voice on from the segment's sample index, one frame after the other, and fills the row from
    // there; stops before the first frame that the voice must render itself. Returns where it stopped, run.to
    // at the furthest.
    static int advance(ZVoice& voice, const FrameWindow& window, const SegmentRun& run, int index,
                       FrameRow& row);

  private:
    struct Step;
};

} // namespace zarno
