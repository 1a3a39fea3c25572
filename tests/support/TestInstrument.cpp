// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {

TestSample TestSample::made(std::uint64_t frames, int channels, bool sixteenBit, double rate,
                            const std::function<double(std::uint64_t, int)>& value) {
    TestSample sample{std::make_shared<SampleMemory>(), rate};
    sample.memory->allocate(frames, channels, sixteenBit);
    for (std::uint64_t frame = 0; frame < frames; ++frame)
        for (int channel = 0; channel < channels; ++channel) {
            const std::uint64_t at =
                frame * static_cast<std::uint64_t>(channels) + static_cast<unsigned>(channel);
            const double v = value(frame, channel);
            if (sixteenBit)
                sample.memory->shorts()[at] = static_cast<std::int16_t>(std::lround(v * 32767));
            else
                sample.memory->floats()[at] = static_cast<float>(v);
        }
    return sample;
}

TestSample TestSample::level(float value, std::uint64_t frames, double rate) {
    return made(frames, 1, false, rate, [value](std::uint64_t, int) { return value; });
}

TestSample TestSample::ramp(std::uint64_t frames) {
    return made(frames, 1, false, 44100.0, [frames](std::uint64_t n, int) {
        return static_cast<double>(n) / static_cast<double>(frames);
    });
}

TestSample TestSample::sine(double hertz, std::uint64_t frames, double rate) {
    return made(frames, 1, false, rate, [=](std::uint64_t n, int) {
        return 0.5 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(n) / rate);
    });
}

ZoneRecord plainZone(const TestSample& sample) {
    ZoneRecord record;
    record.rootKey = 60;
    record.highKey = 127;
    record.highVelocity = 127;
    record.endFrame = record.loopEnd = sample.frames();
    record.ignoreVelocity = 1;
    return record;
}

TestInstrument::TestInstrument(int polyphony) {
    engine.clear();
    engine.settings().streaming = engine.settings().streamingStored = 0;
    engine.settings().sixteenBit = engine.settings().sixteenBitStored = 0;
    engine.settings().polyphony = engine.settings().polyphonyStored = polyphony;
    engine.rebuildPool();
}

ZGroup& TestInstrument::addGroup(const GroupRecord& record) {
    ZGroup& group = engine.createGroup("group");
    group.record = record;
    return group;
}

ZZone& TestInstrument::addZone(ZGroup& group, const TestSample& sample, const ZoneRecord& record) {
    auto zone = std::make_unique<ZZone>();
    zone->record = record;
    zone->memory = sample.memory;
    zone->lengthInFrames = sample.frames();
    zone->fileSampleRate = sample.rate;
    zone->mono = sample.memory->channels() == 1;
    zone->valid = true;
    return group.addZone(std::move(zone));
}

ZZone& TestInstrument::addLevel(float level, const GroupRecord& record) {
    const TestSample sample = TestSample::level(level);
    ZoneRecord zone = plainZone(sample);
    zone.fixedPitch = 1;
    return addZone(addGroup(record), sample, zone);
}

void TestInstrument::noteOn(int key, int velocity, std::uint32_t offset, int channel) {
    engine.postEvent(midi::noteOn, channel, key, velocity, offset);
}

void TestInstrument::noteOff(int key, std::uint32_t offset, int channel) {
    engine.postEvent(midi::noteOff, channel, key, 0, offset);
}

void TestInstrument::controller(int number, int value, std::uint32_t offset, int channel) {
    engine.postEvent(midi::controller, channel, number, value, offset);
}

void TestInstrument::bend(int value, std::uint32_t offset) {
    engine.postEvent(midi::pitchBend, 0, value & 127, value >> 7, offset);
}

Stereo TestInstrument::render(int frames, int blockSize) {
    const auto total = static_cast<std::size_t>(frames);
    Stereo out{std::vector<float>(total), std::vector<float>(total)};
    for (int done = 0; done < frames; done += blockSize) {
        const int count = std::min(blockSize, frames - done);
        float* outputs[2] = {out.left.data() + done, out.right.data() + done};
        engine.renderBlock(outputs, 2, count);
        clock.advance(count * 1000.0 / engine.sampleRate());
    }
    return out;
}

int TestInstrument::framesUntilSilence(int most) {
    int frames = 0;
    while (frames < most && next() != 0)
        ++frames;
    return frames;
}

} // namespace zarno
