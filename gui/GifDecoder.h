// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace zarno {

using GifColour = std::array<std::uint8_t, 3>; // red, green, blue

// The first picture of a GIF file, before its pixels are decoded. Views the caller's bytes.
struct GifPicture {
    int width = 0, height = 0; // of the picture, 1..65535
    bool interlaced = false;
    int transparent = -1; // index of the colour that is not drawn
    std::vector<GifColour> palette;
    const std::uint8_t* data = nullptr; // from the code size on
    std::size_t size = 0;
};

// Empty when the bytes are no GIF with a picture in it.
std::optional<GifPicture> readGifHeader(const std::uint8_t* data, std::size_t size);

// Calls plot for every pixel that is not transparent, as far as the data goes; damaged data ends it.
void decodeGifPixels(const GifPicture& picture,
                     const std::function<void(int x, int y, const GifColour&)>& plot);

} // namespace zarno
