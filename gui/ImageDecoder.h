// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Limits.h"

#include <juce_graphics/juce_graphics.h>

#include <cstddef>

namespace zarno {

// Decodes a PNG, JPEG or GIF (its first picture), recognised by its first bytes. Null for anything else, for
// damaged data and for pictures with a side beyond limits::imageSide or more than maxPixels in all: sizes are
// looked at before any memory is taken. The framework's own decoders are not used: damaged data crashes them.
// Any thread.
juce::Image decodeImage(const void* data, std::size_t size, std::size_t maxPixels = limits::imagePixels);

} // namespace zarno
