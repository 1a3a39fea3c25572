// SPDX-License-Identifier: GPL-3.0-or-later
// What all formats have in common: the library, the sound, the state.
#include "platform/Paths.h"
#include "tests/formats/OtherFormats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <filesystem>

namespace zarno::test {
namespace {

constexpr int blockSize = 256, frames = 40 * blockSize;

/// A decaying tone on every key; nothing in it is random.
std::string toneInstrument() {
    auto instrument = levelInstrument("Tone");
    instrument.groups[0].zones[0].block =
        monoBlock(8000, 44100, [](int frame) { return 0.8 * std::sin(frame * 0.05) * std::exp(-frame / 3e3); });
    return instrument.bytes();
}

/// Controllers and bends lie at the start of a block: to VST3, JUCE's host hands them over there alone.
std::vector<TimedEvent> tune() {
    constexpr int block = blockSize;
    return {{0, noteOn(60)},
            {700, noteOn(67, 80)},
            {6 * block, {0xE0, 0x10, 0x50}},
            {8 * block, controller(7, 90)},
            {12 * block, controller(64, 127)},
            {3333, noteOff(60)},
            {16 * block, controller(64, 0)},
            {17 * block, {0xE0, 0, 0x40}},
            {5000, noteOff(67)},
            {6000, noteOn(48, 127)},
            {9000, noteOff(48)}};
}

/// The first frame in which two renders differ; -1 when they are equal.
int firstDifference(const Rendered& a, const Rendered& b) {
    for (std::size_t i = 0; i < std::min(a.left.size(), b.left.size()); ++i)
        if (a.left[i] != b.left[i] || a.right[i] != b.right[i]) return static_cast<int>(i);
    return a == b ? -1 : static_cast<int>(std::min(a.left.size(), b.left.size()));
}

class Formats : public testing::Test {
  protected:
    Formats() { rig_.addInstrument("tone.zse", toneInstrument()); }

    std::unique_ptr<HostedPlugin> vst2() { return rig_.loadActive({.blockSize = blockSize}); }
    std::unique_ptr<juce::AudioPluginInstance> open(const std::string& format) {
        return openBundle(copyBundle(format, rig_.folder() / "."), 44100.0, blockSize);
    }

    juce::ScopedJuceInitialiser_GUI juce_;
    HostRig rig_;
};

TEST_F(Formats, LoadTheLibraryBesideTheirBundleAndSoundTheSame) {
    const auto reference = render(*vst2(), frames, tune());
    ASSERT_GE(firstSound(reference.left), 0);
    for (const auto& format : otherFormats()) {
        const auto plugin = open(format);
        ASSERT_TRUE(plugin) << format;
        EXPECT_EQ(plugin->getTotalNumOutputChannels(), 2) << format;
        const auto rendered = render(*plugin, frames, blockSize, tune());
        EXPECT_EQ(firstDifference(rendered, reference), -1) << format;
    }
}

using Bytes = std::vector<std::uint8_t>;

/// The plug-in's own state inside what JUCE's host keeps of a VST3 plug-in.
Bytes componentState(juce::AudioPluginInstance& plugin) {
    juce::MemoryBlock hosted, state;
    plugin.getStateInformation(hosted);
    if (const auto xml = juce::AudioProcessor::getXmlFromBinary(hosted.getData(), (int) hosted.getSize()))
        if (const auto* component = xml->getChildByName("IComponent"))
            state.fromBase64Encoding(component->getAllSubText());
    return {state.begin(), state.end()};
}

void restoreComponent(juce::AudioPluginInstance& plugin, const Bytes& state) {
    juce::XmlElement xml("VST3PluginState");
    const juce::MemoryBlock bytes(state.data(), state.size());
    xml.createNewChildElement("IComponent")->addTextElement(bytes.toBase64Encoding());
    juce::MemoryBlock hosted;
    juce::AudioProcessor::copyXmlToBinary(xml, hosted);
    plugin.setStateInformation(hosted.getData(), (int) hosted.getSize());
}

#ifndef _WIN32 // Wine follows links without telling
TEST_F(Formats, LookBesideTheLinkThenBesideItsTarget) {
    const auto library = [](juce::AudioPluginInstance& plugin) {
        const auto state = componentState(plugin);
        return fileName(std::string(reinterpret_cast<const char*>(state.data())));
    };
    const std::string target = copyBundle("vst3", rig_.folder() / "."), folder = rig_.folder() / "links";
    std::filesystem::create_directory(folder);
    std::filesystem::create_directory_symlink(target, folder + "/Pack.vst3");
    EXPECT_EQ(library(*openBundle(folder + "/Pack.vst3", 44100.0, blockSize)), "tone.zse");
    rig_.folder().write("links/Pack.instruments/beside the link.zse", levelInstrument("Beside").bytes());
    EXPECT_EQ(library(*openBundle(folder + "/Pack.vst3", 44100.0, blockSize)), "beside the link.zse");
}
#endif

TEST_F(Formats, ShareTheirStateBetweenVst2AndVst3) {
    const auto vst2 = this->vst2();
    const auto vst3 = open("vst3");
    ASSERT_TRUE(vst2 && vst3);
    Bytes changed = vst2->chunk();
    const float volumeAndPan[] = {-7.5f, 0.25f};
    std::memcpy(changed.data() + pathBytes(changed) + offsetof(InstrumentSettings, volume), volumeAndPan,
                sizeof volumeAndPan);

    restoreComponent(*vst3, changed);
    const Bytes saved = componentState(*vst3);
    ASSERT_GE(saved.size(), changed.size());
    EXPECT_TRUE(std::equal(changed.begin(), changed.end(), saved.begin()));
    vst2->restore(saved); // with what the wrapper appends
    EXPECT_EQ(vst2->chunk(), changed);
    const auto rendered = render(*vst3, frames, blockSize, tune());
    EXPECT_EQ(firstDifference(rendered, render(*vst2, frames, tune())), -1);
    EXPECT_NE(rendered.left, rendered.right);
}

} // namespace
} // namespace zarno::test
