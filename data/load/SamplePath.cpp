// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/SamplePath.h"

#include <algorithm>

namespace zarno {
namespace {

constexpr std::string_view step = "..\\";

bool usedAsItStands(std::string_view name, std::string_view instrumentPath) {
    if (name.empty() || name.front() == '\\') return true;
    if (name.size() > 1 && name[1] == ':') return true;
    return !instrumentPath.empty() && instrumentPath.front() == '.'; // on purpose the instrument's path
}

// Takes the steps out of `name`, wherever they stand, together with all before the last one.
int takeSteps(std::string& name) {
    int steps = 0;
    std::size_t end = 0;
    for (std::size_t at = name.find(step); at != std::string::npos; at = name.find(step, end)) {
        end = at + step.size();
        ++steps;
    }
    name.erase(0, end);
    return steps;
}

// False when there is no separator left to cut at.
bool cutLast(std::string_view& path) {
    const std::size_t separator = path.rfind('\\');
    if (separator == std::string_view::npos) return false;
    path = path.substr(0, separator);
    return true;
}

} // namespace

std::string resolveSamplePath(std::string_view sampleName, std::string_view instrumentPath) {
    std::string name(sampleName);
    if (usedAsItStands(name, instrumentPath)) return name;
    std::replace(name.begin(), name.end(), '/', '\\');

    const int steps = takeSteps(name);
    std::string_view folder = instrumentPath;
    if (!cutLast(folder)) return name; // a bare file name: its folder is the current one
    for (int i = 0; i < steps && cutLast(folder); ++i) {
    }
    return std::string(folder) + '\\' + name;
}

} // namespace zarno
