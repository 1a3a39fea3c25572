// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/CZSP.h"

namespace zarno {

CZSP::CZSP()
    : AudioProcessor(BusesProperties().withOutput("Output", juce::AudioChannelSet::stereo(), true)) {}

void CZSP::prepareToPlay(double, int) {}

bool CZSP::isBusesLayoutSupported(const BusesLayout& layout) const {
    return layout.getMainInputChannelSet().isDisabled() &&
           layout.getMainOutputChannelSet() == juce::AudioChannelSet::stereo();
}

void CZSP::processBlock(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) {
    midi.clear();
    audio.clear();
}

juce::AudioProcessorEditor* CZSP::createEditor() { return new juce::GenericAudioProcessorEditor(*this); }

} // namespace zarno

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() { return new zarno::CZSP(); }
