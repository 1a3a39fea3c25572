// SPDX-License-Identifier: GPL-3.0-or-later
// The engine renders in segments; what it renders is defined sample by sample. Both play the same random
// instruments with the same random events and must agree in every bit.
// ZARNO_TEST_ROUNDS: how many instruments. ZARNO_TEST_SEED: the first one's seed, printed by a failure.
#include "tests/reference/PlainInstrument.h"
#include "tests/support/RandomInstrument.h"
#include "tests/support/StreamingInstrument.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace zarno {
namespace {

int fromEnvironment(const char* name, int otherwise) {
    const char* text = std::getenv(name);
    return text ? std::atoi(text) : otherwise;
}

class Duel {
  public:
    Duel(std::uint32_t seed, bool sustained, bool streamed)
        : chance_(seed)
        , sustained_(sustained)
        , played_(sustained ? chance_.between(1, 40) : chance_.of({1, 2, 4, 8, 32, 64})) {
        fillAtRandom(played_, chance_, sustained);
        if (streamed) {
            makeStreaming(played_, chance_.of({1, 2, 3, 70, 500, 500, 3000, chance_.between(1, 5000)}));
            played_.engine.alwaysAwaitBuffers(true);
        }
        plain_ = std::make_unique<PlainInstrument>(played_.engine.groups(), played_.engine.settings(),
                                                   played_.clock);
        takeRate();
        applySettings();
        const VoiceKernels* kernels[] = {&sse2Kernels(), &voiceKernels(), &sse2Kernels(), &voiceKernels(),
                                         nullptr};
        played_.engine.useKernels(kernels[seed % 5]);
        played_.engine.seedRandom(seed);
        plain_->seedRandom(seed);
        const std::size_t first = static_cast<std::size_t>(chance_.below(static_cast<int>(groups().size())));
        played_.engine.activateGroup(groups()[first].get());
        plain_->activateGroup(first);
    }

    // False after the first block that differs, which it describes.
    bool play(int frames) {
        while (frames > 0 && !testing::Test::HasFailure()) {
            const int count = sustained_ ? chance_.between(100, 4096)
                                         : chance_.of({1, 2, 3, 64, 127, 128, 129, chance_.between(1, 700)});
            frames -= count;
            changeBetweenBlocks();
            postEvents(count);
            renderBlock(count);
        }
        return !testing::Test::HasFailure();
    }

    int mostVoices = 0;

  private:
    const PlainInstrument::Groups& groups() { return played_.engine.groups(); }

    void post(int type, int channel, int data1, int data2, std::uint32_t offset) {
        played_.engine.postEvent(type, channel, data1, data2, offset);
        plain_->postEvent(type, channel, data1, data2, offset);
    }

    void applySettings() {
        played_.engine.applySettings();
        plain_->applySettings();
    }

    void takeRate() {
        const float rate = chance_.of({44100.0f, 44100.0f, 48000.0f, 22050.0f, 96000.0f, 192000.0f});
        played_.engine.setSampleRate(rate);
        plain_->setSampleRate(rate);
    }

    void changeBetweenBlocks() {
        const int rarely = sustained_ ? 12 : 40;
        if (chance_.oneIn(3 * rarely)) takeRate();
        if (chance_.oneIn(rarely)) {
            InstrumentSettings& settings = played_.engine.settings();
            randomiseSettings(settings, chance_, sustained_);
            plain_->settings() = settings;
            applySettings();
        }
        if (chance_.oneIn(rarely)) {
            const float amount = chance_.real(-1, 1);
            played_.engine.setPitchBend(amount);
            plain_->setPitchBend(amount);
        }
        if (chance_.oneIn(rarely)) {
            ZGroup& group =
                *groups()[static_cast<std::size_t>(chance_.below(static_cast<int>(groups().size())))];
            randomiseEnvelope(group.record, chance_);
            if (!sustained_) randomiseTrigger(group.record, chance_);
            played_.engine.prepareZones(group);
            plain_->prepareZones();
        }
        played_.clock.advance(chance_.of({0.0, 1.0, 10.0, chance_.oneIn(30) ? 100000.0 : 5.0}));
    }

    void postEvents(int blockSize) {
        const int most = sustained_ ? 10 : chance_.of({0, 1, 4, 30});
        std::uint32_t offset = 0;
        for (int n = chance_.between(0, most); n > 0; --n) {
            if (!chance_.oneIn(3)) offset = static_cast<std::uint32_t>(chance_.below(blockSize));
            if (chance_.oneIn(40)) offset = chance_.of({immediateOffset, 5000u});
            postRandomEvent(offset);
        }
    }

    void postRandomEvent(std::uint32_t offset) {
        const int channel = chance_.oneIn(3) ? chance_.below(16) : 0;
        const int key = chance_.oneIn(3) ? lastKey_ : chance_.between(36, 84);
        const int value = chance_.of({0, 127, chance_.below(128), chance_.below(128)});
        const int dice = chance_.below(100);
        if (dice < (sustained_ ? 55 : 45)) {
            lastKey_ = key;
            post(midi::noteOn, channel, key, value, offset);
        } else if (dice < (sustained_ ? 65 : 70)) {
            post(midi::noteOff, channel, key, value, offset);
        } else if (dice < 78) {
            post(midi::pitchBend, channel, chance_.below(128), chance_.of({64, value}), offset);
        } else if (dice < 95) {
            post(midi::controller, channel, randomController(), value, offset);
        } else {
            post(chance_.of({0xA0, 0xA0, 0xC0, 0xD0, 0xF0}), channel, chance_.below(4), value, offset);
        }
    }

    int randomController() {
        if (chance_.oneIn(2)) return chance_.of({1, 1, 64});
        if (chance_.oneIn(sustained_ ? 60 : 10)) return chance_.of({68, 91, 120, 121, 123, 126, 127});
        return chance_.of({1, 2, 5, 6, 7, 8, 10, 11, 74});
    }

    void renderBlock(int count) {
        const auto size = static_cast<std::size_t>(count);
        std::vector<float> got[2], wanted[2];
        for (auto* side : {got, wanted})
            for (int i = 0; i < 2; ++i)
                side[i].assign(size, 9.0f);
        float* outputs[2] = {got[0].data(), got[1].data()};
        played_.engine.renderBlock(outputs, 2, count);
        plain_->renderBlock(wanted[0].data(), wanted[1].data(), count);
        mostVoices = std::max(mostVoices, plain_->playingVoices());
        for (int side = 0; side < 2; ++side)
            if (std::memcmp(got[side].data(), wanted[side].data(), size * sizeof(float)) != 0)
                describe(got[side], wanted[side], side);
        EXPECT_EQ(played_.engine.playingVoices(), plain_->playingVoices()) << "block " << block_;
        ++block_;
    }

    void describe(const std::vector<float>& got, const std::vector<float>& wanted, int side) {
        std::size_t s = 0;
        while (std::memcmp(&got[s], &wanted[s], sizeof(float)) == 0)
            ++s;
        ADD_FAILURE() << "block " << block_ << " of " << got.size() << " frames, side " << side << ", sample "
                      << s << ": " << std::hexfloat << got[s] << ", plainly " << wanted[s]
                      << std::defaultfloat << " (" << got[s] << ", " << wanted[s] << "), "
                      << plain_->playingVoices() << " voices";
    }

    Chance chance_;
    bool sustained_;
    TestInstrument played_;
    std::unique_ptr<PlainInstrument> plain_;
    int block_ = 0, lastKey_ = 60;
};

void duels(bool sustained, int rounds, int frames, bool streamed = false) {
    const auto first = static_cast<std::uint32_t>(fromEnvironment("ZARNO_TEST_SEED", 1));
    rounds = fromEnvironment("ZARNO_TEST_ROUNDS", rounds);
    int mostVoices = 0;
    for (std::uint32_t seed = first; seed < first + static_cast<std::uint32_t>(rounds); ++seed) {
        Duel duel(seed, sustained, streamed);
        ASSERT_TRUE(duel.play(frames)) << "ZARNO_TEST_SEED=" << seed << " ZARNO_TEST_ROUNDS=1";
        mostVoices = std::max(mostVoices, duel.mostVoices);
    }
    testing::Test::RecordProperty("most voices at once", mostVoices);
}

TEST(SegmentsEqualSamples, WhateverIsPlayed) {
    duels(false, 400, 6000);
}

TEST(SegmentsEqualSamples, ManyHeldVoicesUnderSlowChanges) {
    duels(true, 100, 40000);
}

// Against buffers that are filled at once.
TEST(SegmentsEqualSamples, WhateverIsStreamed) {
    duels(false, 120, 6000, true);
}

TEST(SegmentsEqualSamples, ManyHeldVoicesStreamed) {
    duels(true, 20, 30000, true);
}

} // namespace
} // namespace zarno
