// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/SoundFileReader.h"

namespace zarno {

/// Adds what a RIFF wave file's "inst" chunk says: ranges, gain, and key and tuning unless `info` has a key
/// already. Files of other kinds say nothing.
void readInstChunk(const std::string& path, SoundFileInfo& info);

} // namespace zarno
