// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/OpenEffects.h"

#include "shell/CZSP.h"

namespace zarno {

juce::MemoryBlock& OpenEffect::freshChunk() {
    juce::MemoryBlock fresh;
    processor.getStateInformation(fresh);
    const std::lock_guard hold(lock_);
    auto& chunk = chunks_[std::this_thread::get_id()];
    chunk = std::move(fresh);
    return chunk;
}

void OpenEffects::add(Vst2::AEffect& effect, CZSP& processor, Vst2::audioMasterCallback host) {
    const std::lock_guard hold(adding_);
    Place* place = places_.get();
    while (place != nullptr && place->effect.load() != nullptr)
        place = place->next.get();
    if (place == nullptr) {
        auto made = std::make_unique<Place>();
        made->next = std::move(places_); // the older places keep their addresses
        places_ = std::move(made);
        place = places_.get();
    }
    place->open = std::make_unique<OpenEffect>(effect, processor, host);
    place->effect.store(&effect, std::memory_order_release);
    first_.store(places_.get(), std::memory_order_release);
}

std::unique_ptr<OpenEffect> OpenEffects::remove(const Vst2::AEffect* effect) {
    const std::lock_guard hold(adding_);
    for (Place* place = places_.get(); place != nullptr; place = place->next.get())
        if (place->effect.load() == effect) {
            place->effect.store(nullptr);
            return std::move(place->open);
        }
    return nullptr;
}

OpenEffect* OpenEffects::find(const Vst2::AEffect* effect) const {
    const Place* place = first_.load(std::memory_order_acquire);
    while (place != nullptr && place->effect.load(std::memory_order_acquire) != effect)
        place = place->next.get();
    return place != nullptr ? place->open.get() : nullptr;
}

} // namespace zarno
