// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/InstrumentLoader.h"

#include "data/Bytes.h"
#include "data/load/InstrumentFile.h"
#include "data/load/LicenceCheck.h"
#include "data/load/SamplePath.h"
#include "data/load/ZoneBuilder.h"
#include "engine/ZInstrument.h"
#include "platform/File.h"
#include "platform/Paths.h"

#include <new>

namespace zarno {
namespace {

constexpr int failedSearchLimit = 3;

// Keeps the disk thread out for the time of a load, unless the caller does already.
class BusyMark {
  public:
    explicit BusyMark(ZInstrument& instrument)
        : instrument_(instrument)
        , wasBusy_(instrument.isLoading()) {
        instrument_.setLoading(true);
    }
    ~BusyMark() { instrument_.setLoading(wasBusy_); }
    BusyMark(const BusyMark&) = delete;
    BusyMark& operator=(const BusyMark&) = delete;

  private:
    ZInstrument& instrument_;
    const bool wasBusy_;
};

// One load. The steps are called in the order in which they stand.
class Load {
  public:
    Load(ZInstrument& instrument, const std::string& path, LoadResult& result)
        : instrument_(instrument)
        , path_(path)
        , instrumentPath_(toBackslashForm(path))
        , result_(result) {}

    bool readFile();
    void fillHeader();
    bool makeGroups();
    void finish();

  private:
    bool fail(const char* reason);
    bool makeZone(ZGroup& group, const GroupEntry& entry, std::size_t zoneIndex, std::size_t groupIndex);
    std::unique_ptr<ZZone> openZone(const std::string& sampleName, const std::string& samplePath,
                                    const ZoneEntry& entry);
    std::unique_ptr<ZZone> locateElsewhere(const std::string& samplePath);
    bool progress(const GroupEntry& group, const std::string& sample, std::size_t zoneIndex,
                  std::size_t groupIndex);

    ZInstrument& instrument_;
    const std::string& path_;
    const std::string instrumentPath_; // in backslash form
    LoadResult& result_;
    std::shared_ptr<const File> file_;
    InstrumentFile contents_;
    ZoneBuilder builder_{instrument_.settings()};
    int failedSearches_ = 0;
};

bool Load::fail(const char* reason) {
    result_.reason = reason;
    return false;
}

bool Load::readFile() {
    file_ = std::make_shared<const File>(path_);
    if (!file_->isOpen()) return fail(describe(InstrumentFile::Refusal::CannotOpen));
    instrument_.clear();
    Bytes bytes(*file_);
    const InstrumentFile::Refusal refusal = contents_.parse(bytes);
    if (!contents_.isEmbedded()) file_.reset();
    return refusal == InstrumentFile::Refusal::None || fail(describe(refusal));
}

void Load::fillHeader() {
    InstrumentTexts& texts = instrument_.texts();
    texts.path = path_;
    texts.name = contents_.name.text();
    texts.title = contents_.title.text();
    texts.remark = contents_.remark.text();
    texts.panelImage = std::move(contents_.image);
    texts.layout = contents_.layout.text();
    for (const StoredText& licence : contents_.licences)
        texts.licences.emplace_back(licence.text());
    if (contents_.incomplete) {
        texts.incompleteReason = contents_.incomplete->reason;
        texts.incompleteAt = contents_.incomplete->offset;
    }

    InstrumentSettings& settings = instrument_.settings();
    settings = contents_.settings;
    settings.streamBufferFrames = settings.streamBufferFramesStored.load();
    settings.sixteenBit = settings.sixteenBitStored.load();
    settings.streaming = settings.streamingStored.load();
    settings.polyphony = settings.polyphonyStored.load();
    instrument_.rebuildPool();
}

bool Load::makeGroups() {
    for (std::size_t g = 0; g < contents_.groups.size(); ++g) {
        const GroupEntry& entry = contents_.groups[g];
        ZGroup& group = instrument_.createGroup(std::string(entry.name.text()));
        group.record = entry.record;
        for (std::size_t z = 0; z < entry.zones.size(); ++z)
            if (!makeZone(group, entry, z, g)) return fail("the load was cancelled");
        instrument_.prepareZones(group);
    }
    return true;
}

// False when the user cancels.
bool Load::makeZone(ZGroup& group, const GroupEntry& entry, std::size_t zoneIndex, std::size_t groupIndex) {
    const ZoneEntry& stored = entry.zones[zoneIndex];
    const std::string sampleName(stored.sample.text());
    const std::string samplePath = fromBackslashForm(resolveSamplePath(sampleName, instrumentPath_));
    auto zone = openZone(sampleName, samplePath, stored);
    if (!progress(entry, sampleName, zoneIndex, groupIndex)) return false;

    const bool elsewhere = !zone->valid;
    if (elsewhere) zone = locateElsewhere(samplePath);
    if (!zone) return true;
    zone->record = stored.record;
    // On purpose a sample found elsewhere keeps its points: it may be a shorter stand-in.
    if (!elsewhere) clampPoints(zone->record, zone->lengthInFrames);
    builder_.recordChanged(*zone);
    group.addZone(std::move(zone));
    return true;
}

std::unique_ptr<ZZone> Load::openZone(const std::string& sampleName, const std::string& samplePath,
                                      const ZoneEntry& entry) {
    if (!contents_.isEmbedded()) return builder_.fromWaveFile(samplePath);
    return builder_.fromBlock(sampleName, file_, contents_.blocks[entry.block].position);
}

// Asks for a replacement. Searches that find nothing are counted, and after a few the user is left in peace.
std::unique_ptr<ZZone> Load::locateElsewhere(const std::string& samplePath) {
    ZSEDelegate* delegate = instrument_.delegate();
    if (delegate && failedSearches_ < failedSearchLimit) {
        char reply[ZSEDelegate::replyBytes] = {};
        delegate->reportMessage(samplePath.c_str(), reply);
        reply[sizeof reply - 1] = 0;
        if (reply[0] != 0) {
            auto zone = builder_.fromWaveFile(reply);
            if (zone->valid) return zone;
        }
        ++failedSearches_;
    }
    result_.missing.push_back(samplePath);
    return nullptr;
}

bool Load::progress(const GroupEntry& group, const std::string& sample, std::size_t zoneIndex,
                    std::size_t groupIndex) {
    ZSEDelegate* delegate = instrument_.delegate();
    if (!delegate) return true;
    const auto groups = static_cast<float>(contents_.groupCount);
    const float inGroup = static_cast<float>(zoneIndex) / static_cast<float>(group.zoneCount);
    const float fraction = inGroup / groups + static_cast<float>(groupIndex) / groups;
    return delegate->loadProgress(fraction, std::string(group.name.text()).c_str(), sample.c_str());
}

void Load::finish() {
    if (!instrument_.groups().empty()) instrument_.activateGroup(instrument_.groups().front().get());
    instrument_.applySettings();
    if (instrument_.delegate()) instrument_.delegate()->settingsChanged();
}

} // namespace

LoadResult loadInstrument(ZInstrument& instrument, const std::string& path, const std::string& enteredText,
                          LicenceCheck& licence) {
    LoadResult result;
    try {
        const BusyMark busy(instrument);
        Load load(instrument, path, result);
        if (!load.readFile()) return result;
        load.fillHeader();
        if (!licence.allows(instrument.texts().licences, enteredText, instrument.delegate())) {
            result.reason = "the licence does not allow it";
            return result;
        }
        if (!load.makeGroups()) return result;
        load.finish();
        result.loaded = true;
    } catch (const std::bad_alloc&) {
        result.reason = "there is not enough memory";
    }
    return result;
}

LoadResult loadInstrument(ZInstrument& instrument, const std::string& path) {
    AllowEverything licence;
    return loadInstrument(instrument, path, {}, licence);
}

} // namespace zarno
