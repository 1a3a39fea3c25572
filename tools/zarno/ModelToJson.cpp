// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/ModelJson.h"
#include "tools/zarno/RecordJson.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zarno {
namespace {

// What a folder may leave out for a wave to say must be said here.
constexpr std::string_view fieldsFromWave[] = {"rootKey",     "lowKey",   "highKey",  "highVelocity",
                                               "lowVelocity", "loopMode", "endFrame", "loopStart",
                                               "loopEnd",     "release"};

// A live field alone would set its stored twin, too: the two are given together or not at all.
std::vector<std::string_view> twinsToSay(const InstrumentSettings& settings) {
    const InstrumentSettings defaults;
    std::vector<std::string_view> names;
    const auto pair = [&](auto live, auto stored, std::string_view liveName, std::string_view storedName) {
        if (settings.*live != defaults.*live || settings.*stored != defaults.*stored)
            names.insert(names.end(), {liveName, storedName});
    };
    using S = InstrumentSettings;
    pair(&S::streamBufferFrames, &S::streamBufferFramesStored, "streamBufferFrames",
         "streamBufferFramesStored");
    names.insert(names.end(), {"sixteenBit", "sixteenBitStored"}); // left out, the recordings would decide
    pair(&S::streaming, &S::streamingStored, "streaming", "streamingStored");
    pair(&S::polyphony, &S::polyphonyStored, "polyphony", "polyphonyStored");
    return names;
}

bool isInRange(const InstrumentFile& file) {
    const auto holds = [](const auto& entry) { return isInRange(layoutOf(entry.record), &entry.record); };
    return isInRange(layoutOf(file.settings), &file.settings) &&
           std::all_of(file.groups.begin(), file.groups.end(), [&](const GroupEntry& group) {
               return holds(group) && std::all_of(group.zones.begin(), group.zones.end(), holds);
           });
}

Json storageToJson(std::uint8_t storage) {
    if (storage == format::External) return "external";
    if (storage == format::Embedded) return "embedded";
    return storage;
}

void addHeader(Json& json, const InstrumentFile& file, const FolderFiles& files) {
    json["format"] = instrumentJsonFormat;
    if (!std::equal(std::begin(file.magic), std::end(file.magic), format::magic))
        json["magic"] = {{"hex", toHex(file.magic, sizeof file.magic)}};
    json["version"] = file.version;
    if (!isInRange(file)) json["oddValues"] = true;
    json["storage"] = storageToJson(file.storage);
    json["name"] = textToJson(file.name);
    json["title"] = textToJson(file.title);
    json["text"] = textToJson(file.remark);
    if (!files.layoutSource.empty())
        json["layoutSource"] = files.layoutSource;
    else
        json["layout"] = files.layout; // also when there is none: left out, it would be the built-in one
    if (!file.layout.terminated) json["layoutTerminated"] = false;
    if (!files.panel.empty()) json["panel"] = files.panel;
    if (file.imageSize < 0) json["imageSize"] = file.imageSize;
    for (const StoredText& licence : file.licences)
        json["licence"].push_back(textToJson(licence));
    if (file.licenceCount < 0) json["licenceCount"] = file.licenceCount;
    json["settings"] = recordToJson(layoutOf(file.settings), &file.settings, twinsToSay(file.settings));
}

Json groupToJson(const GroupEntry& group) {
    Json json = {{"name", textToJson(group.name)}};
    json["settings"] = recordToJson(layoutOf(group.record), &group.record);
    json["zones"] = Json::array();
    for (const ZoneEntry& zone : group.zones)
        json["zones"].push_back(
            {{"sample", textToJson(zone.sample)},
             {"settings", recordToJson(layoutOf(zone.record), &zone.record, fieldsFromWave)}});
    if (group.zoneCount < 0) json["zoneCount"] = group.zoneCount;
    return json;
}

Json sampleToJson(const SampleBlock& block, const FolderFiles::Sample& sample) {
    Json json = {{"name", textToJson({block.name, true})}};
    if (!sample.file.empty()) json["file"] = sample.file;
    if (sample.raw) {
        json["raw"] = true;
        json["bytesPerSample"] = block.header.bytesPerSample;
        json["sampleRate"] = block.header.sampleRate;
        json["channels"] = block.header.channels;
        json["frames"] = block.header.frames;
    }
    if (block.header.reserved != 0) json["reserved"] = block.header.reserved;
    return json;
}

} // namespace

Json modelToJson(const InstrumentFile& file, const FolderFiles& files,
                 const std::vector<std::uint8_t>& trailing) {
    Json json;
    addHeader(json, file, files);
    json["groups"] = Json::array();
    for (const GroupEntry& group : file.groups)
        json["groups"].push_back(groupToJson(group));
    if (file.groupCount < 0) json["groupCount"] = file.groupCount;
    for (std::size_t i = 0; i < file.blocks.size(); ++i)
        json["samples"].push_back(sampleToJson(file.blocks[i], files.samples[i]));
    if (!trailing.empty()) json["trailing"] = toHex(trailing.data(), trailing.size());
    return json;
}

} // namespace zarno
