// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/Notices.h"

namespace zarno {

const char* Notice::actionText() const {
    switch (action) {
    case Action::TryAgain:
        return "Try again";
    case Action::Locate:
        return "Locate\xE2\x80\xA6";
    case Action::ShowMissing:
        return "Show";
    case Action::AudioSettings:
        return "Audio settings";
    case Action::Dismiss:
        return "OK";
    case Action::None:
        break;
    }
    return "";
}

Notice noticeFor(const WindowFacts& facts) {
    using Action = Notice::Action;
    if (facts.advice.isNotEmpty()) return {facts.advice, Action::Dismiss, true};
    if (facts.lacksAudio) return {"No audio device is running.", Action::AudioSettings, true};
    if (facts.hasFailed)
        return {facts.problem.isNotEmpty() ? facts.problem : "Cannot load " + facts.file + ".",
                facts.fileIsMissing ? Action::Locate : Action::TryAgain, true};
    if (facts.problem.isNotEmpty()) return {facts.problem, Action::TryAgain, true};
    if (facts.missing.isNotEmpty()) return {facts.missing, Action::ShowMissing, true};
    if (facts.lateReads > 0)
        return {"The disk was too slow " + juce::String(facts.lateReads) +
                    (facts.lateReads == 1 ? " time." : " times."),
                Action::Dismiss, true};
    if (facts.instrument.isEmpty()) return {};
    return {facts.isStreaming ? "Streaming from disk" : "In memory", Action::None, false};
}

} // namespace zarno
