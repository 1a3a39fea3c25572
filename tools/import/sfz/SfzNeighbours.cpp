// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzNeighbours.h"

#include <algorithm>
#include <map>
#include <set>

namespace zarno {
namespace {

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
            report.note("off_by another group", "both groups cut each other and themselves",
                        region.zone.place);
    }
}

} // namespace

void connectSfzRegions(std::vector<SfzRegion>& regions, ImportReport& report) {
    connectChokes(regions, report);
}

} // namespace zarno
