// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/SoundFontFile.h"

namespace zarno {

/// What sounds when a preset plays one of its samples: a zone of the preset and one of its instrument laid
/// over each other, everything they leave open filled in.
struct SoundFontVoice {
    std::size_t sample = 0;
    std::size_t instrument = 0;
    int lowKey = 0, highKey = 127;
    int lowVelocity = 0, highVelocity = 127;
    std::array<int, generatorCount> amounts{};
    int velocityAmount = 960;  ///< centibels by which the softest velocity is attenuated
    int unknownModulators = 0; ///< others than that from velocity, with an effect

    int operator[](Generator g) const { return amounts[static_cast<std::size_t>(g)]; }
};

/// All voices of a preset, in file order. Throws MakerError when they are more than any instrument has.
std::vector<SoundFontVoice> voicesOf(const SoundFontFile& file, const SoundFontFile::Preset& preset);

} // namespace zarno
