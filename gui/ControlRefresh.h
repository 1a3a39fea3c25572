// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/PanelBuilder.h"

#include <map>

namespace zarno {

class PanelEdits;

// Keeps a panel's controls true to the engine without notifying anyone. A control moves when the engine's
// value has changed since it was looked at last: a request that no block has taken up yet does not push it
// back.
class ControlRefresh {
  public:
    // After a rebuild or another selection: every control takes the engine's value at the next refresh.
    void forget() { seen_.clear(); }
    // The same for one control: the user has moved it, the engine's value may have stayed.
    void forget(const juce::Component& control) { seen_.erase(&control); }
    void refresh(const PanelControls& controls, const PanelEdits& engine);

  private:
    bool isNew(const juce::Component* control, double value);

    std::map<const juce::Component*, double> seen_;
};

} // namespace zarno
