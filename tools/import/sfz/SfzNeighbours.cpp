// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzNeighbours.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <tuple>

namespace zarno {
namespace {

// Regions that the same note can start divide the range of chances among themselves.
using Neighbourhood = std::tuple<ImportedRange, ImportedRange, ImportedCondition, bool>;

void numberRandomRegions(std::vector<SfzRegion>& regions, ImportReport& report) {
    std::map<Neighbourhood, std::map<double, double>> chances; // by their low end
    const auto neighbourhood = [](const ImportedZone& zone) {
        return Neighbourhood{zone.keys, zone.velocities, zone.condition, zone.onRelease};
    };
    for (const SfzRegion& region : regions)
        if (region.randomLow) chances[neighbourhood(region.zone)][*region.randomLow] = *region.randomHigh;
    for (SfzRegion& region : regions) {
        if (!region.randomLow) continue;
        const auto& all = chances[neighbourhood(region.zone)];
        ImportedAlternation& alternation = region.zone.alternation;
        alternation.count = static_cast<int>(all.size());
        alternation.position = static_cast<int>(std::distance(all.begin(), all.find(*region.randomLow)));
        const double share = *region.randomHigh - *region.randomLow;
        if (std::abs(share * alternation.count - 1.0) > 0.1)
            report.add("random range of another size", "all alternatives are as likely", region.zone.place);
    }
}

// Exclusive groups that cut each other become one number.
class ChokeClasses {
  public:
    void join(int a, int b) { parents_[root(a)] = root(b); }
    int root(int group) {
        auto found = parents_.try_emplace(group, group).first;
        while (found->second != found->first) {
            const auto parent = parents_.find(found->second);
            found->second = parent->second; // the next one has half the way: chains may be long
            found = parent;
        }
        return found->first;
    }

  private:
    std::map<int, int> parents_;
};

void connectChokes(std::vector<SfzRegion>& regions, ImportReport& report) {
    ChokeClasses classes;
    std::set<int> cutting; // groups that cut another one or themselves
    for (SfzRegion& region : regions) {
        if (region.isMonophonic && region.offBy == 0) region.offBy = region.group;
        if (region.offBy == 0) continue;
        cutting.insert(region.offBy);
        if (region.group != 0) {
            classes.join(region.group, region.offBy);
            cutting.insert(region.group);
        }
    }
    for (SfzRegion& region : regions) {
        const int group = region.offBy != 0                ? region.offBy
                          : cutting.contains(region.group) ? region.group
                                                           : 0;
        if (group == 0) continue;
        region.zone.choke = classes.root(group);
        if (region.offBy != region.group)
            report.add("off_by another group", "both groups cut each other and themselves",
                       region.zone.place);
    }
}

} // namespace

void connectSfzRegions(std::vector<SfzRegion>& regions, ImportReport& report) {
    numberRandomRegions(regions, report);
    connectChokes(regions, report);
}

} // namespace zarno
