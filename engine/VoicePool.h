// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ZVoice.h"

#include <memory>
#include <vector>

namespace zarno {

// A fixed pool of voices: which one a new note gets, and which ones note-offs, pedal, exclusive ids and
// panics end. The order of the voices is the order in which they are tried and mixed. Audio thread, but for
// fill().
class VoicePool {
  public:
    using Voices = std::vector<std::unique_ptr<ZVoice>>;

    // Replaces all voices. Nothing may be rendering.
    void fill(Voices voices) { voices_ = std::move(voices); }
    const Voices& voices() const { return voices_; }

    // The voice for a new note: in Mono all playing voices are released first; in Legato the sounding voice
    // goes on; else the first free one, else the oldest, which then fades before its new note begins.
    // Null only when the pool is empty.
    ZVoice* allocate(std::int32_t playMode);

    // The next voice that a note-off of this key releases; null when no more. Cancels starts of the same key
    // that still wait for a stolen voice; with the pedal down marks voices as sustained instead.
    ZVoice* findForNoteOff(int key, int channelTag, bool pedalDown);

    // Fast fade of every sounding voice whose zone has this exclusive id; 0 is none.
    void chokeExclusive(int id);

    void releaseAll();       // every playing voice; starts that wait are forgotten
    void releaseSustained(); // those that only the pedal holds
    void stopAll();          // at once, nothing starts
    int playingCount() const;

  private:
    ZVoice* oldest() const;

    Voices voices_;
};

} // namespace zarno
