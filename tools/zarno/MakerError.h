// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace zarno {

/// What is wrong with the input, for the person who made it: where, then why. The tools' commands turn it
/// into a message and exit code 1.
struct MakerError : std::runtime_error {
    MakerError(const std::string& where, const std::string& why)
        : std::runtime_error(where.empty() ? why : where + ": " + why)
        , where(where)
        , why(why) {}

    std::string where, why;
};

/// Several faults of one text file, found in one go. The message has a line for each:
/// "FILE:LINE:COLUMN: where: why".
struct MakerErrors : MakerError {
    MakerErrors(const std::string& file, const std::vector<std::string>& lines);
};

} // namespace zarno
