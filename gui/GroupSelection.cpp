// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/GroupSelection.h"

#include "engine/ZInstrument.h"

#include <algorithm>

namespace zarno {

bool staysActive(const ZGroup& group) {
    return group.isReleaseTrigger() || group.record.trigger == static_cast<std::int32_t>(GroupTrigger::Always);
}

void GroupSelection::follow(const ZInstrument& engine, std::uint32_t loadGeneration) {
    generation_ = loadGeneration;
    indices_.clear();
    const auto& groups = engine.groups();
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (groups[i]->active) indices_.push_back(static_cast<int>(i));
}

void GroupSelection::pick(const ZInstrument& engine, int group, bool toggle, std::uint32_t loadGeneration) {
    if (toggle && contains(group, loadGeneration)) {
        std::erase(indices_, group);
        return;
    }
    if (!toggle || generation_ != loadGeneration) {
        follow(engine, loadGeneration);
        std::erase_if(indices_, [&](int i) {
            return !staysActive(*engine.groups()[static_cast<std::size_t>(i)]);
        });
        std::erase(indices_, group);
    }
    indices_.insert(std::lower_bound(indices_.begin(), indices_.end(), group), group);
}

const std::vector<int>& GroupSelection::indices(std::uint32_t loadGeneration) const {
    static const std::vector<int> none;
    return generation_ == loadGeneration ? indices_ : none;
}

bool GroupSelection::contains(int group, std::uint32_t loadGeneration) const {
    const auto& chosen = indices(loadGeneration);
    return std::find(chosen.begin(), chosen.end(), group) != chosen.end();
}

} // namespace zarno
