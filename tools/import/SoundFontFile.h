// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zarno {

/// The generators of SoundFont 2.04, section 8.1.2, that this importer knows by name.
enum class Generator : std::uint16_t {
    StartOffset = 0,
    EndOffset = 1,
    LoopStartOffset = 2,
    LoopEndOffset = 3,
    StartCoarseOffset = 4,
    ModLfoToPitch = 5,
    VibLfoToPitch = 6,
    ModEnvToPitch = 7,
    FilterCutoff = 8,
    FilterResonance = 9,
    ModLfoToFilter = 10,
    ModEnvToFilter = 11,
    EndCoarseOffset = 12,
    ModLfoToVolume = 13,
    ChorusSend = 15,
    ReverbSend = 16,
    Pan = 17,
    ModLfoDelay = 21,
    ModLfoRate = 22,
    VibLfoDelay = 23,
    VibLfoRate = 24,
    ModEnvDelay = 25,
    ModEnvAttack = 26,
    ModEnvHold = 27,
    ModEnvDecay = 28,
    ModEnvSustain = 29,
    KeyToModEnvHold = 31,
    KeyToModEnvDecay = 32,
    VolEnvDelay = 33,
    VolEnvAttack = 34,
    VolEnvHold = 35,
    VolEnvDecay = 36,
    VolEnvSustain = 37,
    VolEnvRelease = 38,
    KeyToVolEnvHold = 39,
    KeyToVolEnvDecay = 40,
    Instrument = 41,
    KeyRange = 43,
    VelocityRange = 44,
    LoopStartCoarseOffset = 45,
    FixedKey = 46,
    FixedVelocity = 47,
    Attenuation = 48,
    LoopEndCoarseOffset = 50,
    CoarseTune = 51,
    FineTune = 52,
    SampleId = 53,
    SampleModes = 54,
    ScaleTuning = 56,
    ExclusiveClass = 57,
    RootKey = 58,
};
inline constexpr std::size_t generatorCount = 61;

/// A modulator: where a value comes from, what it changes, and by how much.
struct SoundFontModulator {
    std::uint16_t source = 0;
    std::uint16_t destination = 0; ///< a generator
    std::int16_t amount = 0;
    std::uint16_t amountSource = 0;
    std::uint16_t transform = 0;
};

/// What one zone of an instrument or a preset says, and what it leaves open.
struct GeneratorSet {
    std::array<std::int16_t, generatorCount> amounts{};
    std::bitset<generatorCount> given;
    std::vector<SoundFontModulator> modulators;

    bool has(Generator g) const { return given[static_cast<std::size_t>(g)]; }
    std::int16_t operator[](Generator g) const { return amounts[static_cast<std::size_t>(g)]; }
    /// The two bytes of a range generator as low and high; everything where there is none.
    std::pair<int, int> range(Generator g) const;
};

struct SoundFontSample {
    enum Type : std::uint16_t { Mono = 1, Right = 2, Left = 4, Compressed = 16 };

    std::string name;
    std::uint32_t start = 0, end = 0; ///< points of the file's sample data; start <= end <= its length
    std::uint32_t loopStart = 0, loopEnd = 0; ///< as stored
    std::uint32_t rate = 0;                   ///< Hz
    std::uint8_t rootKey = 60;
    std::int8_t correction = 0; ///< cents
    std::uint16_t link = 0;     ///< index of the other side of a stereo pair
    std::uint16_t type = Mono;  ///< without Compressed
    /// Of a compressed sample: where its bytes lie in the file. `start` is 0 then, and `end` its length.
    std::uint64_t bytesPosition = 0, bytes = 0;

    bool isCompressed() const { return bytes > 0; }
};

/// A SoundFont file's structure. Everything in it has been checked: indices point at what is there, and
/// samples lie within the sample data, whatever the file says.
struct SoundFontFile {
    struct Instrument {
        std::string name;
        std::vector<GeneratorSet> zones; ///< the first one is for all when it has no sample
    };
    struct Preset {
        std::string name;
        int program = 0;
        int bank = 0;
        std::vector<GeneratorSet> zones; ///< the first one is for all when it has no instrument
    };

    std::string path;
    std::string name;
    std::uint64_t dataPosition =
        0; ///< of the sample data in the file: 16-bit points, one channel after the other
    std::uint32_t dataPoints = 0;
    std::uint64_t lowBytesPosition = 0; ///< of the points' bits 17 to 24, a byte each; 0 when there are none
    std::vector<SoundFontSample> samples;
    std::vector<Instrument> instruments;
    std::vector<Preset> presets; ///< by bank and program

    /// Reads the structure, without the sample data. Throws MakerError with the place of what is wrong.
    static SoundFontFile read(const std::string& path);
};

} // namespace zarno
