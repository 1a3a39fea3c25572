// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/RawBytes.h"
#include "tests/support/WaveBuilder.h"
#include "tools/import/SoundFontFile.h"

namespace zarno::test {

// A SoundFont of one preset with one instrument, built from lists of generators.
struct SoundFontBuilder {
    using Zone = std::vector<std::pair<Generator, int>>;
    std::vector<Zone> preset = {{{Generator::Instrument, 0}}};
    std::vector<Zone> instrument = {{{Generator::SampleId, 0}}};
    std::vector<std::pair<std::size_t, SoundFontModulator>> modulators; // of the instrument's zones
    struct Sample {
        int points, loopStart, loopEnd, link, type;
    };
    std::vector<Sample> samples = {{1000, 100, 900, 0, 1}};
    bool wide = false;       // 24 bits
    bool compressed = false; // each sample is a sound file
    bool unpadded = false;   // a chunk of odd length without its pad byte

    static std::string chunk(const std::string& id, const std::string& body) {
        return id + raw(static_cast<std::uint32_t>(body.size())) + body + std::string(body.size() & 1, '\0');
    }
    static std::string name(std::string text) {
        text.resize(20);
        return text;
    }
    static std::string word(int value) { return raw(static_cast<std::uint16_t>(value)); }

    std::string lists(const std::vector<Zone>& zones, char kind, bool withModulators) const {
        std::string bags, generators, mods;
        int generator = 0, modulator = 0;
        for (std::size_t i = 0; i <= zones.size(); ++i) {
            bags += word(generator) + word(modulator);
            if (i == zones.size()) break;
            for (const auto& [id, amount] : zones[i]) {
                generators += word(static_cast<int>(id)) + word(amount);
                ++generator;
            }
            for (const auto& [zone, m] : modulators)
                if (withModulators && zone == i) {
                    mods += word(m.source) + word(m.destination) + word(m.amount) + word(m.amountSource) +
                            word(0);
                    ++modulator;
                }
        }
        const std::string p(1, kind);
        return chunk(p + "bag", bags) + chunk(p + "mod", mods + std::string(10, '\0')) +
               chunk(p + "gen", generators + std::string(4, '\0'));
    }

    std::string bytes() const {
        std::string data, headers;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const Sample& s = samples[i];
            std::string points;
            for (int k = 0; k < s.points; ++k)
                points += raw(static_cast<std::int16_t>(1000 * (static_cast<int>(i) + 1) + k % 7));
            if (compressed) points = WaveBuilder().format(1, 44100, 16).data(points).bytes();
            const std::uint32_t unit = compressed ? 1 : 2; // bytes that starts and ends count
            const auto start = static_cast<std::uint32_t>(data.size()) / unit,
                       loops = compressed ? 0u : start;
            data += points;
            headers += name("S" + std::to_string(i)) +
                       raw(start, static_cast<std::uint32_t>(data.size()) / unit,
                           loops + static_cast<std::uint32_t>(s.loopStart),
                           loops + static_cast<std::uint32_t>(s.loopEnd), std::uint32_t{44100}) +
                       std::string("\x3c\x05", 2) + word(s.link) + word(s.type | (compressed ? 16 : 0));
        }
        const std::string low = wide ? chunk("sm24", std::string(data.size() / 2, '\x80')) : "";
        const auto header = [](const char* text, int bag) {
            return name(text) + word(12) + word(3) + word(bag) + std::string(12, '\0');
        };
        const int presetZones = static_cast<int>(preset.size()), zones = static_cast<int>(instrument.size());
        const std::string hydra =
            chunk("phdr", header("Bell", 0) + header("EOP", presetZones)) + lists(preset, 'p', false) +
            chunk("inst", name("Bell") + word(0) + name("EOI") + word(zones)) + lists(instrument, 'i', true) +
            chunk("shdr", headers + std::string(46, '\0'));
        return chunk("RIFF",
                     "sfbk" +
                         chunk("LIST", "INFO" + (unpadded ? "ICRD" + raw(std::uint32_t{3}) + "now" : "") +
                                           chunk("INAM", "Test")) +
                         chunk("LIST", "sdta" + chunk("smpl", data) + low) + chunk("LIST", "pdta" + hydra));
    }
};

} // namespace zarno::test
