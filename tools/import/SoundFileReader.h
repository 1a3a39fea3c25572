// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportedInstrument.h"

#include <optional>
#include <string>

namespace zarno {

/// What a sound file says about itself: its format, and what its "smpl" and "inst" chunks (or the like in
/// other formats) say about how to play it.
struct SoundFileInfo {
    SoundFormat format;
    std::optional<int> rootKey;
    double tune = 0.0;                             ///< cents by which playing must be raised to be in tune
    std::optional<ImportedRange> keys, velocities; ///< only when they say more than "all"
    double gain = 0.0;                             ///< dB
    bool hasLoop = false;
    std::uint64_t loopStart = 0, loopEnd = 0; ///< end exclusive
};

/// Opens any file that libsndfile reads. None when there is no such file or it is of another kind; `why` then
/// says which.
std::optional<SoundFileInfo> readSoundFileInfo(const std::string& path, std::string& why);

/// A sample that is a file on disk. It is opened when it is read, and closed behind that.
ImportedSample soundFileSample(const std::string& path, const std::string& name, const SoundFormat& format);

} // namespace zarno
