// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ActiveGroups.h"
#include "engine/EngineEvent.h"
#include "engine/Modulation.h"
#include "engine/NoteTime.h"
#include "engine/VoicePool.h"
#include "engine/ZRandom.h"

#include <array>
#include <functional>

namespace zarno {

// Deals one event out: to the group triggers, to the notes of the active groups, to the voices and to the
// controllers. Holds what the player has done so far: last velocities, controller values, program, pedal.
// Audio thread.
class EventDispatcher {
  public:
    // The instrument's parts that events act on; all outlive the dispatcher.
    struct Targets {
        InstrumentSettings& settings;
        PlayContext& context;
        Modulation& modulation;
        VoicePool& pool;
        ZRandom& random;
    };

    EventDispatcher(Targets targets, const ActiveGroups::Groups& groups);

    // What controllers ask of the instrument as a whole.
    std::function<void()> applySettings;
    std::function<void(int channel)> resetControllers;

    // now: the time of the event's own sample.
    void dispatch(const EngineEvent& event, const NoteTime& now);

    ActiveGroups& activeGroups() { return activeGroups_; }
    const ActiveGroups& activeGroups() const { return activeGroups_; }
    // Any thread.
    int controllerValue(int number) const {
        return controllers_[static_cast<std::size_t>(number & 0x7F)].load(std::memory_order_relaxed);
    }
    void liftPedal() { sustainPedal_ = false; }
    // What pedal up and "all notes off" do, without being events: triggers are not evaluated.
    void releaseAll();

  private:
    void storeController(int number, int value);
    void dealToGroups(const EngineEvent& event, const NoteTime& now);
    void dealToGroup(ZGroup& group, const EngineEvent& event, const NoteTime& now);
    int releaseVelocity(const ZGroup& group, int key, const NoteTime& now) const;
    void startNoteInGroup(ZGroup& group, int key, int velocity, const NoteTime& now);
    void startZone(ZZone& zone, int key, int velocity, int channelTag, const NoteTime& now);
    void releaseKey(int key, int channel);
    void handleController(int number, int value, int channel);
    void setDepthFrom(LfoDepthSource source, float depth);

    Targets to_;
    ActiveGroups::ControllerValues controllers_{};
    std::array<std::uint8_t, 128> lastVelocity_;
    std::array<NoteTime, 128> noteOnTime_{};
    int program_ = 0;
    bool sustainPedal_ = false;
    ActiveGroups activeGroups_;
};

} // namespace zarno
