// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportedInstrument.h"

namespace zarno {

/// A part of a recording, shaped for one key.
struct ShapedPart {
    ImportedShaping shaping;
    double rate = 44100.0;            ///< frames of the recording a second, at that key
    std::uint64_t start = 0, end = 0; ///< frames of the recording; end exclusive
    std::uint64_t loopStart = 0;      ///< of a loop to `end`; `end` itself when there is none

    std::uint64_t passes = 1; ///< of that loop, that are one of the copy

    bool loops() const { return loopStart < end; }
    std::uint64_t loopFrames() const { return passes * (end - loopStart); }
    auto operator<=>(const ShapedPart&) const = default;
};

/// Changes the rates of what swings by so little that a loop holds whole turns.
ShapedPart withWholeTurns(ShapedPart part);

/// How long the shaped part is, and where its loop begins: when nothing moves any more but what swings, and
/// the filter has settled. The loop reaches to the end.
struct ShapedLength {
    std::uint64_t frames = 0, loopStart = 0;
};
ShapedLength lengthOf(const ShapedPart& part);

/// The part as a recording of its own. It is opened when it is read.
ImportedSample shapedSample(const ImportedSample& source, const ShapedPart& part);

} // namespace zarno
