// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/InstrumentReport.h"

#include "data/Bytes.h"
#include "data/load/SamplePath.h"
#include "data/sound/ZWaveFile.h"
#include "platform/File.h"
#include "platform/Paths.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/RecordJson.h"

#include <unordered_map>

namespace zarno {
namespace {

InstrumentReport::Sample externalSample(const std::string& name, const std::string& instrumentPath) {
    InstrumentReport::Sample sample;
    sample.name = name;
    sample.path = fromBackslashForm(resolveSamplePath(name, toBackslashForm(instrumentPath)));
    ZWaveFile wave;
    sample.found = wave.open(sample.path);
    if (!sample.found) return sample;
    sample.sampleRate = wave.sampleRate();
    sample.channels = wave.channelCount();
    sample.bytesPerSample = wave.bytesPerSample();
    sample.frames = static_cast<std::int64_t>(wave.lengthInFrames());
    return sample;
}

InstrumentReport::Sample embeddedSample(const SampleBlock& block) {
    const SampleBlockHeader& header = block.header;
    return {block.name,    {}, true, header.sampleRate, header.channels, header.bytesPerSample,
            header.frames, 0};
}

void addSamples(InstrumentReport& report) {
    std::unordered_map<std::string_view, std::size_t> indices;
    for (const GroupEntry& group : report.file.groups) {
        for (const ZoneEntry& zone : group.zones) {
            const auto [found, isNew] = indices.try_emplace(zone.sample.text(), report.samples.size());
            if (isNew)
                report.samples.push_back(report.file.isEmbedded()
                                             ? embeddedSample(report.file.blocks[zone.block])
                                             : externalSample(std::string(zone.sample.text()), report.path));
            ++report.samples[found->second].zones;
        }
    }
}

template <typename Record>
Json allFields(const Record& record) {
    const RecordLayout& layout = layoutOf(record);
    std::vector<std::string_view> names;
    for (const RecordField& field : layout.fields)
        names.push_back(field.name);
    return recordToJson(layout, &record, names);
}

template <typename Record>
void addUnits(Json& units, const Record& record) {
    for (const RecordField& field : layoutOf(record).fields)
        if (!field.unit.empty()) units[std::string(field.name)] = field.unit;
}

Json sampleToJson(const InstrumentReport::Sample& sample) {
    Json json = {{"name", textToJson({sample.name, true})}, {"found", sample.found}, {"zones", sample.zones}};
    if (!sample.path.empty()) json["path"] = textToJson({sample.path, true});
    if (!sample.found) return json;
    json["sampleRate"] = sample.sampleRate;
    json["channels"] = sample.channels;
    json["bytesPerSample"] = sample.bytesPerSample;
    json["frames"] = sample.frames;
    if (sample.sampleRate > 0) json["seconds"] = static_cast<double>(sample.frames) / sample.sampleRate;
    return json;
}

Json groupToJson(const GroupEntry& group) {
    Json json = {
        {"name", textToJson(group.name)}, {"settings", allFields(group.record)}, {"zones", Json::array()}};
    for (const ZoneEntry& zone : group.zones)
        json["zones"].push_back({{"sample", textToJson(zone.sample)}, {"settings", allFields(zone.record)}});
    return json;
}

} // namespace

InstrumentReport reportOn(const std::string& path) {
    InstrumentReport report;
    report.path = absolutePath(path);
    const File file(path);
    if (!file.isOpen()) throw MakerError(path, describe(InstrumentFile::Refusal::CannotOpen));
    Bytes bytes(file);
    const auto refusal = report.file.parse(bytes);
    if (refusal != InstrumentFile::Refusal::None) throw MakerError(path, describe(refusal));
    addSamples(report);
    return report;
}

Json reportToJson(const InstrumentReport& report) {
    const InstrumentFile& file = report.file;
    Json json = {
        {"file", textToJson({report.path, true})}, {"bytes", file.fileSize}, {"version", file.version}};
    json["storage"] = file.isEmbedded() ? "embedded" : "external";
    json["name"] = textToJson(file.name);
    json["title"] = textToJson(file.title);
    json["text"] = textToJson(file.remark);
    json["imageBytes"] = file.image.size();
    json["layoutBytes"] = file.layout.text().size();
    json["licences"] = file.licences.size();
    json["settings"] = allFields(file.settings);
    json["groups"] = Json::array();
    for (const GroupEntry& group : file.groups)
        json["groups"].push_back(groupToJson(group));
    json["samples"] = Json::array();
    for (const auto& sample : report.samples)
        json["samples"].push_back(sampleToJson(sample));
    json["incomplete"] = nullptr;
    if (file.incomplete)
        json["incomplete"] = {{"offset", file.incomplete->offset},
                              {"reason", textToJson({file.incomplete->reason, true})}};
    json["bytesBehind"] = file.fileSize - file.endOffset;
    addUnits(json["units"], file.settings);
    addUnits(json["units"], GroupRecord());
    addUnits(json["units"], ZoneRecord());
    return json;
}

} // namespace zarno
