// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/VoicePool.h"

#include "engine/ZGroup.h"

#include <algorithm>

namespace zarno {

ZVoice* VoicePool::allocate(std::int32_t playMode) {
    if (playMode == static_cast<std::int32_t>(PlayMode::Mono)) {
        // All of them, whatever group: a stack's second zone releases its first, on purpose.
        for (const auto& voice : voices_)
            if (voice->isPlaying()) voice->release();
    } else if (playMode == static_cast<std::int32_t>(PlayMode::Legato)) {
        for (const auto& voice : voices_)
            if (voice->isPlaying() && !voice->isReleasing()) return voice.get();
    }
    for (const auto& voice : voices_)
        if (!voice->isPlaying()) return voice.get();
    ZVoice* stolen = oldest();
    if (stolen != nullptr) {
        stolen->cancelPending(); // the newest note is the one that sounds
        stolen->kill();
    }
    return stolen;
}

ZVoice* VoicePool::oldest() const {
    const auto hit = std::min_element(voices_.begin(), voices_.end(), [](const auto& a, const auto& b) {
        return a->getStartTime() < b->getStartTime();
    });
    return hit == voices_.end() ? nullptr : hit->get();
}

ZVoice* VoicePool::findForNoteOff(int key, int channelTag, bool pedalDown) {
    for (const auto& voice : voices_) {
        if (!voice->isPlaying() || voice->isReleasing()) {
            if (voice->pendingMatches(key, channelTag)) voice->cancelPending();
            continue;
        }
        const ZZone& zone = *voice->getZone();
        const bool holdsKey = voice->getKey() == key && !isOneShot(zone.record) &&
                              (voice->getChannel() == 0 || voice->getChannel() == channelTag) &&
                              !(zone.group != nullptr && zone.group->isReleaseTrigger());
        if (!holdsKey) continue;
        if (!pedalDown) return voice.get();
        voice->setSustained(true);
    }
    return nullptr;
}

void VoicePool::chokeExclusive(int id) {
    if (id == 0) return;
    for (const auto& voice : voices_)
        if (voice->isPlaying() && !voice->isReleasing() && voice->getZone()->record.exclusiveId == id)
            voice->kill();
}

void VoicePool::releaseAll() {
    for (const auto& voice : voices_) {
        if (!voice->isPlaying()) continue;
        voice->cancelPending();
        voice->release();
    }
}

void VoicePool::releaseSustained() {
    for (const auto& voice : voices_)
        if (voice->isPlaying() && voice->isSustained()) voice->release();
}

void VoicePool::stopAll() {
    for (const auto& voice : voices_)
        voice->stop();
}

int VoicePool::playingCount() const {
    return static_cast<int>(
        std::count_if(voices_.begin(), voices_.end(), [](const auto& voice) { return voice->isPlaying(); }));
}

} // namespace zarno
