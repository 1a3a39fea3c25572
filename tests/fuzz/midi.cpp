// SPDX-License-Identifier: GPL-3.0-or-later
// Any events into any instrument: four bytes choose the instrument, each five after them are an event. The
// fast inner loops must give the same bits as the plain ones.
#include "tests/fuzz/run/Target.h"
#include "tests/support/RandomInstrument.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace zarno::fuzz {
namespace {

constexpr std::uint32_t instruments = 32;

// Made once: noise takes longer to make than to play.
const TestInstrument& prototype(std::uint32_t seed) {
    static std::unique_ptr<TestInstrument> made[instruments];
    if (!made[seed]) {
        made[seed] = std::make_unique<TestInstrument>(1);
        Chance chance(seed);
        fillAtRandom(*made[seed], chance, false);
    }
    return *made[seed];
}

struct Player {
    TestInstrument instrument{8};

    Player(std::uint32_t seed, const VoiceKernels* kernels) {
        const ZInstrument& from = prototype(seed).engine;
        const int polyphony = instrument.engine.settings().polyphony;
        copySettings(instrument.engine.settings(), from.settings());
        instrument.engine.settings().polyphony = polyphony;
        for (const auto& group : from.groups()) {
            ZGroup& made = instrument.addGroup(group->record);
            for (const auto& zone : group->zones())
                instrument.addZone(made, {zone->memory, zone->fileSampleRate}, zone->record);
            instrument.engine.activateGroup(&made);
        }
        instrument.engine.applySettings();
        instrument.engine.seedRandom(seed);
        instrument.engine.useKernels(kernels);
    }

    // Kind and channel, two data bytes, offset, and the frames to render behind it.
    void take(std::string_view event) {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(event[i]); };
        const std::uint32_t offset = byte(3) == 255 ? immediateOffset : byte(3);
        instrument.engine.postEvent(byte(0) & 0xF0, byte(0) & 0x0F, byte(1), byte(2), offset);
    }
};

bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

void run(std::string_view input) {
    std::uint32_t seed = 0;
    if (input.size() < 4) return;
    std::memcpy(&seed, input.data(), 4);
    Player fast(seed % instruments, &voiceKernels()), plain(seed % instruments, nullptr);
    input = input.substr(4, 5 * 200);
    for (; input.size() >= 5; input.remove_prefix(5)) {
        for (Player* player : {&fast, &plain})
            player->take(input);
        if (const int frames = static_cast<unsigned char>(input[4])) {
            const Stereo got = fast.instrument.render(frames), wanted = plain.instrument.render(frames);
            require(std::ranges::all_of(got.left, [](float x) { return x >= -1 && x <= 1; }),
                    "a sound comes out");
            require(sameBits(got.left, wanted.left) && sameBits(got.right, wanted.right),
                    "the same bits from both");
        }
    }
    fast.instrument.render(1); // events that still wait begin now
    fast.instrument.engine.requestStop();
    fast.instrument.render(1);
    require(fast.instrument.engine.playingVoices() == 0, "everything can be stopped");
}

std::vector<std::string> seeds() {
    std::vector<std::string> all;
    for (char instrument = 1; instrument < 12; ++instrument) {
        std::string bytes{instrument, 0, 0, 0};
        for (const char* event :
             {"\x90\x3c\x64\x01\x40", "\xB0\x01\x7f\x02\x7f", "\x90\x40\x7f\x05\xff", "\xB0\x40\x7f\x09\x20",
              "\x80\x3c\x40\x7f\x81", "\xE0\x01\x7f\xff\x05", "\xA0\x40\x50\x05\x33", "\xC0\x01\x01\x01\x80"})
            bytes.append(event, 5);
        all.push_back(bytes);
    }
    return all;
}

const Registered
    registered({"midi", 100, run, seeds, {"\x90", "\x80", "\xB0\x40", "\xB0\x7b", "\xE0", "\xff"}});

} // namespace
} // namespace zarno::fuzz
