// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

struct InstrumentFile;

/// Gives the instrument a panel in the player's own look: its name, the knobs that matter to what is in it,
/// and a keyboard over the keys it uses. Replaces layout and background.
void addAutoPanel(InstrumentFile& file);

} // namespace zarno
