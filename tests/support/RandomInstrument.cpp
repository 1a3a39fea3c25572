// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RandomInstrument.h"

namespace zarno {
namespace {

TestSample randomSample(Chance& chance, bool sixteenBit, bool sustained) {
    const int shortest = sustained ? 3000 : 1;
    const auto frames = static_cast<std::uint64_t>(chance.oneIn(6) ? chance.between(shortest, shortest + 8)
                                                                   : chance.between(shortest, 20000));
    const double rate = chance.of({44100.0, 44100.0, 44100.0, 48000.0, 22050.0, 8000.0, 96000.0});
    const int channels = chance.between(1, 2);
    return TestSample::made(frames, channels, sixteenBit, rate,
                            [&](std::uint64_t, int) { return chance.real(-0.9f, 0.9f); });
}

float randomTime(Chance& chance) {
    return chance.of({0.0f, 0.0f, 0.01f, 1.0f, chance.real(0, 20), chance.real(0, 300), 2000.0f});
}

void placeFrames(ZoneRecord& record, std::uint64_t frames, Chance& chance, bool sustained) {
    const int n = static_cast<int>(frames);
    record.endFrame = frames - (chance.oneIn(3) ? 1 : 0) + (chance.oneIn(5) ? 40u : 0u);
    record.startFrame = chance.oneIn(3) ? static_cast<std::uint64_t>(chance.below(n)) : 0;
    if (sustained) record.startFrame /= 4;
    const auto length = static_cast<std::uint64_t>(
        chance.oneIn(4) ? chance.between(1, 3) : chance.of({40, 500, chance.between(1, n)}));
    record.loopEnd = chance.oneIn(2) ? frames : 1 + static_cast<std::uint64_t>(chance.below(n));
    record.loopStart = record.loopEnd > length ? record.loopEnd - length : 0;
    record.loopMode = sustained ? 2 : chance.of({0, 0, 1, 2, 2, 2, 3});
    if (sustained && chance.oneIn(3)) record.loopMode = 0;
}

ZoneRecord randomZone(const TestSample& sample, Chance& chance, bool sustained) {
    ZoneRecord record;
    placeFrames(record, sample.frames(), chance, sustained);
    const int rarely = sustained ? 20 : 3;
    record.rootKey = chance.between(40, 80);
    record.lowKey = chance.oneIn(rarely) ? chance.between(20, 60) : 0;
    record.highKey = chance.oneIn(rarely) ? chance.between(60, 100) : 127;
    record.lowVelocity = chance.oneIn(rarely) ? chance.between(0, 60) : 0;
    record.highVelocity = chance.oneIn(rarely) ? chance.between(60, 127) : 127;
    record.volume = chance.oneIn(10) ? 3.0f : chance.real(-40, -15);
    record.pan = chance.of({0.0f, 0.0f, -1.0f, 1.0f, chance.real(-1, 1)});
    record.attack = randomTime(chance);
    record.decay = randomTime(chance);
    record.sustain = chance.of({0.0f, -6.0f, -90.0f, chance.real(-30, 0)});
    record.release = sustained ? chance.real(0, 400) : randomTime(chance);
    record.fineTune = chance.oneIn(2) ? chance.real(-100, 100) : 0;
    record.fixedPitch = chance.oneIn(6);
    record.ignoreVelocity = chance.oneIn(4);
    record.exclusiveId = chance.oneIn(sustained ? 30 : 4) ? chance.between(1, 2) : 0;
    return record;
}

GroupRecord randomGroup(Chance& chance, bool sustained) {
    GroupRecord record;
    if (!sustained && chance.oneIn(3)) randomiseEnvelope(record, chance);
    record.selectionMode = chance.of({0, 0, 1, 2, 3, 4});
    if (!sustained) randomiseTrigger(record, chance);
    return record;
}

} // namespace

void randomiseTrigger(GroupRecord& record, Chance& chance) {
    record.selectionMode = chance.of({0, 0, 1, 2, 3, 4});
    record.trigger = chance.of({0, 0, 0, 1, 2, 3, 4, 5, 6});
    record.channel = chance.below(3);
    record.keyswitchNote = chance.between(36, 40);
    record.controllerNumber = chance.of({1, 2, 64});
    record.controllerLow = chance.below(64);
    record.controllerHigh = chance.between(30, 127);
    record.program = chance.below(3);
    record.lowKey = chance.oneIn(6) ? 50 : 0;
    record.highVelocity = chance.oneIn(6) ? 100 : 127;
    record.releaseTrigger = chance.oneIn(5);
    record.releaseDecayTime = chance.of({0.0f, 50.0f, 1000.0f});
    record.excluded = chance.oneIn(20);
}

void randomiseEnvelope(GroupRecord& record, Chance& chance) {
    record.attack = chance.of({0.0f, 5.0f, -10.0f});
    record.decay = chance.of({0.0f, 50.0f});
    record.sustain = chance.of({0.0f, -3.0f});
    record.release = chance.of({0.0f, 30.0f, -50.0f});
    record.volume = chance.of({0.0f, -3.0f, -29.0f, -30.0f});
}

void randomiseSettings(InstrumentSettings& settings, Chance& chance, bool sustained) {
    settings.quality = chance.of({0, 1, 2, 2, 2, 3});
    settings.velocityCurve = chance.below(4);
    settings.playMode = chance.of({0, 0, 0, 1, 2});
    settings.glideTime = chance.of({0.0f, 1.0f, 30.0f, chance.real(0, 200)});
    settings.volume = chance.of({0.0f, -6.0f, 3.0f, -130.0f});
    settings.pan = chance.real(-1, 1);
    settings.lfoShape = chance.below(6);
    settings.lfoDestination = chance.of({0, 1, 1, 2, 3, 4});
    settings.lfoDepthSource = chance.of({0, 1, 1, 2, 3, 4});
    settings.lfoRate = chance.of({0.0f, 3.0f, chance.real(0, 40), 900.0f});
    settings.lfoDepth = chance.of({0.0f, 0.0f, chance.real(0, 1), 30.0f});
    settings.reverbSend = chance.oneIn(3) ? chance.real(0, 1) : 0.0f;
    settings.velocityFloor = chance.of({-48, -90, 0, 6});
    settings.velocitySpanOffset = chance.of({0, -12, 60});
    if (!sustained) return;
    if (!chance.oneIn(8)) settings.playMode = 0;
    if (!chance.oneIn(8)) settings.volume = chance.real(-6, 0);
    if (settings.lfoDestination == 2 && !chance.oneIn(8)) settings.lfoDestination = 1;
    if (!chance.oneIn(4)) settings.velocityFloor = -48;
    if (!chance.oneIn(4)) settings.velocitySpanOffset = 0;
    if (settings.lfoDepth > 1.0f && !chance.oneIn(8)) settings.lfoDepth = 0.3f;
}

void fillAtRandom(TestInstrument& instrument, Chance& chance, bool sustained) {
    randomiseSettings(instrument.engine.settings(), chance, sustained);
    const bool sixteenBit = chance.oneIn(2);
    instrument.engine.settings().sixteenBit = sixteenBit;
    const int groups = sustained ? 1 : chance.between(1, chance.oneIn(8) ? 30 : 5);
    for (int g = 0; g < groups; ++g) {
        ZGroup& group = instrument.addGroup(randomGroup(chance, sustained));
        const int zones = chance.between(1, 6);
        for (int z = 0; z < zones; ++z) {
            const TestSample sample = randomSample(chance, sixteenBit, sustained);
            instrument.addZone(group, sample, randomZone(sample, chance, sustained));
        }
    }
}

} // namespace zarno
