// SPDX-License-Identifier: GPL-3.0-or-later
// Sound files that are no plain waves, packed into instruments.
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"
#include "tools/import/DecodedSound.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/ModelJson.h"

#include <gtest/gtest.h>
#include <sndfile.h>

namespace zarno {
namespace {

using namespace test;

constexpr int frames = 40000;

// The value of a frame, exact in 16 bits.
float valueAt(int frame, int channel) {
    return static_cast<float>((frame * 7 + channel * 1000) % 65536 - 32768) / 32768.0f;
}

void writeSound(const std::string& path, int format, int channels) {
    SF_INFO info = {};
    info.samplerate = 48000, info.channels = channels, info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << path;
    std::vector<int> values; // of 32 bits, which every format scales exactly
    for (int frame = 0; frame < frames; ++frame)
        for (int channel = 0; channel < channels; ++channel)
            values.push_back(static_cast<int>(valueAt(frame, channel) * 2147483648.0));
    std::vector<float> floats; // ints are not scaled to floats by default
    for (const int value : values)
        floats.push_back(static_cast<float>(value) / 2147483648.0f);
    const bool isFloat = (format & SF_FORMAT_SUBMASK) == SF_FORMAT_FLOAT;
    EXPECT_EQ(isFloat ? sf_writef_float(file, floats.data(), frames) : sf_writef_int(file, values.data(), frames),
              frames);
    sf_close(file);
}

TEST(PackedSounds, EveryKindOfRecordingPlaysAsItWasRecorded) {
    const TempFolder folder;
    const struct {
        const char* name;
        int format, channels;
        const char* packed; // of external storage
    } sounds[] = {
        {"plain.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2, "plain.wav"},
        {"ext24.wav", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 2, "ext24.pcm.wav"},
        {"ext16.WAV", SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, 1, "ext16.pcm.wav"},
        {"float.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1, "float.pcm.wav"},
        {"six.wav", SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, 6, "six.pcm.wav"},
        {"a.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 2, "a.aiff.wav"},
        {"b.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1, "b.flac.wav"},
    };
    Json zones = Json::array();
    std::filesystem::create_directories(folder / "in");
    for (const auto& sound : sounds) {
        writeSound(folder / "in/" + sound.name, sound.format, sound.channels);
        zones.push_back({{"sample", sound.name}});
    }
    folder.write("in/instrument.json", Json({{"format", "zarno-instrument"},
                                             {"settings", {{"streaming", 0}}},
                                             {"groups", {{{"zones", zones}}}}})
                                           .dump());
    for (const bool embed : {false, true}) {
        PackNotes notes;
        const Model model =
            readInstrumentFolder(folder / "in", {.embed = embed, .decode = openDecoded}, notes);
        writeInstrumentFile(model, folder / "in/out.zse");
        EXPECT_TRUE(notes.missing.empty());
        EXPECT_EQ(notes.remarks.size(), embed ? 4u : 7u) << "more than 16 bits, and each that was converted";
        ZInstrument instrument;
        ASSERT_TRUE(loadInstrument(instrument, folder / "in/out.zse"));
        const auto& loaded = instrument.groups().at(0)->zones();
        ASSERT_EQ(loaded.size(), std::size(sounds));
        for (std::size_t i = 0; i < loaded.size(); ++i) {
            SCOPED_TRACE(sounds[i].name);
            EXPECT_EQ(model.file.groups[0].zones[i].sample.text(), embed ? sounds[i].name : sounds[i].packed);
            const SampleMemory& memory = *loaded[i]->memory;
            EXPECT_EQ(loaded[i]->fileSampleRate, 48000.0);
            ASSERT_EQ(memory.frames(), static_cast<std::uint64_t>(frames));
            ASSERT_EQ(memory.channels(), std::min(sounds[i].channels, 2));
            int wrong = 0;
            for (int frame = 0; frame < frames; ++frame)
                for (int channel = 0; channel < memory.channels(); ++channel)
                    wrong += memory.floats()[frame * memory.channels() + channel] != valueAt(frame, channel);
            EXPECT_EQ(wrong, 0);
        }
    }
}

} // namespace
} // namespace zarno
