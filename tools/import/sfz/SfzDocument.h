// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/sfz/SfzText.h"

namespace zarno {

/// "name=value"
struct SfzOpcode {
    std::string name; ///< in lower case, old spellings replaced
    std::string value;
};

/// A header and the opcodes behind it.
struct SfzSection {
    std::string header; ///< "region"
    std::string place;
    std::vector<SfzOpcode> opcodes;
};

/// Text without meaning is a remark. Opcodes before the first header are one without a name.
std::vector<SfzSection> parseSfzSections(const std::vector<SfzLine>& lines, ImportReport& report);

} // namespace zarno
