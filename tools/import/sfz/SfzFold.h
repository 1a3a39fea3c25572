// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/sfz/SfzControllers.h"
#include "tools/import/sfz/SfzOpcodes.h"

#include <vector>

namespace zarno {

/// What velocity as a controller adds to the level of a region: "volume_oncc131", "amplitude_oncc131".
struct SfzVelocityLevel {
    struct Change {
        bool isFactor; ///< of "amplitude", else dB of "volume"
        double depth;  ///< 1 or 1 dB
        int curve;
    };
    std::vector<Change> changes;
    std::optional<int> silencedBy; ///< a controller that makes the level zero at its start value

    double decibelsAt(int velocity, const SfzControllers& controllers) const;
};

/// Evaluates all that controllers change in a region ("pan_oncc10", "amplitude_cc7", "var1_cutoff" …) at
/// their start values, and sets the opcodes that this changes at the level SfzOpcodes::Start. Says which
/// controllers will have no effect.
SfzVelocityLevel foldControllers(SfzOpcodes& opcodes, const SfzControllers& controllers,
                                 const std::string& place, ImportReport& report);

/// The target of a modulation: "pan" of "pan_oncc10"; empty when the opcode is none.
std::string sfzModulationTarget(const std::string& name);

} // namespace zarno
