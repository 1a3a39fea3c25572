// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Envelope.h"
#include "tools/import/LoopSeam.h"
#include "tools/import/LowPass.h"
#include "tools/import/ShapeZones.h"
#include "tools/import/ShapedFrames.h"

#include <gmock/gmock.h>

#include <cmath>
#include <complex>
#include <numbers>

namespace zarno {
namespace {

constexpr double pi = std::numbers::pi;

class Wave final : public FrameReader {
  public:
    Wave(std::uint64_t frames, std::function<float(std::uint64_t)> at)
        : frames_(frames)
        , at_(std::move(at)) {}
    std::uint64_t read(float* to, std::uint64_t frames) override {
        frames = std::min(frames, frames_ - done_);
        for (std::uint64_t i = 0; i < frames; ++i)
            to[i] = at_(done_++);
        return frames;
    }
    std::uint64_t read(std::int16_t*, std::uint64_t) override { return 0; }

  private:
    const std::uint64_t frames_;
    const std::function<float(std::uint64_t)> at_;
    std::uint64_t done_ = 0;
};

ImportedSample sampleOf(std::uint64_t frames, std::function<float(std::uint64_t)> at) {
    ImportedSample sample;
    sample.format.frames = frames;
    sample.open = [=] { return std::make_unique<Wave>(frames, at); };
    return sample;
}

std::vector<float> framesOf(const ImportedSample& sample) {
    std::vector<float> frames(sample.format.frames);
    EXPECT_EQ(sample.open()->read(frames.data(), frames.size()), frames.size());
    return frames;
}

TEST(Shaping, TheFilterIsTheAnalogueOneAtAnyRate) {
    for (const double cutoff : {0.01, 0.05, 0.2, 0.4})
        for (const double q : {0.5, 0.7071, 4.0})
            for (const double frequency : {0.5 * cutoff, cutoff, std::min(2.0 * cutoff, 0.42)}) {
                LowPass filter;
                filter.set(cutoff, q);
                std::complex<double> sum = 0.0;
                for (int i = 0; i < 60000; ++i) {
                    const double phase = 2.0 * pi * frequency * i;
                    const double out = filter(std::sin(phase));
                    if (i >= 20000) sum += out * std::polar(2.0 / 40000.0, -phase);
                }
                const double x = frequency / cutoff;
                const double analogue = 1.0 / std::hypot(1.0 - x * x, x / q);
                EXPECT_NEAR(20.0 * std::log10(std::abs(sum) / analogue), 0.0, cutoff > 0.1 ? 1.5 : 0.3)
                    << cutoff << ' ' << q << ' ' << frequency;
            }
}

// What the copy has and what the engine's envelope adds are the hold and the straight line that were asked
// for.
TEST(Shaping, CopyAndEnvelopeTogetherHoldAndFall) {
    struct Case {
        double hold, slope, sustain; // ms, dB a ms, dB
    };
    for (const Case& each : {Case{300, 0.02, -96}, {0, 0.05, -20}, {500, 0.03, -12}, {400, 0.9, -96}}) {
        ImportedShaping shaping;
        shaping.level = {0.0, 50.0, each.hold, each.slope, each.sustain, false};
        const double coefficient = 1.0 - std::exp(-shaping.level.engineSlope() / 8.685889638);
        const auto floor = static_cast<float>(std::pow(10.0, each.sustain / 20.0));
        float envelope = 1.0f;
        for (int time = 0; time < 2000; ++time) {
            const double fallen = std::max(each.sustain, -each.slope * std::max(0.0, time - each.hold));
            const double level = shaping.levelAt(50.0 + time) * envelope;
            EXPECT_LE(shaping.levelAt(50.0 + time), 1.0001);
            if (fallen < -80.0) break;
            EXPECT_NEAR(20.0 * std::log10(level) + shaping.headroom(), fallen, 0.3)
                << time << ' ' << each.slope;
            envelope = approach(envelope, floor, static_cast<float>(coefficient));
        }
    }
}

// A loop of 100 frames behind an attack that is not part of it.
ShapedPart loopedPart() {
    ShapedPart part;
    part.start = 10;
    part.loopStart = 500;
    part.end = 600;
    return part;
}
ImportedSample loopedSample() {
    return sampleOf(600, [](std::uint64_t i) {
        return static_cast<float>(0.3 * std::sin(2.0 * pi * static_cast<double>(i) / 50.0) +
                                  (i < 500 ? 0.5 : 0.1 * std::sin(2.0 * pi * static_cast<double>(i) / 20.0)));
    });
}

TEST(Shaping, LoopsOfCopiesGoOnWithoutAStep) {
    std::vector<ShapedPart> parts(4, loopedPart());
    parts[1].shaping.cutoff = 400.0;
    parts[1].shaping.resonance = 20.0;
    parts[2] = parts[1];
    parts[2].shaping.contour = {5.0, 10.0, 5.0, 30.0, 0.25};
    parts[2].shaping.contourToCutoff = 2400.0;
    parts[2].shaping.contourToPitch = -300.0;
    parts[2].shaping.level = {0.0, 1.0, 20.0, 0.2, -6.0, false};
    parts[3].shaping.swings[0] = {30.0, 6.1, 40.0, 0.0, 3.0};
    for (ShapedPart& part : parts) {
        part = withWholeTurns(part);
        const auto length = lengthOf(part);
        part.passes *= 2; // what would come next is what the loop begins with
        const auto frames = framesOf(shapedSample(loopedSample(), part));
        ASSERT_EQ(frames.size(), 2 * length.frames - length.loopStart);
        for (std::uint64_t i = 0; i < length.frames - length.loopStart; ++i)
            ASSERT_NEAR(frames[length.loopStart + i], frames[length.frames + i], 2e-3) << i;
    }
    EXPECT_NEAR(parts[3].shaping.swings[0].rate, 6.1, 0.07);
    parts[3].shaping.longest = 20.0; // which is not as long as the swing waits
    EXPECT_FALSE(withWholeTurns(parts[3]).shaping.swings[0].exists());
    EXPECT_EQ(framesOf(shapedSample(loopedSample(), parts[0]))[0], framesOf(loopedSample())[10]);
}

TEST(Shaping, ZonesBecomeNarrowEnoughForACopyEachAsLongAsThereIsRoom) {
    ImportedZone zone;
    zone.keys = {40, 69};
    zone.shaping.cutoff = 300.0;
    ImportReport report;
    std::vector<ImportedSample> samples = {loopedSample()};
    const auto pieces = shapeZones({zone}, samples, report);
    int next = 40;
    for (const ImportedZone& piece : pieces) {
        EXPECT_EQ(piece.keys.low, next);
        EXPECT_LE(piece.keys.high, next + (next < 50 ? 2 : 0))
            << "from 150 Hz on each key is filtered for itself";
        EXPECT_FALSE(piece.shaping.exists());
        next = piece.keys.high + 1;
    }
    EXPECT_EQ(next, 70);
    EXPECT_EQ(samples.size(), pieces.size() + 1);
    EXPECT_EQ(report.count("filters and contours"), pieces.size());

    zone.shaping.cutoff = 19500.0; // nothing to be heard of it
    EXPECT_EQ(shapeZones({zone}, samples, report)[0].sample, 0u);
    zone.shaping.cutoff = 300.0;
    samples = {sampleOf(std::uint64_t{1} << 40, [](std::uint64_t) { return 0.0f; })};
    EXPECT_EQ(shapeZones({zone}, samples, report).size(), 1u);
    EXPECT_EQ(samples.size(), 1u);
    EXPECT_THAT(report.remarksText(0), testing::HasSubstr("left out"));
}

TEST(Shaping, LittleRecordingsGetNoHundredsOfMegabytes) {
    ImportedZone zone;
    zone.keys = {40, 69};
    zone.loop = LoopMode::Loop;
    zone.loopEnd = 100;
    zone.shaping.swings[0] = {0.0, 0.3, 10.0, 0.0, 0.0};
    std::vector<ImportedZone> zones;
    for (zone.shaping.cutoff = 300.0; zones.size() < 10; zone.shaping.cutoff += 1.0)
        zones.push_back(zone);
    ImportReport report;
    std::vector<ImportedSample> samples = {sampleOf(100, [](std::uint64_t) { return 0.0f; })};
    shapeZones(zones, samples, report);
    std::uint64_t bytes = 0;
    for (const ImportedSample& sample : samples)
        bytes += 2 * sample.format.frames;
    EXPECT_LE(bytes, 33u << 20);
}

TEST(Shaping, SeamsLieWhereTheCurveIsFlat) {
    const auto sample = sampleOf(1000, [](std::uint64_t i) {
        return static_cast<float>(std::sin(2.0 * pi * static_cast<double>(i) / 200.0));
    });
    EXPECT_NEAR(static_cast<double>((400 + flattestSeam(sample, 400, 600)) % 100), 50.0, 1.0); // a peak
}

} // namespace
} // namespace zarno
