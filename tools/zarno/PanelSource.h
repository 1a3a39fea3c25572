// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A panel's layout in a form for people: attributes and controls by name, pictures as files.
// docs/panel-source.md describes it. All else is copied letter by letter, so that a layout and its readable
// form turn into each other.
namespace zarno {

struct PanelSource {
    struct Picture {
        std::string file;
        std::vector<std::uint8_t> bytes;
    };
    std::string xml;
    std::vector<Picture> pictures;
};

/// None when the readable form would not turn back into the very same layout.
std::optional<PanelSource> panelSourceOf(std::string_view layout);

/// The bytes of a picture's file; throws MakerError.
using ReadPicture = std::function<std::vector<std::uint8_t>(const std::string& file)>;

/// The layout that the readable form stands for. Throws MakerErrors with lines and columns of `file`.
std::string layoutFromSource(std::string_view xml, const std::string& file, const ReadPicture& readPicture);

/// A picture as layouts hold it: "3.abc+"
std::string pictureToText(const std::vector<std::uint8_t>& bytes);
/// None for a text that pictureToText would not have written.
std::optional<std::vector<std::uint8_t>> pictureFromText(std::string_view text);

} // namespace zarno
