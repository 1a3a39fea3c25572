// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace zarno {
namespace {

unsigned char byteAt(std::string_view text, std::size_t i) {
    return static_cast<unsigned char>(text[i]);
}

// Length of the well-formed sequence at the front of `text`, 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto lead = byteAt(text, 0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;

    std::uint32_t codePoint = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(text, i) & 0xC0) != 0x80) return 0;
        codePoint = codePoint << 6 | (byteAt(text, i) & 0x3Fu);
    }
    const bool overlong = (length == 3 && codePoint < 0x800) || (length == 4 && codePoint < 0x10000);
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return overlong || surrogate || codePoint > 0x10FFFF ? 0 : length;
}

} // namespace

bool isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto length = sequenceLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string utf8FromLatin1(std::string_view text) {
    std::string utf8;
    utf8.reserve(text.size() * 2);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0 | byte >> 6);
            utf8 += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return utf8;
}

std::string latin1FromUtf8(std::string_view text) {
    std::string latin1;
    if (!isValidUtf8(text)) return latin1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = byteAt(text, i);
        if (byte > 0xC3) return {};
        latin1 += static_cast<char>(byte < 0x80 ? byte : (byte & 0x03) << 6 | (byteAt(text, ++i) & 0x3F));
    }
    return latin1;
}

std::string withFoldedCase(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = byteAt(text, i);
        const bool afterC3 = i > 0 && byteAt(text, i - 1) == 0xC3;
        if (byte >= 'A' && byte <= 'Z') text[i] = static_cast<char>(byte + 32);
        if (afterC3 && byte >= 0x80 && byte <= 0x9E && byte != 0x97) text[i] = static_cast<char>(byte + 0x20);
    }
    return text;
}

} // namespace zarno
