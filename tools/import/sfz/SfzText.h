// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarno {

/// One line of an SFZ text after its comments, definitions and includes have been dealt with.
struct SfzLine {
    std::string text;
    std::shared_ptr<const std::string> file;
    int number = 0;

    std::string place() const { return *file + ':' + std::to_string(number); }
};

/// Gives the text of an included file; the path is as written, with forward slashes.
using SfzIncludes = std::function<std::optional<std::string>(const std::string& path)>;

/// The lines of the text and of the files that it includes, definitions in force ("#define $KEY 60")
/// replaced. Throws MakerError when a limit is passed; a file that is not there is a remark.
std::vector<SfzLine> readSfzLines(std::string_view text, const std::string& fileName,
                                  const SfzIncludes& includes, ImportReport& report);

} // namespace zarno
