// SPDX-License-Identifier: GPL-3.0-or-later
// Records come from files and host chunks as they are: any bits may stand in any field.
#include "tests/support/RandomInstrument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace zarno {
namespace {

std::uint32_t hostileWord(Chance& chance) {
    return chance.of({0u, 1u, 0xFFFFFFFFu, 0x7FFFFFFFu, 0x80000000u, 0x7F800000u, 0xFF800000u, 0x7FC00000u,
                      0x7F7FFFFFu, 0xFF7FFFFFu, 0x4E6E6B28u, 0xCE6E6B28u});
}

// Overwrites some of the first `bytes` bytes with integers and floats at and beyond every limit.
template <typename Record>
void spoil(Record& record, std::size_t from, std::size_t bytes, Chance& chance) {
    for (std::size_t at = from; at < bytes; at += 4) {
        if (!chance.oneIn(5)) continue;
        const std::uint32_t word = hostileWord(chance);
        std::memcpy(reinterpret_cast<char*>(&record) + at, &word, sizeof word);
    }
}

void fillWithSpoiltRecords(TestInstrument& t, Chance& chance) {
    const float big = std::numeric_limits<float>::max();
    for (int g = 0; g < 3; ++g) {
        GroupRecord group;
        spoil(group, 0, offsetof(GroupRecord, unread), chance);
        ZGroup& made = t.addGroup(group);
        for (int z = 0; z < 3; ++z) {
            const float loud = chance.of({1.0f, 1e10f, big});
            const TestSample sample =
                TestSample::made(static_cast<std::uint64_t>(chance.below(300)), chance.between(1, 2), false,
                                 chance.of({1.0, 44100.0, 2147483647.0}), [&](std::uint64_t, int) {
                                     return double{chance.of({loud, -loud, 0.0f, 1e-42f})};
                                 });
            ZoneRecord zone = plainZone(sample);
            zone.loopMode = chance.of({0, 2});
            spoil(zone, 0, offsetof(ZoneRecord, unread), chance);
            t.addZone(made, sample, zone);
        }
        t.engine.activateGroup(&made);
    }
}

void spoilSettings(TestInstrument& t, Chance& chance) {
    spoil(t.engine.settings(), offsetof(InstrumentSettings, quality), offsetof(InstrumentSettings, unread),
          chance);
    if (chance.oneIn(2)) t.engine.requestApplySettings();
    t.engine.setPitchBend(chance.of({0.0f, 1.0f, -1e30f, std::numeric_limits<float>::quiet_NaN()}));
    t.engine.setSampleRate(chance.of({44100.0f, 0.0f, -1.0f, 1e30f, std::numeric_limits<float>::infinity()}));
}

void postWildEvents(TestInstrument& t, Chance& chance) {
    for (int n = 0; n < 8; ++n) {
        const int type = chance.of({midi::noteOn, midi::noteOn, midi::noteOff, midi::controller,
                                    midi::pitchBend, midi::polyAftertouch, midi::programChange, 0x7FFFFFFF});
        t.engine.postEvent(type, chance.of({0, 1, 99, -1}), chance.between(-10, 300),
                           chance.between(-10, 300), chance.of({0u, 7u, 100u, 0x80000000u, immediateOffset}));
    }
    t.clock.advance(chance.of({0.0, 1.0, 1e12, -1e12}));
}

Stereo playSpoilt(TestInstrument& t, std::uint32_t seed, const VoiceKernels* kernels) {
    Chance chance(seed);
    t.engine.useKernels(kernels);
    t.engine.seedRandom(seed);
    fillWithSpoiltRecords(t, chance);
    Stereo whole;
    for (int block = 0; block < 20; ++block) {
        if (chance.oneIn(3)) spoilSettings(t, chance);
        postWildEvents(t, chance);
        const Stereo out = t.render(chance.of({1, 100, 300}));
        whole.left.insert(whole.left.end(), out.left.begin(), out.left.end());
        whole.right.insert(whole.right.end(), out.right.begin(), out.right.end());
    }
    return whole;
}

bool inRange(const std::vector<float>& wave) {
    return std::ranges::all_of(wave, [](float x) { return x >= -1 && x <= 1; });
}

// An ordinary instrument in the same engine must sound as if nothing had been.
void expectRecovery(TestInstrument& t) {
    t.engine.clear();
    const int polyphony = t.engine.settings().polyphony;
    t.engine.settings() = InstrumentSettings();
    t.engine.settings().streaming = t.engine.settings().sixteenBit = 0;
    t.engine.settings().polyphony = polyphony;
    t.engine.rebuildPool();
    t.engine.setSampleRate(44100);
    t.addLevel(0.5f);
    t.engine.applySettings();
    t.engine.setPitchBend(0);
    t.render(200000, 4096); // the widest bend takes three and a half seconds back
    t.noteOn(60);
    EXPECT_EQ(t.render(100).left.back(), 0.5f);
    t.engine.settings().reverbSend = 1.0f;
    t.render(30 * 44100, 4096); // the loudest tail that is still finite dies away in this time
    t.noteOn(60);
    EXPECT_NEAR(t.next(), 0.5, 1e-3);
    EXPECT_NE(t.render(4000).left.back(), 0.5f); // and the reverb answers
}

TEST(HostileValues, TheOutputIsAlwaysASoundAndTheEngineRecovers) {
    for (std::uint32_t seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        TestInstrument plain, sse2, best;
        const Stereo wanted = playSpoilt(plain, seed, nullptr);
        EXPECT_TRUE(inRange(wanted.left) && inRange(wanted.right));
        for (const Stereo& got :
             {playSpoilt(sse2, seed, &sse2Kernels()), playSpoilt(best, seed, &voiceKernels())}) {
            EXPECT_EQ(got.left, wanted.left);
            EXPECT_EQ(got.right, wanted.right);
        }
        if (seed % 30 == 0) expectRecovery(best);
        if (HasFailure()) return;
    }
}

} // namespace
} // namespace zarno
