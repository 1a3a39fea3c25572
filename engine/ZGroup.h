// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/GroupChanges.h"
#include "engine/Records.h"
#include "engine/ZRandom.h"
#include "engine/ZZone.h"

#include <array>
#include <atomic>
#include <bitset>
#include <memory>
#include <string>
#include <vector>

namespace zarno {

// An ordered list of zones with a rule for choosing among those that match a note. The window may change record
// fields at any time.
class ZGroup {
  public:
    explicit ZGroup(std::string groupName)
        : name(std::move(groupName)) {}

    std::string name;

  private:
    std::bitset<128> keys_; // that have zones; beside the record's first fields

  public:
    GroupRecord record;
    std::atomic<bool> active{false}; // written by ActiveGroups only; any thread may look
    std::atomic<bool> wanted{false}; // see ZInstrument::requestActiveGroups

    // [reader, loading] Takes the zone over and files it under its keys: its record must be complete by now.
    ZZone& addZone(std::unique_ptr<ZZone> zone);
    const std::vector<std::unique_ptr<ZZone>>& zones() const { return zones_; }

    // [any] What was derived from the record is stale from now on. Call it after the record changed.
    void touch() {
        generation_.fetch_add(1, std::memory_order_release);
        if (changes_ != nullptr) changes_->records.fetch_add(1, std::memory_order_release);
    }
    std::uint32_t generation() const { return generation_.load(std::memory_order_acquire); }

    // [loading] From now on a group of an instrument that counts changes there, at this place in its list; null: of
    // none.
    void join(GroupChanges* changes, std::uint32_t place) {
        changes_ = changes;
        place_ = place;
    }
    std::uint32_t place() const { return place_; }

    bool isReleaseTrigger() const { return record.releaseTrigger != 0; }
    // Whether every note draws a random number, also one that no zone matches.
    bool drawsAtRandom() const;
    bool hasZonesAt(int key) const { return keys_[static_cast<std::size_t>(key)]; }

    // [audio] Whether the group's own key and velocity ranges take the note and any zone lies at the key: what an
    // event asks of every active group, so it reads one place in memory.
    bool mayMatch(int key, int velocity) const;

    // [audio] "Stack": calls play(zone) for every matching zone in zone order.
    template <typename Play>
    void forEachMatch(int key, int velocity, Play&& play) {
        if (!mayMatch(key, velocity)) return;
        for (const std::uint32_t index : byKey_[static_cast<std::size_t>(key)])
            if (zones_[index]->matches(key, velocity)) play(*zones_[index]);
    }

    // [audio] The other modes: the one zone that is due, or null. The search goes round from the zone behind the
    // one played last (the random modes: from a random zone); Random Robin takes the zone played last only
    // when no other matches. Reads only the zones filed under the key, in the order of the full round.
    ZZone* selectZone(int key, int velocity, ZRandom& random);

    int lastPlayed() const { return lastPlayed_; }

  private:
    int firstMatchFrom(int start, int key, int velocity, int refused) const;

    std::vector<std::unique_ptr<ZZone>> zones_;
    std::array<std::vector<std::uint32_t>, 128> byKey_; // ascending zone indices
    std::atomic<std::uint32_t> generation_{0};
    GroupChanges* changes_ = nullptr; // not owned
    std::uint32_t place_ = 0;
    int lastPlayed_ = -1;
};

} // namespace zarno
