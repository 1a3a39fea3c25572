// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Settings.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <thread>

namespace zarno {
namespace {

// Two instances that have the file open, each with keys of its own, as two windows in two projects have.
TEST(SharedSettings, EachKeepsWhatItSaid) {
    const juce::ScopedJuceInitialiser_GUI framework;
    const test::TempFolder folder;
    const juce::File file(folder / "Zarno Sampler Player/pluginsettings.dat");
    Settings first(file), second(file);
    const auto writeAll = [](Settings& settings, const juce::String& owner) {
        for (int i = 0; i < 50; ++i) {
            settings.set(owner + juce::String(i), "value " + juce::String(i));
            EXPECT_EQ(settings.get(owner + "0"), "value 0");
        }
    };
    std::thread other([&] { writeAll(second, "/b <&\"> "); });
    writeAll(first, "/a ");
    other.join();
    const Settings later(file);
    for (const Settings* settings : {static_cast<const Settings*>(&first), static_cast<const Settings*>(&second), &later})
        for (int i = 0; i < 50; ++i) {
            EXPECT_EQ(settings->get("/a " + juce::String(i)), "value " + juce::String(i));
            EXPECT_EQ(settings->get("/b <&\"> " + juce::String(i)), "value " + juce::String(i));
        }

    Settings none{juce::File()};
    none.set("key", "value");
    EXPECT_EQ(none.get("key", "fallback"), "fallback");
}

} // namespace
} // namespace zarno
