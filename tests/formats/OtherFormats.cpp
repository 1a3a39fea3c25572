// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/formats/OtherFormats.h"

#include "platform/Module.h"
#include "platform/Paths.h"

#include <algorithm>
#include <filesystem>

namespace zarno::test {
namespace fs = std::filesystem;

std::vector<std::string> otherFormats() {
#if JUCE_PLUGINHOST_LV2
    return {"vst3", "lv2"};
#else
    return {"vst3"};
#endif
}

std::string copyBundle(const std::string& format, const std::string& folder) {
    const fs::path built = fs::path(parentPath(modulePath())) / ("ZarnoSamplerPlayer." + format);
    const fs::path copy = fs::path(folder) / ("Pack." + format);
    fs::copy(built, copy, fs::copy_options::recursive);
    // The module in a VST3 bundle has the bundle's name. That of an LV2 bundle stands in its manifest.
    if (format == "vst3")
        for (const auto& entry : fs::recursive_directory_iterator(copy))
            if (entry.is_regular_file() && entry.path().stem() == "ZarnoSamplerPlayer") {
                fs::rename(entry.path(),
                           entry.path().parent_path() / ("Pack" + entry.path().extension().string()));
                break;
            }
    return copy.string();
}

std::unique_ptr<juce::AudioPluginInstance> openBundle(const std::string& bundle, double rate, int blockSize) {
    std::unique_ptr<juce::AudioPluginFormat> format;
    juce::StringArray names(bundle);
#if JUCE_PLUGINHOST_LV2
    if (bundle.ends_with(".lv2")) {
        format = std::make_unique<juce::LV2PluginFormat>();
        names = format->searchPathsForPlugins(juce::FileSearchPath(parentPath(bundle)), true, false);
    }
#endif
    if (format == nullptr) format = std::make_unique<juce::VST3PluginFormat>();
    juce::OwnedArray<juce::PluginDescription> found;
    for (const auto& name : names)
        format->findAllTypesForFile(found, name);
    // What LV2 itself brings along is found, too.
    const auto* description = std::find_if(found.begin(), found.end(), [](const auto* one) {
        return one->name == "Zarno Sampler Player" && one->isInstrument;
    });
    EXPECT_NE(description, found.end()) << bundle;
    if (description == found.end()) return nullptr;
    juce::String error;
    auto plugin = format->createInstanceFromDescription(**description, rate, blockSize, error);
    EXPECT_TRUE(plugin) << bundle << ": " << error;
    if (plugin) {
        plugin->setNonRealtime(true);
        plugin->prepareToPlay(rate, blockSize);
    }
    return plugin;
}

Rendered render(juce::AudioPluginInstance& plugin, int frames, int blockSize,
                const std::vector<TimedEvent>& events) {
    Rendered rendered;
    juce::AudioBuffer<float> buffer(2, blockSize);
    for (int start = 0; start < frames; start += blockSize) {
        juce::MidiBuffer midi;
        for (const auto& event : events)
            if (event.frame >= start && event.frame < start + blockSize)
                midi.addEvent(event.bytes.data(), static_cast<int>(event.bytes.size()),
                              static_cast<int>(event.frame) - start);
        buffer.clear();
        plugin.processBlock(buffer, midi);
        const int count = std::min(blockSize, frames - start);
        rendered.left.insert(rendered.left.end(), buffer.getReadPointer(0), buffer.getReadPointer(0) + count);
        rendered.right.insert(rendered.right.end(), buffer.getReadPointer(1), buffer.getReadPointer(1) + count);
    }
    return rendered;
}

} // namespace zarno::test
