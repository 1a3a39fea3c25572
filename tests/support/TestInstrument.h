// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineEvent.h"
#include "engine/ZInstrument.h"
#include "platform/Clock.h"

#include <functional>
#include <memory>
#include <vector>

namespace zarno {

struct Stereo {
    std::vector<float> left, right;
    std::size_t size() const { return left.size(); }
};

// A recording for zones to play.
struct TestSample {
    std::shared_ptr<SampleMemory> memory;
    double rate = 44100.0; // Hz

    std::uint64_t frames() const { return memory->frames(); }

    static TestSample made(std::uint64_t frames, int channels, bool sixteenBit, double rate,
                           const std::function<double(std::uint64_t frame, int channel)>& value);
    // Every frame the same: what comes out is then the level alone.
    static TestSample level(float value, std::uint64_t frames = 400000, double rate = 44100.0);
    // Frame n has the value n / frames: what comes out tells the position.
    static TestSample ramp(std::uint64_t frames);
    static TestSample sine(double hertz, std::uint64_t frames, double rate = 44100.0);
};

// The whole sample on every key and velocity, root key 60, no envelope, full level at any velocity.
ZoneRecord plainZone(const TestSample& sample);

// An instrument built in memory and a player for it. The clock goes with the rendered samples.
class TestInstrument {
  public:
    explicit TestInstrument(int polyphony = 32);

    ManualClock clock{1000.0};
    ZInstrument engine{clock};

    ZGroup& addGroup(const GroupRecord& record = {});
    ZZone& addZone(ZGroup& group, const TestSample& sample, const ZoneRecord& record);
    ZZone& addZone(ZGroup& group, const TestSample& sample) {
        return addZone(group, sample, plainZone(sample));
    }
    // A group of its own with one zone that plays the level, at the same pitch on every key.
    ZZone& addLevel(float level, const GroupRecord& record = {});

    void noteOn(int key, int velocity = 127, std::uint32_t offset = 0, int channel = 0);
    void noteOff(int key, std::uint32_t offset = 0, int channel = 0);
    void controller(int number, int value, std::uint32_t offset = 0, int channel = 0);
    void bend(int value, std::uint32_t offset = 0);

    Stereo render(int frames, int blockSize = 512);
    // Renders one frame: its left value.
    float next() { return render(1).left[0]; }
    // Renders up to the frame behind which all is silent: how many there were.
    int framesUntilSilence(int most = 200000);
};

} // namespace zarno
