// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>

namespace zarno {

/// What is wrong with the input, for the person who made it: where, then why. The tools' commands turn it
/// into a message and exit code 1.
struct MakerError : std::runtime_error {
    MakerError(const std::string& where, const std::string& why)
        : std::runtime_error(where.empty() ? why : where + ": " + why) {}
};

} // namespace zarno
