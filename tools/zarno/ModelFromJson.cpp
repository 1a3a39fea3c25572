// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/ZoneBuilder.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/ModelJson.h"
#include "tools/zarno/RecordJson.h"
#include "tools/zarno/SampleFolder.h"

#include "platform/File.h"
#include "platform/Paths.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace zarno {
namespace {

constexpr std::int32_t middleC = 60;

std::vector<std::uint8_t> readWholeFile(const std::string& path) {
    File file(path);
    if (!file.isOpen()) throw MakerError(path, "the file cannot be read");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.size()));
    if (file.read(bytes.data(), bytes.size()) != bytes.size())
        throw MakerError(path, "the file cannot be read");
    return bytes;
}

Json parseJson(const std::string& path) {
    const auto bytes = readWholeFile(path);
    try {
        return Json::parse(bytes.begin(), bytes.end());
    } catch (const Json::exception& error) {
        const std::string what = error.what(); // "[json.exception...] parse error at line 3, column 5: ..."
        throw MakerError(path, what.substr(std::min(what.size(), what.find("] ") + 2)));
    }
}

std::string indexed(const std::string& list, std::size_t index) {
    return list + '[' + std::to_string(index) + ']';
}

class FolderReader {
  public:
    FolderReader(const std::string& folder, const Json& json, const PackOptions& options,
                 std::vector<std::string>& missing)
        : folder_(folder)
        , root_(json, "")
        , samples_(folder, root_.list("samples"))
        , options_(options)
        , missing_(missing) {}

    Model read();

  private:
    void magic();
    void storage();
    void header();
    void layout();
    void settings();
    GroupEntry group(const Json& json, const std::string& where);
    ZoneEntry zone(const Json& json, const std::string& where);
    ZoneRecord startRecord(const std::string& sampleName, const JsonObject& settings);
    std::size_t blockOf(const std::string& sampleName);
    bool isEmbedded() const { return model_.file.isEmbedded(); }
    // A count may differ from its list only by being negative.
    std::int32_t count(JsonObject& object, const std::string& key, std::size_t real);

    const std::string& folder_;
    JsonObject root_;
    SampleFolder samples_;
    PackOptions options_;
    std::vector<std::string>& missing_;
    std::unordered_set<std::string> reported_;
    Model model_;
    std::unordered_map<std::string, std::size_t> blocks_;
};

std::int32_t FolderReader::count(JsonObject& object, const std::string& key, std::size_t real) {
    if (real > INT32_MAX) throw MakerError(object.whereOf(key), "these are too many");
    const std::int32_t given = object.int32(key, static_cast<std::int32_t>(real));
    if (given != static_cast<std::int32_t>(real) && (given > 0 || real > 0))
        throw MakerError(object.whereOf(key), "a count of its own can only be negative, with an empty list");
    return given;
}

void FolderReader::magic() {
    const StoredText given =
        root_.has("magic") ? root_.storedText("magic") : StoredText{{format::magic, 4}, true};
    if (given.bytes.size() != sizeof model_.file.magic) throw MakerError("magic", "this must be 4 bytes");
    std::copy(given.bytes.begin(), given.bytes.end(), model_.file.magic);
}

void FolderReader::storage() {
    const Json* given = root_.find("storage");
    const bool isText = given && given->is_string();
    const std::string text = isText ? given->get<std::string>() : "external";
    if (given && !isText)
        model_.file.storage = static_cast<std::uint8_t>(root_.integer("storage", 0, 0, 255));
    else if (text == "external" || text == "embedded")
        model_.file.storage = text == "embedded" ? format::Embedded : format::External;
    else
        throw MakerError("storage", "this must be \"external\" or \"embedded\"");
    if (options_.embed && !isEmbedded()) model_.file.storage = format::Embedded;
}

// Not named: the built-in one; named "": none at all.
void FolderReader::layout() {
    StoredText& layout = model_.file.layout;
    if (root_.has("layout")) {
        const std::string name = root_.text("layout");
        const auto bytes = name.empty() ? std::vector<std::uint8_t>() : readWholeFile(joinPath(folder_, name));
        layout.bytes.assign(bytes.begin(), bytes.end());
    }
    layout.terminated = !root_.has("layoutTerminated") || root_.flag("layoutTerminated");
    root_.find("layoutTerminated");
}

void FolderReader::header() {
    InstrumentFile& file = model_.file;
    if (root_.text("format") != instrumentJsonFormat)
        throw MakerError("format", "this must be \"" + std::string(instrumentJsonFormat) + '"');
    magic();
    file.version = root_.int32("version", format::newestVersion);
    storage();
    file.name = root_.storedText("name");
    // A library lists no instrument without a title.
    file.title = root_.has("title") ? root_.storedText("title") : file.name;
    file.remark = root_.storedText("text");
    layout();
    if (const std::string panel = root_.text("panel"); !panel.empty())
        file.image = readWholeFile(joinPath(folder_, panel));
    file.imageSize = count(root_, "imageSize", file.image.size());
    const Json& licences = root_.list("licence");
    for (std::size_t i = 0; i < licences.size(); ++i)
        file.licences.push_back(textFromJson(licences[i], indexed("licence", i)));
    file.licenceCount = count(root_, "licenceCount", file.licences.size());
    settings();
}

void FolderReader::settings() {
    InstrumentSettings& settings = model_.file.settings;
    const Json* given = root_.find("settings");
    if (!given) return;
    recordFromJson(layoutOf(settings), *given, &settings, "settings");
    const auto twin = [&](const char* live, const char* stored, RelaxedInt& from, RelaxedInt& to) {
        if (given->contains(live) && !given->contains(stored)) to = from.load();
    };
    twin("streamBufferFrames", "streamBufferFramesStored", settings.streamBufferFrames,
         settings.streamBufferFramesStored);
    twin("sixteenBit", "sixteenBitStored", settings.sixteenBit, settings.sixteenBitStored);
    twin("streaming", "streamingStored", settings.streaming, settings.streamingStored);
    twin("polyphony", "polyphonyStored", settings.polyphony, settings.polyphonyStored);
}

std::size_t FolderReader::blockOf(const std::string& sampleName) {
    const auto [found, isNew] = blocks_.try_emplace(sampleName, model_.file.blocks.size());
    if (isNew) {
        const bool sixteenBit = model_.file.settings.sixteenBitStored != 0;
        auto made = samples_.makeBlock(sampleName, sixteenBit);
        model_.file.blocks.push_back(std::move(made.block));
        model_.frames.push_back(std::move(made.frames));
    }
    return found->second;
}

// What the wave says, so far as the folder leaves it out.
ZoneRecord FolderReader::startRecord(const std::string& sampleName, const JsonObject& settings) {
    const auto formats = isEmbedded() ? WaveFormats::IntegerAndFloat : WaveFormats::Integer;
    const auto wave = samples_.wave(sampleName, formats);
    ZoneRecord record;
    if (wave) {
        record = recordFromSound(*wave);
        if (!wave->hasRootNote()) record.rootKey = middleC;
        return record;
    }
    for (const char* field : {"rootKey", "endFrame", "loopStart", "loopEnd"})
        if (!settings.has(field))
            throw MakerError(settings.whereOf(field), "this is missing, and there is no wave \"" +
                                                          sampleName + "\" that could say it");
    if (!isEmbedded() && reported_.insert(sampleName).second) missing_.push_back(sampleName);
    return record;
}

ZoneEntry FolderReader::zone(const Json& json, const std::string& where) {
    static const Json none = Json::object();
    JsonObject object(json, where);
    ZoneEntry entry;
    entry.sample = textFromJson(object.at("sample"), object.whereOf("sample"));
    const Json* given = object.find("settings");
    const JsonObject settings(given ? *given : none, object.whereOf("settings"));
    const std::string sampleName(entry.sample.text());
    entry.record = startRecord(sampleName, settings);
    entry.record.highVelocity = 127;
    recordFromJson(layoutOf(entry.record), given ? *given : none, &entry.record, object.whereOf("settings"));
    if (!settings.has("lowKey")) entry.record.lowKey = entry.record.rootKey;
    if (!settings.has("highKey")) entry.record.highKey = entry.record.rootKey;
    if (isEmbedded()) entry.block = blockOf(sampleName);
    object.finish();
    return entry;
}

GroupEntry FolderReader::group(const Json& json, const std::string& where) {
    JsonObject object(json, where);
    GroupEntry entry;
    entry.name = object.storedText("name");
    if (const Json* given = object.find("settings"))
        recordFromJson(layoutOf(entry.record), *given, &entry.record, object.whereOf("settings"));
    const Json& zones = object.list("zones");
    for (std::size_t i = 0; i < zones.size(); ++i)
        entry.zones.push_back(zone(zones[i], indexed(object.whereOf("zones"), i)));
    entry.zoneCount = count(object, "zoneCount", entry.zones.size());
    object.finish();
    return entry;
}

Model FolderReader::read() {
    header();
    const Json& groups = root_.list("groups");
    for (std::size_t i = 0; i < groups.size(); ++i)
        model_.file.groups.push_back(group(groups[i], indexed("groups", i)));
    model_.file.groupCount = count(root_, "groupCount", model_.file.groups.size());
    model_.trailing = root_.hex("trailing");
    root_.finish();
    return std::move(model_);
}

} // namespace

Model readInstrumentFolder(const std::string& folder, const PackOptions& options,
                           std::vector<std::string>& missing) {
    const std::string absolute = absolutePath(folder);
    const std::string path = joinPath(absolute, std::string(instrumentJsonName));
    const Json json = parseJson(path);
    try {
        return FolderReader(absolute, json, options, missing).read();
    } catch (const MakerError& error) {
        throw MakerError(path, error.what());
    }
}

} // namespace zarno
