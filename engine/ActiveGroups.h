// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineEvent.h"
#include "engine/ZGroup.h"

#include <array>
#include <atomic>
#include <functional>
#include <vector>

namespace zarno {

// Which groups of an instrument sound, in the order in which they became active, and the triggers that decide
// it before every event. Audio thread (and whoever loads while the audio thread is kept out).
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

    // Makes room for every group, so that activating does not allocate.
    void reserve() { active_.reserve(all_.size()); }

    // Called whenever a group is activated or deactivated. Must not lock or allocate.
    std::function<void()> onChange;

    void update(const EngineEvent& event);
    void activate(ZGroup* group);
    void deactivate(ZGroup* group);
    void deactivateAll(); // tells nobody

    const std::vector<ZGroup*>& list() const { return active_; }

  private:
    void updateGroup(ZGroup& group, const EngineEvent& event);
    void set(ZGroup& group, bool active);

    const Groups& all_;
    Inputs inputs_;
    std::vector<ZGroup*> active_;
};

} // namespace zarno
