// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportedInstrument.h"
#include "tools/import/SoundFontVoices.h"

namespace zarno {

/// What a voice does while its key is held and the engine has nothing for.
ImportedShaping soundFontShaping(const SoundFontVoice& voice);

/// The engine's part of the level: `level` is the rest of it, which is in the recording.
ImportedEnvelope soundFontEnvelope(const SoundFontVoice& voice, const ImportedLevel& level);

/// Of the filter, in dB.
double soundFontResonance(const SoundFontVoice& voice);

} // namespace zarno
