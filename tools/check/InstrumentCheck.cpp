// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/check/InstrumentCheck.h"

#include "platform/Utf8.h"
#include "tools/check/CheckLayout.h"

#include <algorithm>
#include <string_view>

namespace zarno {
namespace {

using Severity = Finding::Severity;

const char* nameOf(Severity severity) {
    return severity == Severity::Error ? "error" : "warning";
}

void checkHeader(const InstrumentFile& file, Findings& findings) {
    if (file.incomplete)
        findings.push_back({Severity::Error, "offset " + std::to_string(file.incomplete->offset),
                            "the file ends too early: " + toUtf8(file.incomplete->reason)});
    if (file.name.text().empty()) findings.push_back({Severity::Error, "name", "this is empty"});
    if (file.title.text().empty())
        findings.push_back({Severity::Error, "title", "this is empty: no library lists the instrument"});
    const std::string_view start(reinterpret_cast<const char*>(file.image.data()), file.image.size());
    if (!start.empty() && !start.starts_with("\x89PNG") && !start.starts_with("\xFF\xD8") &&
        !start.starts_with("GIF8"))
        findings.push_back({Severity::Error, "panel", "the background is no PNG, JPEG or GIF"});
    if (file.groups.empty()) findings.push_back({Severity::Error, "groups", "there are none"});
}

} // namespace

std::string groupPlace(const InstrumentFile& file, std::size_t group) {
    return "group " + std::to_string(group + 1) + " \"" + toUtf8(file.groups[group].name.text()) + '"';
}

std::string zonePlace(const InstrumentFile& file, std::size_t group, std::size_t zone) {
    return groupPlace(file, group) + ", zone " + std::to_string(zone + 1) + " \"" +
           toUtf8(file.groups[group].zones[zone].sample.text()) + '"';
}

const InstrumentReport::Sample* sampleOf(const InstrumentReport& report, const ZoneEntry& zone) {
    const auto found = std::find_if(report.samples.begin(), report.samples.end(),
                                    [&](const auto& sample) { return sample.name == zone.sample.text(); });
    return found == report.samples.end() ? nullptr : &*found;
}

Findings checkInstrument(const InstrumentReport& report, const std::function<void(double)>& progress) {
    Findings findings;
    checkHeader(report.file, findings);
    checkLayout(report.file.layout.text(), findings);
    checkRecords(report.file, findings);
    checkGroups(report.file, findings);
    checkSamples(report, findings);
    checkZones(report, findings);
    checkLevels(report, progress, findings);
    return findings;
}

Json findingsToJson(const Findings& findings) {
    Json json = Json::array();
    for (const Finding& each : findings)
        json.push_back({{"severity", nameOf(each.severity)}, {"place", each.place}, {"what", each.what}});
    return json;
}

std::string findingsToText(const Findings& findings) {
    std::string text;
    for (const Finding& each : findings)
        text += std::string(nameOf(each.severity)) + ": " + each.place + ": " + each.what + '\n';
    return text;
}

std::size_t countErrors(const Findings& findings) {
    return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(), [](const Finding& each) {
        return each.severity == Severity::Error;
    }));
}

} // namespace zarno
