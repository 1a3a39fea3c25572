// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace zarno {

/// Where the sample `sampleName` of the instrument at `instrumentPath` lies. Works on text alone, in
/// backslash form, the same on every system. An absolute name is used as it stands, and so is every name when
/// the instrument's path begins with a full stop; other names are relative to the instrument's folder,
/// leading
/// "..\" steps included.
std::string resolveSamplePath(std::string_view sampleName, std::string_view instrumentPath);

} // namespace zarno
