// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/ImportReport.h"

#include <algorithm>
#include <cstdio>

namespace zarno {

void ImportReport::add(std::string_view what, std::string_view instead, std::string_view place,
                       std::uint64_t count) {
    auto found = std::find_if(remarks_.begin(), remarks_.end(), [&](const Remark& remark) {
        return remark.what == what && remark.instead == instead;
    });
    if (found == remarks_.end()) {
        const bool isFull = remarks_.size() >= mostRemarks;
        if (isFull && remarks_.back().what != "other remarks")
            what = "other remarks", instead = "left out here";
        if (isFull && remarks_.back().what == "other remarks") {
            remarks_.back().count += count;
            return;
        }
        found =
            remarks_.insert(remarks_.end(), {std::string(what), std::string(instead), std::string(place)});
    }
    found->count += count;
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
    for (const Remark& remark : remarks_)
        json["remarks"].push_back({{"what", remark.what},
                                   {"instead", remark.instead},
                                   {"count", remark.count},
                                   {"first", remark.firstPlace}});
    return json;
}

std::string ImportReport::toText() const {
    char size[64];
    std::snprintf(size, sizeof size, "%.1f MB", static_cast<double>(sampleBytes) / 1e6);
    std::string text = target + ": " + std::to_string(groups) + " groups, " + std::to_string(zones) +
                       " zones, " + std::to_string(samples) + " samples, " + size +
                       (embedded ? ", embedded" : ", in wave files") +
                       (streaming ? ", streamed\n" : ", played from memory\n");
    for (const Remark& remark : remarks_) {
        text += "  " + std::to_string(remark.count) + " x " + remark.what + ": " + remark.instead;
        if (!remark.firstPlace.empty()) text += " (first: " + remark.firstPlace + ')';
        text += '\n';
    }
    return text;
}

} // namespace zarno
