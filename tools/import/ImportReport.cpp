// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/ImportReport.h"

#include <algorithm>
#include <cstdio>

namespace zarno {

void ImportReport::add(Severity severity, std::string_view what, std::string_view instead,
                       std::string_view place, std::uint64_t count) {
    auto found = std::find_if(remarks_.begin(), remarks_.end(), [&](const Remark& remark) {
        return remark.what == what && remark.instead == instead;
    });
    if (found == remarks_.end()) {
        const bool isFull = remarks_.size() >= mostRemarks && severity != Severity::Error;
        if (isFull && overflow_ == 0)
            overflow_ = remarks_.size() + 1, what = "other remarks", instead = "left out here";
        else if (isFull) {
            remarks_[overflow_ - 1].count += count;
            return;
        }
        found = remarks_.insert(remarks_.end(),
                                {severity, std::string(what), std::string(instead), std::string(place)});
    }
    found->count += count;
}

void ImportReport::addAll(const ImportReport& other) {
    for (const Remark& remark : other.remarks_)
        add(remark.severity, remark.what, remark.instead, remark.firstPlace, remark.count);
}

std::uint64_t ImportReport::count(std::string_view what) const {
    std::uint64_t sum = 0;
    for (const Remark& remark : remarks_)
        if (remark.what == what) sum += remark.count;
    return sum;
}

Json ImportReport::toJson() const {
    Json json = {{"source", source},     {"target", target},       {"groups", groups},
                 {"zones", zones},       {"samples", samples},     {"sampleBytes", sampleBytes},
                 {"embedded", embedded}, {"streaming", streaming}, {"remarks", Json::array()}};
    constexpr const char* names[] = {"error", "loss", "note"};
    for (const Remark& remark : remarks_)
        json["remarks"].push_back({{"severity", names[static_cast<int>(remark.severity)]},
                                   {"what", remark.what},
                                   {"instead", remark.instead},
                                   {"count", remark.count},
                                   {"first", remark.firstPlace}});
    return json;
}

std::string ImportReport::summary() const {
    if (target.empty()) return {};
    char size[64];
    std::snprintf(size, sizeof size, "%.1f MB", static_cast<double>(sampleBytes) / 1e6);
    return target + ": " + std::to_string(groups) + " groups, " + std::to_string(zones) + " zones, " +
           std::to_string(samples) + " samples, " + size + (embedded ? ", embedded" : ", in wave files") +
           (streaming ? ", streamed\n" : ", played from memory\n");
}

std::string ImportReport::remarksText(std::size_t mostLines) const {
    constexpr const char* headings[] = {
        "Not as an instrument should sound:", "Not as in the original:", "Done in another way:"};
    std::vector<const Remark*> sorted;
    for (const Remark& remark : remarks_)
        sorted.push_back(&remark);
    std::stable_sort(sorted.begin(), sorted.end(), [](const Remark* a, const Remark* b) {
        return std::pair(a->severity, b->count) < std::pair(b->severity, a->count);
    });
    const std::size_t shown = mostLines == 0 ? sorted.size() : std::min(mostLines, sorted.size());
    std::string text;
    for (std::size_t i = 0; i < shown; ++i) {
        const Remark& remark = *sorted[i];
        if (i == 0 || sorted[i - 1]->severity != remark.severity)
            text += headings[static_cast<int>(remark.severity)] + std::string("\n");
        text += "  " + std::to_string(remark.count) + " x " + remark.what + ": " + remark.instead;
        if (!remark.firstPlace.empty()) text += " (first: " + remark.firstPlace + ')';
        text += '\n';
    }
    if (shown < sorted.size())
        text +=
            "and " + std::to_string(sorted.size() - shown) + " more kinds of remarks (--remarks shows all)\n";
    return text;
}

} // namespace zarno
