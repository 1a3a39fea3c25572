// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <random>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace zarno {
namespace {

using namespace test;

// Instruments damaged in every way that a small change can damage them are loaded and played. Nothing may
// crash (the sanitizer builds watch), nothing may take long or much memory, and what is heard must be finite.
class HostileInstruments : public testing::Test {
  protected:
    static InstrumentBuilder smallInstrument(bool embedded, bool streaming) {
        InstrumentBuilder file;
        file.storage = embedded;
        file.settings.streamingStored = streaming;
        file.settings.streamBufferFramesStored = 8;
        file.settings.polyphonyStored = 4;
        file.image = "PNG", file.layout = "<x/>", file.licences = {"l"};
        const std::string frames(64, 'f');
        const auto sample = [&](int width) { return embedded ? block(width, 44100, 1, 32, frames) : ""; };
        file.groups = {{"A", {}, {zone("a.wav", sample(2)), zone("a.wav")}, {}},
                       {"B", {}, {zone("b.wav")}, {}}};
        file.groups[1].zones[0].block = sample(2);
        file.groups[1].zones[0].record.loopMode = 2;
        return file;
    }

    void loadAndPlay(const std::string& bytes) {
        const auto start = std::chrono::steady_clock::now();
        loadInstrument(instrument_, folder_.write("x.zse", bytes));
        for (const int key : {0, 60, 61})
            instrument_.postEvent(midi::noteOn, 0, key, 100, 0);
        instrument_.postEvent(midi::controller, 0, 1, 127, 20);
        instrument_.postEvent(midi::noteOff, 0, 60, 0, 40);
        float left[64], right[64];
        float* outputs[] = {left, right};
        instrument_.renderBlock(outputs, 2, 64);
        for (int i = 0; i < 64; ++i)
            ASSERT_TRUE(std::isfinite(left[i]) && std::isfinite(right[i]));
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    }

    void expectLittleMemory() {
#ifndef _WIN32
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        EXPECT_LT(usage.ru_maxrss, 512 * 1024) << "KB at the peak";
#endif
    }

    TempFolder folder_;
    ZInstrument instrument_;
};

TEST_F(HostileInstruments, CutAtEveryByte) {
    for (const bool embedded : {true, false}) {
        folder_.write("a.wav", rampWave(32));
        const std::string whole = smallInstrument(embedded, false).bytes();
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            SCOPED_TRACE(length);
            ASSERT_NO_FATAL_FAILURE(loadAndPlay(whole.substr(0, length)));
        }
    }
    expectLittleMemory();
}

// Overwrites one to four places with a bit, a byte, or a number that tends to hurt.
std::string mutated(std::string bytes, std::mt19937& random) {
    static const std::uint32_t numbers[] = {0,           1,           0x7fffffffu, 0x80000000u, 0xffffffffu,
                                            0x7f800000u, 0xff800000u, 0x7fc00001u, 0x00010000u, 0x7f7fffffu};
    const int changes = 1 + static_cast<int>(random() % 4);
    for (int i = 0; i < changes; ++i) {
        const std::size_t place = random() % (bytes.size() - 4);
        switch (random() % 3) {
        case 0:
            bytes[place] = static_cast<char>(bytes[place] ^ (1 << random() % 8));
            break;
        case 1:
            bytes[place] = static_cast<char>(random());
            break;
        default:
            std::memcpy(&bytes[place], &numbers[random() % std::size(numbers)], 4);
        }
    }
    return bytes;
}

TEST_F(HostileInstruments, TenThousandMutations) {
    std::mt19937 random(20240229);
    for (const bool embedded : {true, false}) {
        const std::string inMemory = smallInstrument(embedded, false).bytes();
        const std::string streamed = smallInstrument(embedded, true).bytes();
        for (int i = 0; i < 5000; ++i) {
            SCOPED_TRACE(i);
            const std::string& whole = i % 2 == 0 ? inMemory : streamed;
            folder_.write("a.wav", mutated(rampWave(32), random));
            ASSERT_NO_FATAL_FAILURE(loadAndPlay(mutated(whole, random)));
        }
    }
    expectLittleMemory();
}

TEST_F(HostileInstruments, AllThatASmallFileCanAskFor) {
    for (const bool embedded : {true, false}) {
        auto file = smallInstrument(embedded, true);
        file.settings.streamBufferFramesStored = INT32_MAX;
        file.settings.polyphonyStored = INT32_MAX;
        folder_.write("a.wav", rampWave(32));
        while (file.groups[1].zones.size() < 2000) {
            file.groups[1].zones.push_back(zone("a.wav"));
            ZoneRecord& record = file.groups[1].zones.back().record;
            record.loopMode = 2, record.loopEnd = 30;
            record.startFrame = file.groups[1].zones.size() % 30; // a preload of its own
        }
        ASSERT_NO_FATAL_FAILURE(loadAndPlay(file.bytes()));
        file.imageSize = INT32_MAX;
        ASSERT_NO_FATAL_FAILURE(loadAndPlay(file.bytes()));
    }
    expectLittleMemory();
}

} // namespace
} // namespace zarno
