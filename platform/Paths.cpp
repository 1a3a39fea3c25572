// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"

#include "platform/Utf8.h"

#include <algorithm>

namespace zarno {
namespace {

#ifdef _WIN32
constexpr char nativeSeparator = '\\';
constexpr std::string_view separators = "\\/";
#else
constexpr char nativeSeparator = '/';
constexpr std::string_view separators = "/";
#endif

bool isSeparator(char c) {
    return separators.find(c) != std::string_view::npos;
}

} // namespace

std::string toBackslashForm(std::string_view nativePath) {
    std::string path(nativePath);
    std::replace_if(path.begin(), path.end(), isSeparator, '\\');
    return path;
}

std::string fromBackslashForm(std::string_view backslashPath) {
    std::string path(backslashPath);
    std::replace(path.begin(), path.end(), '\\', nativeSeparator);
    return path;
}

std::string parentPath(std::string_view nativePath) {
    const auto separator = nativePath.find_last_of(separators);
    if (separator == std::string_view::npos) return {};
    // A root keeps its separator: "/" and "C:\", since "" and "C:" name other folders.
    const bool isRoot = separator == 0 || nativePath[separator - 1] == ':';
    return std::string(nativePath.substr(0, separator + (isRoot ? 1 : 0)));
}

std::string fileName(std::string_view nativePath) {
    const auto separator = nativePath.find_last_of(separators);
    return std::string(separator == std::string_view::npos ? nativePath : nativePath.substr(separator + 1));
}

std::string fileStem(std::string_view nativePath) {
    auto name = fileName(nativePath);
    const auto dot = name.rfind('.');
    if (dot != std::string::npos && dot > 0) name.resize(dot);
    return name;
}

std::string toUtf8Path(std::string_view nativePath) {
    if (isValidUtf8(nativePath)) return std::string(nativePath);
    std::string path;
    for (std::size_t begin = 0; begin < nativePath.size();) {
        const std::size_t end =
            std::min(nativePath.find_first_of(separators, begin), nativePath.size() - 1) + 1;
        path += toUtf8(nativePath.substr(begin, end - begin));
        begin = end;
    }
    return path;
}

std::string joinPath(std::string_view folder, std::string_view child) {
    std::string path(folder);
    if (!path.empty() && !isSeparator(path.back())) path += nativeSeparator;
    return path.append(child);
}

} // namespace zarno
