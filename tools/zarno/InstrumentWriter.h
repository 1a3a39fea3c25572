// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>
#include <string>

namespace zarno {

struct Model;

/// Writes the model as an instrument file. Positions, sizes and texts of the model are taken as they are; for
/// embedded storage a block is written where its first zone stands. Throws MakerError for what the format
/// cannot hold or `out` cannot take.
void writeInstrument(const Model& model, std::ostream& out);

/// Writes the model's waves and then the model to `path` (UTF-8). Each file replaces what was there only when
/// all of it could be written.
void writeInstrumentFile(const Model& model, const std::string& path);

} // namespace zarno
