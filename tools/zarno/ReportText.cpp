// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Utf8.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/RecordJson.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace zarno {
namespace {

constexpr std::string_view storedSuffix = "Stored";

std::string shown(const StoredText& text) {
    return toUtf8(text.text());
}

std::string valueWithUnit(const RecordField& field, const void* record) {
    const Json value = fieldToJson(field, record);
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    return field.unit.empty() ? text : text + ' ' + std::string(field.unit);
}

// Of a live field and its stored twin the stored one is shown: it is what comes into force.
bool hasStoredTwin(const RecordLayout& layout, const RecordField& field) {
    return std::any_of(layout.fields.begin(), layout.fields.end(), [&](const RecordField& other) {
        return other.name.size() == field.name.size() + storedSuffix.size() &&
               other.name.starts_with(field.name) && other.name.ends_with(storedSuffix);
    });
}

void settings(std::ostream& out, const InstrumentSettings& record) {
    const RecordLayout& layout = layoutOf(record);
    for (const RecordField& field : layout.fields) {
        if (hasStoredTwin(layout, field)) continue;
        std::string_view name = field.name;
        if (name.ends_with(storedSuffix)) name.remove_suffix(storedSuffix.size());
        out << "  " << std::left << std::setw(20) << name << valueWithUnit(field, &record) << '\n';
    }
}

// The fields that are not as in a new record, but for those shown otherwise.
template <typename Record>
void otherFields(std::ostream& out, const Record& record,
                 std::initializer_list<std::string_view> shownAlready) {
    const RecordLayout& layout = layoutOf(record);
    const Json different = recordToJson(layout, &record);
    for (const RecordField& field : layout.fields) {
        const bool skip =
            std::find(shownAlready.begin(), shownAlready.end(), field.name) != shownAlready.end();
        if (!skip && different.contains(std::string(field.name)))
            out << ", " << field.name << ' ' << valueWithUnit(field, &record);
    }
}

void zone(std::ostream& out, const ZoneEntry& entry) {
    const ZoneRecord& r = entry.record;
    out << "  \"" << shown(entry.sample) << "\": root " << r.rootKey << ", keys " << r.lowKey << ".."
        << r.highKey << ", velocities " << r.lowVelocity << ".." << r.highVelocity << ", frames "
        << r.startFrame << ".." << r.endFrame;
    if (loops(r)) out << ", loop " << r.loopStart << ".." << r.loopEnd;
    if (isOneShot(r)) out << ", one-shot";
    otherFields(out, r,
                {"rootKey", "lowKey", "highKey", "lowVelocity", "highVelocity", "startFrame", "endFrame",
                 "loopStart", "loopEnd", "loopMode"});
    out << '\n';
}

void group(std::ostream& out, const GroupEntry& entry, std::size_t number) {
    out << "\nGroup " << number << " \"" << shown(entry.name) << "\": " << entry.zones.size() << " zones";
    otherFields(out, entry.record, {});
    out << '\n';
    for (const ZoneEntry& each : entry.zones)
        zone(out, each);
}

void sample(std::ostream& out, const InstrumentReport::Sample& sample) {
    out << "  \"" << toUtf8(sample.name) << "\": ";
    if (!sample.found) {
        out << "not found at " << toUtf8(sample.path) << '\n';
        return;
    }
    out << sample.sampleRate << " Hz, " << (sample.channels == 1 ? "mono" : "stereo") << ", "
        << 8 * static_cast<std::int64_t>(sample.bytesPerSample) << " bits, " << sample.frames << " frames";
    if (sample.sampleRate > 0)
        out << " (" << std::fixed << std::setprecision(3)
            << static_cast<double>(sample.frames) / sample.sampleRate << " s)";
    out << ", " << sample.zones << (sample.zones == 1 ? " zone\n" : " zones\n");
}

} // namespace

std::string reportToText(const InstrumentReport& report) {
    const InstrumentFile& file = report.file;
    std::ostringstream out;
    out << '"' << shown(file.name) << "\", title \"" << shown(file.title) << "\"\n"
        << report.path << ": " << file.fileSize << " bytes, version " << file.version << ", "
        << (file.isEmbedded() ? "embedded" : "external") << " samples\n";
    if (!file.remark.bytes.empty()) out << shown(file.remark) << '\n';
    out << "panel image " << file.image.size() << " bytes, layout " << file.layout.text().size() << " bytes, "
        << file.licences.size() << " licence texts\n";
    if (file.fileSize > file.endOffset)
        out << file.fileSize - file.endOffset << " bytes behind the instrument\n";
    if (file.incomplete)
        out << "incomplete at offset " << file.incomplete->offset << ": " << toUtf8(file.incomplete->reason)
            << '\n';
    out << "\nSettings\n";
    settings(out, file.settings);
    for (std::size_t i = 0; i < file.groups.size(); ++i)
        group(out, file.groups[i], i + 1);
    out << "\nSamples: " << report.samples.size() << '\n';
    for (const auto& each : report.samples)
        sample(out, each);
    return out.str();
}

} // namespace zarno
