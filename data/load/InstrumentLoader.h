// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/LoadProblem.h"

#include <functional>
#include <string>
#include <vector>

namespace zarno {

class LicenceCheck;
class ZInstrument;
class ZSEDelegate;
struct InstrumentContents;

/// How a load ended. The caller decides what the user is told.
struct LoadResult {
    bool loaded = false;
    bool opened = false;                  ///< the file could be opened: what was loaded before has to go
    LoadProblem problem;                  ///< why not loaded; or, when loaded, what ended reading early
    std::vector<std::string> missing;     ///< UTF-8 paths of samples not found; their zones are left out
    std::vector<std::string> unsupported; ///< the same for samples that are there but cannot be read

    explicit operator bool() const { return loaded; }
};

/// What a load is to do besides reading; all may be left out.
struct LoadOptions {
    std::string enteredText;         ///< the licence text that the user entered
    LicenceCheck* licence = nullptr; ///< none: every licence is allowed
    ZSEDelegate* delegate = nullptr; ///< hears of progress, may cancel, is asked for missing samples
    std::function<void()> opened;    ///< called once the file is open, before anything else is read
    std::function<void()> alive;     ///< called now and then until the delegate is: the file answers
};

/// [reader, loading] Reads the instrument file at `path` (native form, UTF-8) into `contents`, which must be new. A file
/// that ends early is read as far as it goes and marked in the texts. A load that fails, is cancelled or runs
/// out of memory leaves what was read so far. The delegate is asked between samples and between the chunks of
/// a large one whether to go on. Touches nothing but its arguments. Never throws.
LoadResult readInstrument(InstrumentContents& contents, const std::string& path, const LoadOptions& options);

/// [loading] Hands what was read to `instrument`, as far as it goes; of a load that succeeded the first group is made
/// active. What the instrument held before is in `contents` afterwards. Corrects `result`, and returns
/// whether the instrument is loaded. While the caller keeps the audio thread out of the instrument.
bool takeOver(ZInstrument& instrument, InstrumentContents& contents, LoadResult& result);

/// Fills `instrument` likewise, with its delegate. A file that cannot be opened leaves the instrument
/// untouched; one that is refused leaves it cleared, but for what was read. `enteredText` is the licence text
/// that the user entered. [loading] while the caller keeps the audio thread out of the instrument.
LoadResult loadInstrument(ZInstrument& instrument, const std::string& path, const std::string& enteredText,
                          LicenceCheck& licence);
/// The same with every licence allowed.
LoadResult loadInstrument(ZInstrument& instrument, const std::string& path);

} // namespace zarno
