// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/ModuleIdentity.h"

#include <optional>
#include <string>
#include <vector>

namespace zarno {

/// What a module shall say of itself; what is not given stays.
struct Brand {
    std::optional<std::string> id, title, vendor;
};

/// Writes the identity into the module, or into the file beside it when it has no room for one. Throws
/// MakerError, before anything is written when the brand is not as it must be.
ModuleIdentity brandModule(const std::string& module, const Brand& brand);

/// Throws MakerError for a module of a format whose hosts tell plug-ins apart by something else: VST3 and LV2 bundles
/// and the modules in them.
void refuseBundle(const std::string& module);

/// A folder to ship.
struct PackFolder {
    std::string folder;                   ///< must not be there, or be empty
    std::string name;                     ///< of the modules, without their endings, and so of the library
    std::vector<std::string> modules;     ///< copied, with their endings kept
    std::vector<std::string> instruments; ///< instrument files with their samples inside, and whole folders
    Brand brand;
};

/// Makes the folder: modules, their library beside them, SHA256SUMS over it all. Throws MakerError.
void makePackFolder(const PackFolder& pack);

} // namespace zarno
