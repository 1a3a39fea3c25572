// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <cmath>

namespace zarno {

// How much two pictures differ where they differ most: the largest difference of a colour's mean (0..255)
// over any square of 24 pixels. Letters that another library draws a little otherwise differ by little; a
// control that is missing, moved, or of another colour by much.
inline double pictureDistance(const juce::Image& a, const juce::Image& b) {
    constexpr int side = 24, step = 8;
    const int width = std::min(a.getWidth(), b.getWidth()), height = std::min(a.getHeight(), b.getHeight());
    const juce::Image::BitmapData left(a, juce::Image::BitmapData::readOnly),
        right(b, juce::Image::BitmapData::readOnly);
    double most = 0.0;
    for (int top = 0; top + side <= height; top += step)
        for (int x0 = 0; x0 + side <= width; x0 += step) {
            int red = 0, green = 0, blue = 0;
            for (int y = top; y < top + side; ++y)
                for (int x = x0; x < x0 + side; ++x) {
                    const auto one = left.getPixelColour(x, y), other = right.getPixelColour(x, y);
                    red += one.getRed() - other.getRed();
                    green += one.getGreen() - other.getGreen();
                    blue += one.getBlue() - other.getBlue();
                }
            for (const int sum : {red, green, blue})
                most = std::max(most, std::abs(sum) / static_cast<double>(side * side));
        }
    return most;
}

} // namespace zarno
