// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MessageCall.h"

#include <juce_events/juce_events.h>

namespace zarno {

void MessageCall::post() {
    if (!posted_.exchange(true))
        juce::MessageManager::callAsync([call = shared_from_this()] { call->run(); });
}

void MessageCall::abandon() {
    const juce::ScopedLock hold(lock_);
    work_ = nullptr;
}

void MessageCall::run() {
    const juce::ScopedLock hold(lock_);
    posted_ = false;
    const auto work = work_; // a copy: the work may abandon this call
    if (work) work();
}

} // namespace zarno
