// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/Importer.h"

#include <optional>
#include <string>

namespace zarno {

struct SoundFontFile;

/// One preset, the one that is named or the file's first, as `options.out`; chords need head-room, so the
/// instrument is 10 dB down. Throws MakerError.
void importSoundFont(const SoundFontFile& file, const std::optional<std::string>& preset,
                     ImportOptions options, ImportReport& report);

/// All presets as instruments in the folder `options.out`, which is made when it is not there. Presets that
/// play nothing are left out, and reported. Throws MakerError.
void importAllPresets(const SoundFontFile& file, const ImportOptions& options, ImportReport& report);

/// A line for each preset: bank, program, name.
std::string listPresets(const SoundFontFile& file);

} // namespace zarno
