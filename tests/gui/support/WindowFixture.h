// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/CZSPGUI.h"
#include "tests/gui/support/FakeLink.h"

#include <gtest/gtest.h>

namespace zarno {

// The window over a stand-in for the processor.
class Window : public testing::Test {
  protected:
    Window() {
        link.titles = {"Organ", "Piano", "Harp"};
        link.index = 1;
    }
    // An instrument of manual groups, as if just loaded.
    void load(const std::optional<std::string>& layout,
              std::initializer_list<const char*> groups = {"one", "two", "three"}) {
        auto& engine = link.instrument;
        engine.clear();
        engine.texts().name = "Bright Piano";
        engine.texts().path = "/piano.zse";
        engine.texts().layout = layout;
        for (const char* name : groups)
            engine.createGroup(name).record.trigger = static_cast<std::int32_t>(GroupTrigger::Manual);
        if (!engine.groups().empty()) engine.activateGroup(engine.groups()[0].get());
        ++link.loads;
        ++link.groups;
    }
    void open() {
        window = std::make_unique<CZSPGUI>(processor, link);
        window->setVisible(true);
    }
    void renderOneBlock() {
        const auto active = link.instrument.activeGroups();
        float left[64], right[64];
        float* outputs[] = {left, right};
        link.instrument.renderBlock(outputs, 2, 64);
        if (active != link.instrument.activeGroups()) ++link.groups;
    }
    void tick() { window->refresh(); }
    const PanelControls& controls() { return window->panel().controls(); }
    void click(int index) { window->buttonClicked(controls().buttons[static_cast<std::size_t>(index)]); }
    GroupRecord& group(int index) {
        return link.instrument.groups()[static_cast<std::size_t>(index)]->record;
    }

    juce::ScopedJuceInitialiser_GUI framework;
    SilentProcessor processor;
    FakeLink link;
    std::unique_ptr<CZSPGUI> window;
};

} // namespace zarno
