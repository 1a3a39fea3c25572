// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace zarno {

/// Something an instrument's maker will want to know.
struct Finding {
    enum class Severity {
        Error,  ///< something does not sound, or is not shown, as it stands in the file
        Warning ///< it works, and is probably not what was meant
    };
    Severity severity = Severity::Error;
    std::string place; ///< "group 2 \"Soft\", zone 5 \"c4.wav\"", "layout, line 12"
    std::string what;
};

using Findings = std::vector<Finding>;

} // namespace zarno
