// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/FrameReader.h"
#include "tools/import/SoundFontFile.h"

#include <memory>
#include <optional>

namespace zarno {

/// Reads a sample, or the two sides of a stereo pair as one. Throws MakerError when the file does not open.
std::unique_ptr<FrameReader> openFrames(const SoundFontFile& file, std::size_t left,
                                        std::optional<std::size_t> right);

} // namespace zarno
