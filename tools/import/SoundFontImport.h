// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"
#include "tools/import/SoundFontFile.h"

namespace zarno {

/// A preset of a SoundFont as an instrument to import. 0 dB is a sample at full scale in the middle; one that
/// is panned to a side is 3 dB louder there, as these files mean it.
ImportedInstrument importPreset(const SoundFontFile& file, const SoundFontFile::Preset& preset,
                                ImportReport& report);

/// "000-012 Marimba": bank, program and name, as a file's name.
std::string fileNameOf(const SoundFontFile::Preset& preset);

/// The preset that the user asks for: "12" (of bank 0), "128:0", or its name. Throws MakerError.
const SoundFontFile::Preset& findPreset(const SoundFontFile& file, const std::string& wanted);

} // namespace zarno
