// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/ImageShelf.h"

#include "gui/ImageDecoder.h"

namespace zarno {

ImageShelf::ImageShelf(std::vector<LayoutImage> images) {
    for (auto& image : images)
        entries_.push_back({std::move(image), {}, false});
}

juce::Image ImageShelf::find(int number) {
    for (auto& entry : entries_) {
        if (entry.source.number != number) continue;
        if (!entry.isTried) {
            entry.isTried = true;
            entry.image = decodeImage(entry.source.data.getData(), entry.source.data.getSize(), pixelsLeft_);
            pixelsLeft_ -= static_cast<std::size_t>(entry.image.getWidth()) *
                           static_cast<std::size_t>(entry.image.getHeight());
        }
        if (entry.image.isValid()) return entry.image;
    }
    return {};
}

} // namespace zarno
