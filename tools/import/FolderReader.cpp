// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Limits.h"
#include "tools/import/LowerCase.h"
#include "tools/import/NamePattern.h"
#include "tools/import/Readers.h"
#include "tools/import/SamplePool.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <tuple>

namespace zarno {
namespace {

namespace fs = std::filesystem;

constexpr int firstDrumKey = 36, lastKey = 127;
constexpr int lowestPlausibleKey = 12; // smaller numbers in names count something
constexpr double usualRelease = 100.0; // ms

bool isSoundFile(const fs::path& path) {
    static const std::set<std::string> extensions = {".wav", ".aif",  ".aiff", ".aifc", ".flac",
                                                     ".ogg", ".oga",  ".w64",  ".caf",  ".au",
                                                     ".mp3", ".opus", ".rf64"};
    return extensions.contains(lowerCase(utf8Text(path.extension())));
}

std::vector<fs::path> findSoundFiles(const std::string& folder) {
    std::vector<fs::path> files;
    std::error_code failed;
    fs::recursive_directory_iterator entry(filePath(folder), fs::directory_options::skip_permission_denied,
                                           failed);
    for (const fs::recursive_directory_iterator end; !failed && entry != end; entry.increment(failed)) {
        std::error_code unknown;
        if (entry->is_regular_file(unknown) && isSoundFile(entry->path())) files.push_back(entry->path());
        if (files.size() > limits::importedFiles) throw MakerError(folder, "there are too many sound files");
    }
    if (failed) throw MakerError(folder, "the folder cannot be read");
    std::sort(files.begin(), files.end());
    return files;
}

// A file on its way to a zone.
struct Recording {
    NameParts parts;
    std::string sound; // folder and name: what sounds like it
    std::string place;
    SamplePool::Entry sample;
    std::optional<int> key;
    ImportedZone zone;
};

class FolderReader {
  public:
    FolderReader(const std::string& folder, const FolderOptions& options, ImportReport& report)
        : folder_(folder)
        , pattern_(options.pattern)
        , report_(report) {}

    ImportedInstrument read();

  private:
    void addFile(const fs::path& file);
    void chooseKeys();
    void layOutAsDrums();
    void spreadKeys();
    void layerVelocities();
    void alternate();
    void fillZone(Recording& recording) const;

    const std::string& folder_;
    const NamePattern pattern_;
    ImportReport& report_;
    SamplePool pool_{report_};
    std::vector<Recording> recordings_;
    bool isDrums_ = false;
};

void FolderReader::addFile(const fs::path& file) {
    const fs::path relative = file.lexically_relative(filePath(folder_));
    Recording recording;
    recording.place = utf8Text(relative);
    const auto parts = pattern_.read(utf8Text(file.stem()));
    if (!parts) {
        report_.add("file name that does not fit the pattern", "left out", recording.place);
        return;
    }
    const auto sample = pool_.find(utf8Text(file), recording.place);
    if (!sample) return;
    recording.parts = *parts;
    recording.sample = *sample;
    const std::string parent = utf8Text(relative.parent_path());
    const char* gap = parent.empty() || parts->name.empty() ? "" : " ";
    recording.sound = lowerCase(parent + gap + parts->name);
    recordings_.push_back(std::move(recording));
}

// A note in the name counts most, then what the file says about itself, then numbers, if all names have one.
void FolderReader::chooseKeys() {
    const bool numbersAreKeys =
        std::all_of(recordings_.begin(), recordings_.end(), [](const Recording& recording) {
            const auto number = recording.parts.number;
            return recording.parts.key || (number && *number >= lowestPlausibleKey && *number <= lastKey);
        });
    for (Recording& recording : recordings_) {
        recording.key = recording.parts.key;
        if (!recording.key) recording.key = recording.sample.info->rootKey;
        if (!recording.key && numbersAreKeys) recording.key = recording.parts.number;
        if (!recording.key && recording.parts.number && !recording.parts.robin)
            recording.parts.robin = recording.parts.number; // "snare 2"
    }
    isDrums_ = std::none_of(recordings_.begin(), recordings_.end(), [](const Recording& r) { return r.key; });
}

// Nothing says a key: each sound gets one of its own.
void FolderReader::layOutAsDrums() {
    std::map<std::string, int> keys;
    for (const Recording& recording : recordings_)
        keys.try_emplace(recording.sound, firstDrumKey + static_cast<int>(keys.size()));
    for (Recording& recording : recordings_) {
        const int key = keys[recording.sound];
        recording.key = key;
        recording.zone.keys = {key, key};
        recording.zone.loop = LoopMode::OneShot;
    }
    std::erase_if(recordings_, [this](const Recording& recording) {
        if (*recording.key > lastKey) report_.add("sound above the last key", "left out", recording.place);
        return *recording.key > lastKey;
    });
}

// Each key of a sound reaches halfway to the next ones.
void FolderReader::spreadKeys() {
    std::erase_if(recordings_, [this](const Recording& recording) {
        if (!recording.key) report_.add("file without a key", "left out", recording.place);
        return !recording.key;
    });
    std::map<std::string, std::set<int>> keys;
    for (const Recording& recording : recordings_)
        keys[recording.sound].insert(*recording.key);
    if (keys.size() > 1)
        report_.add("sounds on the same keys", "all sound together, a group each", keys.begin()->first,
                    keys.size());
    for (Recording& recording : recordings_) {
        const auto& all = keys[recording.sound];
        const auto here = all.find(*recording.key);
        const auto next = std::next(here);
        recording.zone.keys.low = here == all.begin() ? 0 : (*std::prev(here) + *here) / 2 + 1;
        recording.zone.keys.high = next == all.end() ? lastKey : (*here + *next) / 2;
        if (recording.sample.info->keys) recording.zone.keys = *recording.sample.info->keys;
        if (keys.size() > 1) recording.zone.group = recording.sound;
    }
}

// Numbers up to 127 are the highest velocities of their layers; small ones only count layers.
void FolderReader::layerVelocities() {
    constexpr int smallestLimit = 100;
    std::map<std::pair<std::string, int>, std::set<int>> layers; // of a sound's key
    int highest = 0;
    for (const Recording& recording : recordings_) {
        const int velocity = recording.parts.velocity.value_or(0);
        layers[{recording.sound, *recording.key}].insert(velocity);
        highest = std::max(highest, velocity);
    }
    for (Recording& recording : recordings_) {
        const auto& all = layers[{recording.sound, *recording.key}];
        const auto here = all.find(recording.parts.velocity.value_or(0));
        const int index = static_cast<int>(std::distance(all.begin(), here)),
                  count = static_cast<int>(all.size());
        ImportedRange& range = recording.zone.velocities;
        if (highest >= smallestLimit) {
            range.low = here == all.begin() ? 0 : *std::prev(here) + 1;
            range.high = index + 1 == count ? 127 : *here;
        } else {
            range = {index * 128 / count, (index + 1) * 128 / count - 1};
        }
        if (count == 1 && recording.sample.info->velocities) range = *recording.sample.info->velocities;
    }
}

// What is left that sounds the same takes turns: by their numbers, else by their names.
void FolderReader::alternate() {
    std::map<std::tuple<std::string, int, ImportedRange>, std::vector<Recording*>> sets;
    for (Recording& recording : recordings_)
        sets[{recording.sound, *recording.key, recording.zone.velocities}].push_back(&recording);
    for (auto& [what, set] : sets) {
        if (set.size() == 1) continue;
        std::stable_sort(set.begin(), set.end(), [](const Recording* a, const Recording* b) {
            return a->parts.robin.value_or(0) < b->parts.robin.value_or(0);
        });
        for (std::size_t i = 0; i < set.size(); ++i)
            set[i]->zone.alternation = {ImportedAlternation::Kind::RoundRobin, static_cast<int>(i),
                                        static_cast<int>(set.size())};
    }
}

void FolderReader::fillZone(Recording& recording) const {
    const SoundFileInfo& info = *recording.sample.info;
    ImportedZone& zone = recording.zone;
    zone.sample = recording.sample.sample;
    zone.place = recording.place;
    zone.rootKey = *recording.key;
    zone.tune = info.tune;
    zone.volume = info.gain;
    zone.envelope.release = usualRelease;
    if (!info.hasLoop || isDrums_) return;
    zone.loop = LoopMode::Loop;
    zone.loopStart = info.loopStart;
    zone.loopEnd = info.loopEnd;
}

ImportedInstrument FolderReader::read() {
    for (const fs::path& file : findSoundFiles(folder_))
        addFile(file);
    if (recordings_.empty()) throw MakerError(folder_, "there are no sound files in it");
    chooseKeys();
    if (isDrums_)
        layOutAsDrums();
    else
        spreadKeys();
    layerVelocities();
    alternate();

    ImportedInstrument instrument;
    const fs::path folder = filePath(absolutePath(folder_));
    instrument.name = utf8Text(folder.has_filename() ? folder.filename() : folder.parent_path().filename());
    for (Recording& recording : recordings_) {
        fillZone(recording);
        instrument.zones.push_back(std::move(recording.zone));
    }
    instrument.samples = pool_.takeSamples();
    return instrument;
}

} // namespace

ImportedInstrument readSoundFolder(const std::string& folder, const FolderOptions& options,
                                   ImportReport& report) {
    return FolderReader(folder, options, report).read();
}

} // namespace zarno
