// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

namespace zarno {

/// Between UTF-8 text, which all our interfaces take, and the standard library's paths.
inline std::filesystem::path filePath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}
inline std::string utf8Text(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

/// From the root on. An instrument's samples are found only from there.
inline std::string absolutePath(const std::string& utf8) {
    return utf8Text(std::filesystem::absolute(filePath(utf8)).lexically_normal());
}

} // namespace zarno
