// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace zarno {

/// The folders of a text that may name several: separated by ";", which double quotes protect; blanks around
/// each are left out. A text that is the path of one existing folder is that folder, whatever is in its name.
std::vector<std::string> searchPathFolders(const std::string& text);

} // namespace zarno
