// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZGroup.h"

#include "platform/ThreadRole.h"

#include <algorithm>

namespace zarno {

ZZone& ZGroup::addZone(std::unique_ptr<ZZone> zone) {
    thread::mustBe(thread::reader | thread::loading);
    zone->group = this;
    const auto index = static_cast<std::uint32_t>(zones_.size());
    const int low = std::max(zone->record.lowKey, 0), high = std::min(zone->record.highKey, 127);
    for (int key = low; key <= high; ++key) {
        byKey_[static_cast<std::size_t>(key)].push_back(index);
        keys_.set(static_cast<std::size_t>(key));
    }
    zones_.push_back(std::move(zone));
    if (changes_ != nullptr) changes_->zones.fetch_add(1, std::memory_order_release);
    return *zones_.back();
}

bool ZGroup::drawsAtRandom() const {
    const auto mode = static_cast<SelectionMode>(record.selectionMode.load());
    return mode == SelectionMode::RandomRobin || mode == SelectionMode::TotalRandom;
}

bool ZGroup::mayMatch(int key, int velocity) const {
    thread::mustBe(thread::audio);
    return keys_[static_cast<std::size_t>(key)] && record.lowKey <= key && key <= record.highKey &&
           record.lowVelocity <= velocity && velocity <= record.highVelocity;
}

// First matching zone in the round that begins at start, leaving out one zone (-1: none); -1 when none.
int ZGroup::firstMatchFrom(int start, int key, int velocity, int refused) const {
    const auto& filed = byKey_[static_cast<std::size_t>(key)];
    const auto middle = std::lower_bound(filed.begin(), filed.end(), static_cast<std::uint32_t>(start));
    const auto find = [&](auto from, auto to) {
        return std::find_if(from, to, [&](std::uint32_t index) {
            return static_cast<int>(index) != refused && zones_[index]->matches(key, velocity);
        });
    };
    if (const auto hit = find(middle, filed.end()); hit != filed.end()) return static_cast<int>(*hit);
    if (const auto hit = find(filed.begin(), middle); hit != middle) return static_cast<int>(*hit);
    return -1;
}

ZZone* ZGroup::selectZone(int key, int velocity, ZRandom& random) {
    thread::mustBe(thread::audio);
    const int count = static_cast<int>(zones_.size());
    if (count == 0) return nullptr;
    const bool randomRobin = record.selectionMode == static_cast<std::int32_t>(SelectionMode::RandomRobin);
    // Drawn whether or not anything matches, so that a seed gives the same choices whatever is played
    // between.
    int start = drawsAtRandom() ? random.below(count) : lastPlayed_ + 1;
    if (!mayMatch(key, velocity)) return nullptr;
    if (start >= count) start = 0;

    int chosen = firstMatchFrom(start, key, velocity, randomRobin ? lastPlayed_ : -1);
    if (chosen < 0 && randomRobin) chosen = firstMatchFrom(start, key, velocity, -1);
    if (chosen < 0) return nullptr;
    lastPlayed_ = chosen;
    return zones_[static_cast<std::size_t>(chosen)].get();
}

} // namespace zarno
