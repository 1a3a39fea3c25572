// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Chance.h"
#include "tests/support/ImportedSound.h"
#include "tests/support/SfzReference.h"
#include "tools/zarno/MakerError.h"

#include <gmock/gmock.h>

namespace zarno {
namespace {

using namespace test;

class SfzReferencePlayer : public testing::Test {
  protected:
    SfzReferencePlayer() {
        folder.write("sine.wav",
                     wave16(60000, [](int i) { return 0.05 * std::sin(2 * std::numbers::pi * i / 100); }));
    }
    // RMS of both sides while a note is held, relative to the recording's, and its pitch.
    SfzReference::Note measure(const std::string& text, int key, int velocity) {
        ImportReport report;
        auto source = readSfz(folder.write("x.sfz", text + " sample=sine.wav"), report);
        source.volume = 0.0;
        SfzReference::Note note{0, 0, 0};
        try {
            ImportedSound playing(source, folder, report);
            playing.noteOn(key, velocity);
            playing.render(500);
            const auto sound = playing.render(12000);
            const auto rms = [](const std::vector<float>& side) {
                return std::sqrt(std::inner_product(side.begin(), side.end(), side.begin(), 0.0) / 12000 *
                                 2) /
                       0.05;
            };
            note = {rms(sound.left), rms(sound.right), 0};
            note.cents = centsBetween(hertzOf(note.left > note.right ? sound.left : sound.right), 441);
        } catch (const MakerError&) { // nothing of it sounds
        }
        return note;
    }
    TempFolder folder;
};

TEST_F(SfzReferencePlayer, RandomRegionsAreAsTheirOpcodesSay) {
    Chance chance(17);
    for (int round = 0; round < 150; ++round) {
        SfzReference region;
        const auto sometimes = [&](const std::string& name, int low, int high) {
            if (chance.oneIn(3)) region.opcodes[name] = chance.between(low, high);
        };
        for (const int number : {20, 21, 74})
            region.controllers[number] = chance.below(128);
        sometimes("volume", -12, 6);
        sometimes("amplitude", 20, 100);
        sometimes("pan", -90, 90);
        sometimes("position", -50, 50);
        sometimes("amp_keytrack", -1, 1);
        sometimes("amp_veltrack", -90, 100);
        sometimes("amp_velcurve_40", 0, 1);
        sometimes("amp_velcurve_90", 0, 1);
        sometimes("tune", -90, 90);
        sometimes("transpose", -12, 12);
        sometimes("pitch_keytrack", 90, 110);
        for (const char* name : {"volume", "pan", "tune"})
            for (const char* number : {"20", "74"}) {
                sometimes(name + std::string("_oncc") + number, -20, 20);
                sometimes(name + std::string("_curvecc") + number, 0, 4);
            }
        sometimes("amplitude_oncc21", 50, 100);
        for (const char* unit : {"vel", "key", "cc74"})
            for (const bool in : {true, false}) {
                if (!chance.oneIn(4)) continue;
                const int low = chance.below(60), high = low + 1 + chance.below(60);
                region.opcodes[std::string(in ? "xfin_lo" : "xfout_lo") + unit] = low;
                region.opcodes[std::string(in ? "xfin_hi" : "xfout_hi") + unit] = high;
            }
        const int key = chance.between(45, 74), velocity = chance.between(1, 127);
        SCOPED_TRACE(region.text() + " key " + std::to_string(key) + " velocity " + std::to_string(velocity));
        const auto wanted = region.play(key, velocity), had = measure(region.text(), key, velocity);
        // A fade that a controller can still move is split in its middle; all others have their level.
        const bool isSplit = region.controllers[74] == 0;
        if (isSplit) continue;
        const auto decibels = [](double gain) { return std::max(-60.0, 20 * std::log10(gain + 1e-9)); };
        EXPECT_NEAR(decibels(had.left), decibels(wanted.left), 0.6);
        EXPECT_NEAR(decibels(had.right), decibels(wanted.right), 0.6);
        if (std::max(wanted.left, wanted.right) < 0.01) continue;
        EXPECT_NEAR(had.cents, wanted.cents, 1.0);
    }
}

} // namespace
} // namespace zarno
