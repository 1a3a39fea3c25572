// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/JsonFaults.h"

#include "platform/Utf8.h"
#include "tools/zarno/JsonPlaces.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace zarno {
namespace {

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

// Letters to change, add or take away to make one word of the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = std::exchange(row[j + 1], std::min({row[j] + 1, row[j + 1] + 1, changed}));
        }
    }
    return row.back();
}

} // namespace

MakerErrors::MakerErrors(const std::string& file, const std::vector<std::string>& lines)
    : MakerError({}, joined(lines) + '\n' + file + ": " + std::to_string(lines.size()) +
                         (lines.size() == 1 ? " error" : " errors")) {}

void JsonFaults::throwIfAny(const std::string& file, std::string_view text) const {
    if (faults_.empty()) return;
    const JsonPlaces places(text);
    std::vector<std::pair<JsonPlaces::Place, const Fault*>> found;
    for (const Fault& fault : faults_)
        found.emplace_back(places.of(fault.where), &fault);
    std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return std::pair(a.first.line, a.first.column) < std::pair(b.first.line, b.first.column);
    });
    std::vector<std::string> lines;
    for (const auto& [place, each] : found) {
        const Fault& fault = *each;
        lines.push_back(file + ':' + std::to_string(place.line) + ':' + std::to_string(place.column) + ": " +
                        (fault.where.empty() ? "" : fault.where + ": ") + fault.why);
    }
    throw MakerErrors(file, lines);
}

std::string suggestion(std::string_view given, std::span<const std::string_view> known) {
    constexpr std::size_t longest = 64; // of words that are compared
    const std::string word = withFoldedCase(std::string(given.substr(0, longest)));
    std::string_view best;
    std::size_t least = word.size() < 4 ? 1 : 3;
    for (const std::string_view each : known)
        if (const std::size_t steps = distance(word, withFoldedCase(std::string(each))); steps < least)
            least = steps, best = each;
    return best.empty() ? std::string() : "; did you mean \"" + std::string(best) + "\"?";
}

} // namespace zarno
