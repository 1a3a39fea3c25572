// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Limits.h"
#include "gui/LayoutReader.h"

#include <vector>

namespace zarno {

// The images that a layout declares, decoded when they are asked for.
class ImageShelf {
  public:
    explicit ImageShelf(std::vector<LayoutImage> images);

    // The first in document order that has the number and can be decoded; a null image when there is none.
    // All images of a shelf together have at most limits::imagePixels: those beyond count as undecodable.
    juce::Image find(int number);

  private:
    struct Entry {
        LayoutImage source;
        juce::Image image;
        bool isTried = false;
    };
    std::vector<Entry> entries_;
    std::size_t pixelsLeft_ = limits::imagePixels;
};

} // namespace zarno
