// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/BarState.h"

#include "engine/ZInstrument.h"

namespace zarno {
namespace {

WindowFacts factsOf(EditorLink& link, const BarTexts& texts) {
    const ZInstrument& engine = link.engine();
    WindowFacts facts;
    facts.instrument = texts.instrument;
    facts.advice = texts.advice;
    facts.isStreaming = engine.settings().streaming != 0;
    facts.lateReads = static_cast<int>(engine.streamStats().lateRefills - texts.lateReadsSeen);
    facts.lacksAudio = link.lacksAudioDevice();
    if (link.isLoading()) return facts;
    facts.file = texts.lastLoad.fileName;
    facts.problem = texts.lastLoad.problem;
    facts.hasFailed = !link.lastLoadSucceeded();
    facts.fileIsMissing = texts.lastLoad.fileIsMissing;
    facts.missing = texts.missing;
    return facts;
}

} // namespace

StatusBar::State barState(EditorLink& link, const BarTexts& texts) {
    const int index = link.currentIndex();
    const auto activity = link.activity();
    StatusBar::State state;
    state.instrument = texts.instrument.isEmpty() ? juce::String("No instrument") : texts.instrument;
    state.notice = noticeFor(factsOf(link, texts));
    state.voices = link.engine().playingVoices();
    state.cpuPercent = juce::roundToInt(activity.cpu * 100.0);
    state.peak = activity.peak;
    state.canStepBack = index > 0;
    state.canStepOn = index + 1 < texts.instrumentCount;
    state.hasAudioSettings = link.hasAudioSettings();
    state.zoomPercent = texts.zoomPercent;
    return state;
}

} // namespace zarno
