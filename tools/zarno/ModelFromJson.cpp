// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/ZoneBuilder.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/ModelJson.h"
#include "tools/zarno/PanelSource.h"
#include "tools/zarno/RecordJson.h"
#include "tools/zarno/SampleFolder.h"
#include "tools/zarno/WaveCopy.h"

#include "platform/File.h"
#include "platform/Paths.h"

#include <algorithm>
#include <cstdio>
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

// The parser says "[json.exception...] parse error at line 3, column 5: ..."
[[noreturn]] void throwSyntaxError(const std::string& path, const std::string& what) {
    int line = 1, column = 1;
    const auto place = what.find(" at line ");
    const auto why = what.find(": ", place);
    if (place == std::string::npos || why == std::string::npos ||
        std::sscanf(what.c_str() + place, " at line %d, column %d", &line, &column) != 2)
        throw MakerError(path, what);
    throw MakerErrors(path,
                      {path + ':' + std::to_string(line) + ':' + std::to_string(column) + what.substr(why)});
}

Json parseJson(const std::string& path, std::string_view text) {
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        throwSyntaxError(path, error.what());
    }
}

std::string indexed(const std::string& list, std::size_t index) {
    return list + '[' + std::to_string(index) + ']';
}

class FolderReader {
  public:
    FolderReader(const std::string& folder, const Json& json, const PackOptions& options, PackNotes& notes,
                 JsonFaults& faults)
        : folder_(folder)
        , faults_(faults)
        , root_(json, "", faults)
        , samples_(folder, root_.list("samples"), options, faults)
        , options_(options)
        , notes_(notes) {}

    /// Of use only when there were no faults.
    Model read();

  private:
    void magic();
    void storage();
    void header();
    void layout();
    std::vector<std::uint8_t> file(const std::string& key, const std::string& name);
    void settings();
    void keepWidth();
    GroupEntry group(const Json& json, const std::string& where);
    ZoneEntry zone(const Json& json, const std::string& where);
    ZoneRecord startRecord(const std::string& sampleName, const JsonObject& settings);
    void prepareExternal(ZoneEntry& entry);
    void remarkOnce(const std::string& sampleName, const std::string& remark);
    std::size_t blockOf(const std::string& sampleName);
    bool isEmbedded() const { return model_.file.isEmbedded(); }
    // A count may differ from its list only by being negative.
    std::int32_t count(JsonObject& object, const std::string& key, std::size_t real);

    const std::string& folder_;
    JsonFaults& faults_;
    JsonObject root_;
    SampleFolder samples_;
    PackOptions options_;
    PackNotes& notes_;
    Ranges ranges_ = Ranges::Checked;
    std::unordered_set<std::string> reported_;
    Model model_;
    std::unordered_map<std::string, std::size_t> blocks_;
};

std::int32_t FolderReader::count(JsonObject& object, const std::string& key, std::size_t real) {
    if (real > INT32_MAX) object.fault(key, "these are too many");
    const std::int32_t given = object.int32(key, static_cast<std::int32_t>(real));
    if (given != static_cast<std::int32_t>(real) && (given > 0 || real > 0))
        object.fault(key, "a count of its own can only be negative, with an empty list");
    return given;
}

void FolderReader::magic() {
    const StoredText given =
        root_.has("magic") ? root_.storedText("magic") : StoredText{{format::magic, 4}, true};
    if (given.bytes.size() != sizeof model_.file.magic) return root_.fault("magic", "this must be 4 bytes");
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
        root_.fault("storage", "this must be \"external\" or \"embedded\"");
    if (options_.embed && !isEmbedded()) model_.file.storage = format::Embedded;
}

// Not named: the built-in one; named "": none at all.
void FolderReader::layout() {
    StoredText& layout = model_.file.layout;
    if (root_.has("layout")) {
        const std::string name = root_.text("layout");
        const auto bytes = file("layout", name);
        layout.bytes.assign(bytes.begin(), bytes.end());
    }
    if (const std::string source = root_.text("layoutSource"); !source.empty()) {
        const auto bytes = file("layoutSource", source);
        const std::string_view xml(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        faults_.guard([&] {
            layout.bytes = layoutFromSource(xml, joinPath(folder_, source), [&](const std::string& picture) {
                return readWholeFile(joinPath(folder_, picture));
            });
        });
    }
    layout.terminated = !root_.has("layoutTerminated") || root_.flag("layoutTerminated");
}

// The bytes of a file that the member `key` names; none for an empty name.
std::vector<std::uint8_t> FolderReader::file(const std::string& key, const std::string& name) {
    std::vector<std::uint8_t> bytes;
    if (name.empty()) return bytes;
    try {
        bytes = readWholeFile(joinPath(folder_, name));
    } catch (const MakerError& error) {
        root_.fault(key, error.what());
    }
    return bytes;
}

void FolderReader::header() {
    InstrumentFile& file = model_.file;
    if (root_.text("format") != instrumentJsonFormat)
        root_.fault("format", "this must be \"" + std::string(instrumentJsonFormat) + '"');
    for (const char* optional : {"magic", "title", "layout", "layoutTerminated"})
        root_.find(optional); // known, also where they are not read
    if (root_.flag("oddValues")) ranges_ = Ranges::Open;
    magic();
    file.version = root_.int32("version", format::newestVersion);
    storage();
    file.name = root_.storedText("name");
    // A library lists no instrument without a title.
    file.title = root_.has("title") ? root_.storedText("title") : file.name;
    file.remark = root_.storedText("text");
    layout();
    file.image = this->file("panel", root_.text("panel"));
    file.imageSize = count(root_, "imageSize", file.image.size());
    const Json& licences = root_.list("licence");
    for (std::size_t i = 0; i < licences.size(); ++i)
        file.licences.push_back(textFromJson(licences[i], indexed("licence", i), faults_));
    file.licenceCount = count(root_, "licenceCount", file.licences.size());
    settings();
}

void FolderReader::settings() {
    InstrumentSettings& settings = model_.file.settings;
    const Json* given = root_.find("settings");
    if (!given) return;
    recordFromJson(layoutOf(settings), *given, &settings, "settings", ranges_, faults_);
    const auto twin = [&](const char* live, const char* stored, RelaxedInt& from, RelaxedInt& to) {
        if (given->contains(live) && !given->contains(stored)) to = from.load();
    };
    twin("streamBufferFrames", "streamBufferFramesStored", settings.streamBufferFrames,
         settings.streamBufferFramesStored);
    twin("sixteenBit", "sixteenBitStored", settings.sixteenBit, settings.sixteenBitStored);
    twin("streaming", "streamingStored", settings.streaming, settings.streamingStored);
    twin("polyphony", "polyphonyStored", settings.polyphony, settings.polyphonyStored);
}

// What the maker does not decide is decided for the recordings: those with more than 16 bits keep them.
void FolderReader::keepWidth() {
    const Json* given = root_.find("settings");
    if (given && (given->contains("sixteenBit") || given->contains("sixteenBitStored"))) return;
    for (const Json& group : root_.list("groups")) {
        if (!group.is_object() || !group.contains("zones")) continue;
        for (const Json& zone : group["zones"]) {
            if (!zone.is_object() || !zone.contains("sample") || !zone["sample"].is_string()) continue;
            const auto name = zone["sample"].get<std::string>();
            const auto file = samples_.sound(name).file;
            if (!file || file->bytesPerSample() <= 2) continue;
            model_.file.settings.sixteenBit = model_.file.settings.sixteenBitStored = 0;
            notes_.remarks.push_back(
                "\"" + name +
                "\" has more than 16 bits, so the samples are kept as 32-bit floats; set "
                "\"sixteenBit\" to 1 for half the memory, or to 0 to say so");
            return;
        }
    }
}

void FolderReader::remarkOnce(const std::string& sampleName, const std::string& remark) {
    if (reported_.insert(sampleName).second) notes_.remarks.push_back('"' + sampleName + "\" " + remark);
}

std::size_t FolderReader::blockOf(const std::string& sampleName) {
    const auto [found, isNew] = blocks_.try_emplace(sampleName, model_.file.blocks.size());
    if (isNew) {
        const bool sixteenBit = model_.file.settings.sixteenBitStored != 0;
        auto made = samples_.makeBlock(sampleName, sixteenBit);
        model_.file.blocks.push_back(std::move(made.block));
        model_.frames.push_back(std::move(made.frames));
        const SampleFolder::Sound& sound = samples_.sound(sampleName);
        if (sound.file && !sound.isWave) remarkOnce(sampleName, "is decoded into the instrument");
    }
    return found->second;
}

// What the recording says, so far as the folder leaves it out.
ZoneRecord FolderReader::startRecord(const std::string& sampleName, const JsonObject& settings) {
    ZoneRecord record;
    if (const auto file = samples_.sound(sampleName).file) {
        record = recordFromSound(*file);
        if (!file->hasRootNote()) record.rootKey = middleC;
        return record;
    }
    for (const char* field : {"rootKey", "endFrame", "loopStart", "loopEnd"})
        if (!settings.has(field)) {
            faults_.add(settings.whereOf(field),
                        "this is missing, and there is no wave \"" + sampleName + "\" that could say it");
            return record;
        }
    if (!isEmbedded() && reported_.insert(sampleName).second) notes_.missing.push_back(sampleName);
    return record;
}

// A recording that players cannot read is copied into a wave that they can.
void FolderReader::prepareExternal(ZoneEntry& entry) {
    const std::string name(entry.sample.text());
    const SampleFolder::Sound& sound = samples_.sound(name);
    if (!sound.file || sound.playsExternally) return;
    const bool leavesFolder =
        name.find("..") != std::string::npos || name.starts_with('\\') || (name.size() > 1 && name[1] == ':');
    if (leavesFolder)
        throw MakerError({}, "this is no plain wave, and no copy is written outside the folder");
    const std::string copy = nameOfCopy(name);
    entry.sample = {copy, true};
    if (reported_.contains(name)) return;
    remarkOnce(name, "is no plain wave, which players need: they get \"" + copy + "\" with " +
                         std::to_string(bitsOfCopy(*sound.file)) + " bits");
    model_.waves.push_back({copy, [file = sound.file, path = samples_.pathOf(name)](std::ostream& out) {
                                writeCopy(*file, path, out);
                            }});
}

ZoneEntry FolderReader::zone(const Json& json, const std::string& where) {
    static const Json none = Json::object();
    JsonObject object(json, where, faults_);
    ZoneEntry entry;
    const Json& sample = object.at("sample");
    const Json* given = object.find("settings");
    const std::string settingsPlace = object.whereOf("settings");
    object.finish();
    if (sample.is_null()) return entry;
    entry.sample = textFromJson(sample, object.whereOf("sample"), faults_);
    const JsonObject settings(given ? *given : none, settingsPlace, faults_);
    const std::string sampleName(entry.sample.text());
    entry.record = startRecord(sampleName, settings);
    entry.record.highVelocity = 127;
    if (given) recordFromJson(layoutOf(entry.record), *given, &entry.record, settingsPlace, ranges_, faults_);
    if (!settings.has("lowKey")) entry.record.lowKey = entry.record.rootKey;
    if (!settings.has("highKey")) entry.record.highKey = entry.record.rootKey;
    try {
        if (isEmbedded())
            entry.block = blockOf(sampleName);
        else
            prepareExternal(entry);
    } catch (const MakerError& error) {
        object.fault("sample", error.what());
    }
    return entry;
}

GroupEntry FolderReader::group(const Json& json, const std::string& where) {
    JsonObject object(json, where, faults_);
    GroupEntry entry;
    entry.name = object.storedText("name");
    if (const Json* given = object.find("settings"))
        recordFromJson(layoutOf(entry.record), *given, &entry.record, object.whereOf("settings"), ranges_,
                       faults_);
    const Json& zones = object.list("zones");
    for (std::size_t i = 0; i < zones.size(); ++i)
        entry.zones.push_back(zone(zones[i], indexed(object.whereOf("zones"), i)));
    entry.zoneCount = count(object, "zoneCount", entry.zones.size());
    object.finish();
    return entry;
}

Model FolderReader::read() {
    header();
    keepWidth();
    const Json& groups = root_.list("groups");
    for (std::size_t i = 0; i < groups.size(); ++i)
        model_.file.groups.push_back(group(groups[i], indexed("groups", i)));
    model_.file.groupCount = count(root_, "groupCount", model_.file.groups.size());
    model_.trailing = root_.hex("trailing");
    root_.finish();
    return std::move(model_);
}

} // namespace

Model readInstrumentFolder(const std::string& folder, const PackOptions& options, PackNotes& notes) {
    const std::string absolute = absolutePath(folder);
    const std::string path = joinPath(absolute, std::string(instrumentJsonName));
    const auto bytes = readWholeFile(path);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const Json json = parseJson(path, text);
    JsonFaults faults;
    Model model = FolderReader(absolute, json, options, notes, faults).read();
    faults.throwIfAny(path, text);
    return model;
}

} // namespace zarno
