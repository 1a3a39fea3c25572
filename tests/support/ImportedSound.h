// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/InstrumentLoader.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestInstrument.h"
#include "tests/support/WaveBuilder.h"
#include "tools/import/Importer.h"
#include "tools/import/Readers.h"

#include <cmath>
#include <numbers>
#include <numeric>
#include <sstream>

namespace zarno::test {

inline std::string wave16(int frames, const std::function<double(int)>& value, int rate = 44100) {
    std::string data;
    for (int i = 0; i < frames; ++i)
        data += raw(static_cast<std::int16_t>(std::lround(value(i) * 32768)));
    return WaveBuilder().format(1, rate, 16).data(data).bytes();
}

inline std::string levelWave(double level, int frames = 44100) {
    return wave16(frames, [level](int) { return level; });
}

// `period` frames a cycle.
inline std::string sineWave(double period, int frames) {
    return wave16(frames, [period](int i) { return 0.5 * std::sin(2 * std::numbers::pi * i / period); });
}

// An instrument that was imported, loaded and is ready to play.
class ImportedSound : public TestInstrument {
  public:
    ImportedSound(const ImportedInstrument& source, const TempFolder& folder, ImportReport& report,
                  ImportOptions options = {}) {
        options.out = folder / "out.zse";
        importInstrument(source, options, report);
        EXPECT_TRUE(loadInstrument(engine, options.out));
        engine.setOffline(true);
        engine.seedRandom(1);
    }
    // Plays a line of notes and gives the level 20 to 40 ms behind each of them (left channel): "60" is
    // struck and let go, "60v20" with that velocity; "60+" is only struck, "60-" let go; "cc1=5" and
    // "wait500" (ms) give none.
    std::vector<float> play(const std::string& script) {
        std::vector<float> levels;
        std::istringstream words(script);
        for (std::string word; words >> word;) {
            int a = 0, b = 100;
            if (std::sscanf(word.c_str(), "cc%d=%d", &a, &b) == 2) {
                controller(a, b);
                render(64);
                continue;
            }
            if (std::sscanf(word.c_str(), "wait%d", &a) == 1) {
                render(a * 441 / 10);
                continue;
            }
            std::sscanf(word.c_str(), "%dv%d", &a, &b);
            if (word.back() == '-')
                noteOff(a);
            else
                noteOn(a, b);
            levels.push_back(level());
            if (word.back() == '+' || word.back() == '-') continue;
            noteOff(a);
            render(2205);
        }
        return levels;
    }

    float level() {
        render(882);
        const auto left = render(882).left;
        return std::accumulate(left.begin(), left.end(), 0.0f) / static_cast<float>(left.size());
    }
};

// Cycles a second, from the zero crossings of a steady sound.
inline double hertzOf(const std::vector<float>& sound, double rate = 44100.0) {
    double first = -1, last = -1;
    int cycles = -1;
    for (std::size_t i = 1; i < sound.size(); ++i) {
        if (!(sound[i - 1] < 0 && sound[i] >= 0)) continue;
        last = static_cast<double>(i) - sound[i] / (sound[i] - sound[i - 1]);
        if (first < 0) first = last;
        ++cycles;
    }
    return cycles < 1 ? 0.0 : cycles * rate / (last - first);
}

inline double centsBetween(double hertz, double reference) {
    return 1200 * std::log2(hertz / reference);
}

} // namespace zarno::test
