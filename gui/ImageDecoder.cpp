// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/ImageDecoder.h"

#include "gui/GifDecoder.h"

#include <png.h>
#include <turbojpeg.h>

#include <cstdint>
#include <memory>

namespace zarno {
namespace {

struct Source {
    const std::uint8_t* data;
    std::size_t size;
    std::size_t maxPixels;

    bool beginsWith(std::initializer_list<int> bytes) const {
        std::size_t i = 0;
        for (const int byte : bytes)
            if (i >= size || data[i++] != byte) return false;
        return true;
    }
    bool allows(std::int64_t width, std::int64_t height) const {
        return width > 0 && height > 0 && width <= limits::imageSide && height <= limits::imageSide &&
               static_cast<std::size_t>(width * height) <= maxPixels;
    }
};

juce::Image makeImage(juce::Image::PixelFormat format, int width, int height) {
    return juce::Image(format, width, height, true, juce::SoftwareImageType());
}

void premultiply(juce::Image::BitmapData& pixels) {
    for (int y = 0; y < pixels.height; ++y) {
        auto* pixel = reinterpret_cast<juce::PixelARGB*>(pixels.getLinePointer(y));
        for (int x = 0; x < pixels.width; ++x)
            pixel[x].premultiply();
    }
}

juce::Image decodePng(const Source& source) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    const std::unique_ptr<png_image, void (*)(png_image*)> freed(&png, png_image_free);
    if (png_image_begin_read_from_memory(&png, source.data, source.size) == 0) return {};
    if (!source.allows(png.width, png.height)) return {};
    png.format = PNG_FORMAT_BGRA; // the framework's order in memory
    auto image = makeImage(juce::Image::ARGB, static_cast<int>(png.width), static_cast<int>(png.height));
    juce::Image::BitmapData pixels(image, juce::Image::BitmapData::readWrite);
    if (png_image_finish_read(&png, nullptr, pixels.data, pixels.lineStride, nullptr) == 0) return {};
    premultiply(pixels);
    return image;
}

juce::Image decodeJpeg(const Source& source) {
    const std::unique_ptr<void, int (*)(tjhandle)> decoder(tjInitDecompress(), tjDestroy);
    int width = 0, height = 0, subsampling = 0, colours = 0;
    if (decoder == nullptr || tjDecompressHeader3(decoder.get(), source.data, source.size, &width, &height,
                                                  &subsampling, &colours) != 0)
        return {};
    if (!source.allows(width, height)) return {};
    auto image = makeImage(juce::Image::RGB, width, height);
    juce::Image::BitmapData pixels(image, juce::Image::BitmapData::writeOnly);
    const int result = tjDecompress2(decoder.get(), source.data, source.size, pixels.data, width,
                                     pixels.lineStride, height, TJPF_BGR, TJFLAG_LIMITSCANS);
    // A picture cut off at its end is shown as far as it goes.
    return result == 0 || tjGetErrorCode(decoder.get()) == TJERR_WARNING ? image : juce::Image();
}

juce::Image decodeGif(const Source& source) {
    const auto gif = readGifHeader(source.data, source.size);
    if (!gif || !source.allows(gif->width, gif->height)) return {};
    auto image = makeImage(juce::Image::ARGB, gif->width, gif->height);
    juce::Image::BitmapData pixels(image, juce::Image::BitmapData::readWrite);
    decodeGifPixels(*gif, [&pixels](int x, int y, const GifColour& colour) {
        reinterpret_cast<juce::PixelARGB*>(pixels.getPixelPointer(x, y))
            ->setARGB(255, colour[0], colour[1], colour[2]);
    });
    return image;
}

} // namespace

juce::Image decodeImage(const void* data, std::size_t size, std::size_t maxPixels) {
    const Source source{static_cast<const std::uint8_t*>(data), size, maxPixels};
    if (source.beginsWith({0x89, 'P', 'N', 'G'})) return decodePng(source);
    if (source.beginsWith({0xFF, 0xD8, 0xFF})) return decodeJpeg(source);
    if (source.beginsWith({'G', 'I', 'F', '8'})) return decodeGif(source);
    return {};
}

} // namespace zarno
