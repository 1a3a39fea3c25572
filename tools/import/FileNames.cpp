// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/FileNames.h"

#include "tools/import/LowerCase.h"

namespace zarno {
namespace {

constexpr std::size_t longest = 80; // bytes

std::string harmless(std::string_view wish) {
    std::string name(wish.substr(0, longest));
    for (char& c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte > 0x7e || std::string_view("<>:\"/\\|?*").find(c) != std::string_view::npos)
            c = '_';
    }
    while (!name.empty() && (name.back() == '.' || name.back() == ' '))
        name.pop_back();
    while (!name.empty() && name.front() == ' ')
        name.erase(0, 1);
    return name.empty() ? "sample" : name;
}

} // namespace

std::string FileNames::make(std::string_view wish) {
    const std::string name = harmless(wish);
    std::string unique = name;
    for (int number = 2; !used_.insert(lowerCase(unique)).second; ++number)
        unique = name + '-' + std::to_string(number);
    return unique;
}

} // namespace zarno
