// SPDX-License-Identifier: GPL-3.0-or-later
// An encoded picture, as an instrument or a layout carries it.
#include "gui/ImageDecoder.h"
#include "tests/fuzz/run/Target.h"

namespace zarno::fuzz {
namespace {

constexpr int mostPixels = 1 << 18;

void run(std::string_view input) {
    const juce::Image image = decodeImage(input.data(), input.size(), mostPixels);
    require(image.getWidth() * image.getHeight() <= mostPixels, "no larger than allowed");
}

std::string encoded(juce::ImageFileFormat&& format, juce::Image::PixelFormat pixels) {
    juce::Image image(pixels, 21, 13, true);
    image.clear({2, 2, 9, 9}, juce::Colours::orange.withAlpha(0.5f));
    juce::MemoryOutputStream out;
    format.writeImageToStream(image, out);
    return {static_cast<const char*>(out.getData()), out.getDataSize()};
}

std::vector<std::string> seeds() {
    const std::string gif(
        "GIF89a\3\0\2\0\x81\0\0\xff\0\0\0\xff\0\0\0\xff\x09\x09\x09!\xF9\4\1\0\0\2\0,\0\0\0\0\3\0\2\0\0"
        "\2\5\x04\x0A\x12\xA8\x00\0;",
        52);
    return {encoded(juce::PNGImageFormat(), juce::Image::ARGB),
            encoded(juce::PNGImageFormat(), juce::Image::RGB),
            encoded(juce::JPEGImageFormat(), juce::Image::RGB), gif};
}

const Registered registered({"images",
                             20000,
                             run,
                             seeds,
                             {"IHDR", "PLTE", "IDAT", "IEND", "tRNS", "\xFF\xD8\xFF", "\xFF\xC0", "\xFF\xC4",
                              "\xFF\xDA", "GIF87a", "!", ","}});

} // namespace
} // namespace zarno::fuzz
