// SPDX-License-Identifier: GPL-3.0-or-later
// Opening the window of an instrument with a large panel, next to decoding the picture of that panel alone.
#include "gui/CLookAndFeel.h"
#include "gui/CZSPGUI.h"
#include "gui/ImageDecoder.h"
#include "tests/gui/support/FakeLink.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace zarno {
namespace {

constexpr int width = 2000, height = 1200, controlCount = 200;

// As large as a rendered panel: smooth surfaces with some grain.
std::vector<std::uint8_t> background() {
    juce::Image image(juce::Image::RGB, width, height, false);
    juce::Random random(1);
    juce::Image::BitmapData pixels(image, juce::Image::BitmapData::writeOnly);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto grain = static_cast<juce::uint8>(random.nextInt(6));
            pixels.setPixelColour(x, y,
                                  juce::Colour(static_cast<juce::uint8>(40 + y / 16 + grain),
                                               static_cast<juce::uint8>(50 + x / 32 + grain), 70));
        }
    juce::MemoryOutputStream png;
    juce::PNGImageFormat().writeImageToStream(image, png);
    const auto* bytes = static_cast<const std::uint8_t*>(png.getData());
    return {bytes, bytes + png.getDataSize()};
}

std::string layout() {
    constexpr const char* elements[] = {"knob", "combo", "button", "label"};
    std::string text =
        "<player width='" + std::to_string(width) + "' height='" + std::to_string(height) + "'>";
    for (int i = 0; i < controlCount; ++i)
        text += std::string("<") + elements[i % 4] + " x='" + std::to_string(20 + i % 20 * 98) + "' y='" +
                std::to_string(20 + i / 20 * 100) + "' width='70' height='" + (i % 4 == 0 ? "70" : "24") +
                "' 8='Control' 2='" + std::to_string(1 + i % 8) + "'/>";
    return text + "<keyboard x='20' y='1080' width='1960' height='100'/></player>";
}

void decodeBackground(benchmark::State& state) {
    const juce::ScopedJuceInitialiser_GUI framework;
    const auto image = background();
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeImage(image.data(), image.size()));
}
BENCHMARK(decodeBackground)->Unit(benchmark::kMillisecond);

// From nothing to the first picture.
void openEditor(benchmark::State& state) {
    const juce::ScopedJuceInitialiser_GUI framework;
    CLookAndFeel lookAndFeel;
    lookAndFeel.install();
    SilentProcessor processor;
    FakeLink link;
    link.instrument.texts().layout = layout();
    link.instrument.texts().panelImage = background();
    for (auto _ : state) {
        CZSPGUI window(processor, link);
        window.setVisible(true);
        benchmark::DoNotOptimize(window.createComponentSnapshot(window.getLocalBounds()));
    }
    state.counters["controls"] = controlCount;
}
BENCHMARK(openEditor)->Unit(benchmark::kMillisecond);

// A step of the mouse wheel over a list of so many instruments, drawn.
void scrollInstrumentList(benchmark::State& state) {
    const juce::ScopedJuceInitialiser_GUI framework;
    CLookAndFeel lookAndFeel;
    lookAndFeel.install();
    SilentProcessor processor;
    FakeLink link;
    for (int i = 0; i < state.range(0); ++i)
        link.titles.add("Instrument " + juce::String(i));
    CZSPGUI window(processor, link);
    window.setVisible(true);
    window.openInstrumentList();
    auto& list = dynamic_cast<juce::ListBox&>(*window.instrumentList().getChildComponent(0));
    for (auto _ : state) {
        list.setVerticalPosition(std::fmod(list.getVerticalPosition() + 0.07, 1.0));
        benchmark::DoNotOptimize(list.createComponentSnapshot(list.getLocalBounds()));
    }
}
BENCHMARK(scrollInstrumentList)->Arg(20)->Arg(500)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zarno
