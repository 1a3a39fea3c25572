// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/PackReport.h"

#include "platform/Paths.h"
#include "tools/check/InstrumentCheck.h"
#include "tools/common/ProgressBar.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace zarno {
namespace {

std::string counted(std::size_t number, const char* one) {
    return std::to_string(number) + ' ' + one + (number == 1 ? "" : "s");
}

std::size_t zoneCount(const InstrumentFile& file) {
    std::size_t zones = 0;
    for (const GroupEntry& group : file.groups)
        zones += group.zones.size();
    return zones;
}

// In memory, as the player keeps them.
double megabytes(const InstrumentReport& report) {
    const double width = report.file.settings.sixteenBitStored != 0 ? 2.0 : 4.0;
    double bytes = 0.0;
    for (const auto& sample : report.samples)
        bytes += width * sample.channels * static_cast<double>(std::max<std::int64_t>(sample.frames, 0));
    return bytes / 1e6;
}

void printSummary(const InstrumentReport& report) {
    const InstrumentFile& file = report.file;
    const bool sixteenBit = file.settings.sixteenBitStored != 0;
    std::cout << report.path << ": " << counted(file.groups.size(), "group") << ", "
              << counted(zoneCount(file), "zone") << ", " << counted(report.samples.size(), "sample");
    char size[32];
    std::snprintf(size, sizeof size, "%.1f", megabytes(report));
    std::cout << (file.isEmbedded() ? " inside" : " beside it") << ", " << size << " MB as "
              << (sixteenBit ? "16-bit integers" : "32-bit floats")
              << (file.settings.streamingStored != 0 ? ", streamed from disk\n" : ", played from memory\n");
}

// A sample that the folder has, but that the player will look for elsewhere.
void warnOfOtherPlaces(const InstrumentReport& report, const PackNotes& notes) {
    std::vector<std::string> away;
    for (const auto& sample : report.samples)
        if (!sample.found && !report.file.isEmbedded() &&
            std::find(notes.missing.begin(), notes.missing.end(), sample.name) == notes.missing.end())
            away.push_back(sample.name);
    if (away.empty()) return;
    std::cerr << "zarno: warning: " << counted(away.size(), "sample")
              << " will be looked for beside the instrument, in " << parentPath(report.path)
              << ", and not found there (\"" << away.front()
              << "\"): write it into the folder that holds them, copy them, or use --embed\n";
}

} // namespace

void reportPacked(const std::string& path, const PackNotes& notes) {
    for (const std::string& remark : notes.remarks)
        std::cout << remark << '\n';
    for (const std::string& sample : notes.missing)
        std::cerr << "zarno: warning: there is no wave \"" << sample << "\"\n";
    const InstrumentReport report = reportOn(path);
    warnOfOtherPlaces(report, notes);
    printSummary(report);
    Findings findings;
    {
        ProgressBar bar("Checking");
        findings = checkInstrument(report, [&](double fraction) { bar.show(fraction); });
    }
    std::cout << (findings.empty() ? "check: nothing to complain about\n" : findingsToText(findings));
}

} // namespace zarno
