// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Tables.h"
#include "engine/ZGroup.h"

#include <cmath>

namespace zarno {

struct PlainPan {
    float left = 1, right = 1;

    static PlainPan at(float p) {
        return p > 0 ? PlainPan{std::fabs(1 - p), 1.0f} : PlainPan{1.0f, std::fabs(p + 1)};
    }
};

// A zone as the plain engine sees it: the engine's own record and sample memory, everything derived from
// them worked out again.
struct PlainZone {
    const ZZone* zone;
    const ZGroup* group;
    float attack = 1, decay = 0, release = 0; // coefficients per sample
    float sustain = 1, gain = 1;
    PlainPan pan{};

    const ZoneRecord& record() const { return zone->record; }

    void prepare(double sampleRate) {
        const ZoneRecord& z = zone->record;
        const GroupRecord& g = group->record;
        attack = coefficient(finiteOr(g.attack, 0) + finiteOr(z.attack, 0), sampleRate, 1);
        decay = coefficient(finiteOr(g.decay, 0) + finiteOr(z.decay, 0), sampleRate, 0);
        release = coefficient(finiteOr(g.release, 0) + finiteOr(z.release, 100), sampleRate, 0);
        sustain = power10(finiteOr(g.sustain, 0) + finiteOr(z.sustain, 0));
        const float groupVolume = finiteOr(g.volume, 0);
        gain = groupVolume <= -30 ? 0.0f : power10(finiteOr(z.volume, 0) + groupVolume);
        pan = PlainPan::at(finiteOr(z.pan, 0));
    }

    float frame(std::int64_t index, int channel) const {
        const SampleMemory& memory = *zone->memory;
        if (index < 0 || index >= static_cast<std::int64_t>(memory.frames())) return 0.0f;
        const std::int64_t at = index * memory.channels() + (memory.channels() == 2 ? channel : 0);
        return memory.isSixteenBit() ? memory.shorts()[at] * 0.000030517578125f : memory.floats()[at];
    }

    bool matches(int key, int velocity) const {
        const ZoneRecord& z = zone->record;
        const GroupRecord& g = group->record;
        return z.lowKey <= key && key <= z.highKey && z.lowVelocity <= velocity &&
               velocity <= z.highVelocity && g.lowKey <= key && key <= g.highKey &&
               g.lowVelocity <= velocity && velocity <= g.highVelocity;
    }

  private:
    static float coefficient(float ms, double sampleRate, float whenZero) {
        if (ms <= 0) return whenZero;
        return static_cast<float>(1.0 - std::exp(-1.0 / (ms * sampleRate / 1000.0)));
    }
    static float power10(float decibels) { return static_cast<float>(std::pow(10.0, decibels / 20.0)); }
};

} // namespace zarno
