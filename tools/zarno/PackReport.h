// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/zarno/ModelJson.h"

#include <string>

namespace zarno {

/// Options for packing with all that this build can decode.
PackOptions packOptions();

/// Says what was packed into the instrument at `path`: warnings to stderr, a summary and what `zarno check`
/// finds to stdout.
void reportPacked(const std::string& path, const PackNotes& notes);

} // namespace zarno
