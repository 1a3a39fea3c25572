// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineEvent.h"
#include "engine/GroupChanges.h"
#include "engine/ZGroup.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bitset>
#include <functional>
#include <vector>

namespace zarno {

// Which groups of an instrument sound, in the order in which they became active, and the triggers that decide
// it before every event. Events that no trigger listens to evaluate none, and a note meets only groups with
// zones at its key. [audio, loading]
class ActiveGroups {
  public:
    using Groups = std::vector<std::unique_ptr<ZGroup>>;

    // The last value of each controller. Written by the audio thread; any thread may look.
    using ControllerValues = std::array<std::atomic<std::uint8_t>, 128>;

    // Controller values and program as the triggers see them.
    struct Inputs {
        const ControllerValues& controllers;
        const int& program;
    };

    ActiveGroups(const Groups& all, Inputs inputs)
        : all_(all)
        , inputs_(inputs) {}

    // [loading] The list of all groups has changed. Makes room for every group, so that activating does not
    // allocate.
    void adopt();
    // Looks again at what has changed in the groups. Done before every event; where groups have got zones
    // since, which happens while an instrument is filled, it takes memory.
    void takeChanges();

    // Called whenever a group is activated or deactivated. Must not lock or allocate.
    std::function<void()> onChange;

    void update(const EngineEvent& event);
    // The value of this controller has changed.
    void controllerMoved(int number) {
        inputsMoved_ = inputsMoved_ || controllersHeard_[static_cast<std::size_t>(number)];
    }
    void activate(ZGroup* group);
    void deactivate(ZGroup* group);
    void deactivateAll(); // without onChange

    const std::vector<ZGroup*>& list() const { return active_; }

    // Calls act(group) for those active groups, in the order of list(), for which a note at this key (0..127)
    // can have a consequence: zones at the key, or a random draw.
    template <typename Act>
    void forEachAt(int key, Act&& act) {
        gather(key);
        for (const std::uint32_t place : gathered_)
            act(*all_[place]);
    }

  private:
    // What decides about one group, side by side in memory.
    struct State {
        GroupTrigger trigger = GroupTrigger::Manual;
        bool excluded = false, drawsAtRandom = false, active = false;
        int wanted = 0, low = 0, high = 0; // channel, key, controller or program; range of controller values
        std::uint64_t activatedAt = 0;     // a count of activations
    };

    void readRecords();
    void fileByKey();
    bool concerns(const EngineEvent& event) const;
    bool updateGroup(std::size_t place, const EngineEvent& event);
    void set(std::size_t place, bool active);
    void gather(int key);

    const Groups& all_;
    Inputs inputs_;
    std::vector<ZGroup*> active_;
    std::uint64_t activations_ = 0;

    GroupChanges changes_;
    std::uint32_t recordsSeen_ = 0, zonesSeen_ = 0;     // of changes_
    std::vector<State> states_;                         // of all groups
    std::array<std::vector<std::uint32_t>, 128> byKey_; // places of the groups that have zones there
    std::vector<std::uint32_t> drawing_, gathered_;

    // What the triggers listen to, and whether the active groups are what they say of the inputs as they
    // were.
    std::bitset<128> keyswitches_, controllersHeard_;
    bool channelsHeard_ = false, programsHeard_ = false;
    bool settled_ = false, inputsMoved_ = false;
    int channelSeen_ = -1, programSeen_ = -1;
};

} // namespace zarno
