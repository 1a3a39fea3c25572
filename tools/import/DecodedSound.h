// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sound/ZSoundFile.h"

#include <memory>
#include <string>

namespace zarno {

/// Opens any file that libsndfile reads as a source of frames, the first two channels of more. Null when it
/// cannot.
std::unique_ptr<ZSoundFile> openDecoded(const std::string& path);

} // namespace zarno
