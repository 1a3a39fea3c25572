// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/CPlayerKeyboard.h"

namespace zarno {

class ZInstrument;

// What each key does in the instrument as it is loaded; ActiveKeyswitch is left to markActiveKeyswitches. An
// instrument without zones has playable keys only. The caller keeps loads out.
KeyRoles keyRolesOf(const ZInstrument& engine);

// Keyswitches of groups that are active now become ActiveKeyswitch, the others Keyswitch.
void markActiveKeyswitches(KeyRoles& roles, const ZInstrument& engine);

} // namespace zarno
