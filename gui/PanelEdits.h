// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/ControlBindings.h"

#include <optional>
#include <vector>

namespace zarno {

class ZGroup;
class ZInstrument;

// What a change of a panel control does to the engine, and what the engine would have the control show. Lives
// for one access: the caller keeps loads out of the engine meanwhile (message thread). Audio may run: single
// fields are stored whole, the rest are requests that the next block takes up.
class PanelEdits {
  public:
    // `selection`: indices of the groups that group controls act on; those beyond the last group are ignored.
    PanelEdits(ZInstrument& engine, const std::vector<int>& selection);

    void knobMoved(int id, double position);
    // item: index of the choice, -1 when there is none.
    void comboChosen(int id, int item);
    // For the actions that change settings (play mode, reset, group flags, stop); the others are the
    // window's.
    void buttonClicked(const ButtonBinding& button, bool toggled);

    // What the engine has now. Empty: nothing drives the control (unknown id, no group chosen), it stays as
    // it is.
    std::optional<double> knobValue(int id) const;
    std::optional<int> comboItem(int id) const;
    std::optional<bool> buttonState(int id) const;

  private:
    void finish(Afterwards afterwards);
    void storeFlag(RelaxedInt GroupRecord::*flag, bool value);

    ZInstrument& engine_;
    std::vector<ZGroup*> chosen_;
};

} // namespace zarno
