// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/PlayContext.h"

#include "engine/Tables.h"

namespace zarno {

void PlayContext::takeSettings() {
    lfoMovesPitch = settings.lfoDestination == static_cast<std::int32_t>(LfoDestination::Pitch);
    lfoDepth = finiteOr(settings.lfoDepth, 0.0f);
}

} // namespace zarno
