// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/GroupMapper.h"
#include "tools/import/sfz/SfzReader.h"
#include "tools/zarno/MakerError.h"

namespace zarno::test {

// An SFZ text through parser and mapping, without a file: each sample that it names is there, each text that
// it includes is itself. The number of groups made of it; -1 when it was refused. For fuzzers, too.
inline int parseSfzFromMemory(std::string_view text) {
    static const SoundFileInfo sound = [] {
        SoundFileInfo info;
        info.format.frames = 1000;
        info.rootKey = 48;
        info.hasLoop = true;
        info.loopStart = 10, info.loopEnd = 900;
        return info;
    }();
    SfzFiles files;
    files.include = [&](const std::string& path) -> std::optional<std::string> {
        return path.size() % 2 == 0 ? std::nullopt : std::optional(std::string(text));
    };
    files.sample = [&](const std::string&, const std::string&) { return SamplePool::Entry{0, &sound}; };
    ImportReport report;
    try {
        const ImportedInstrument instrument = parseSfz(text, "memory.sfz", files, report);
        auto groups = mapGroups(splitByKey(instrument.zones), instrument.firstKeyswitch, report);
        assignChokeIds(groups, report);
        return static_cast<int>(groups.size());
    } catch (const MakerError& refused) {
        return refused.what()[0] != '\0' ? -1 : throw;
    }
}

} // namespace zarno::test
