// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/InstrumentLoader.h"

#include "data/Bytes.h"
#include "data/Limits.h"
#include "data/load/InstrumentFile.h"
#include "data/load/LicenceCheck.h"
#include "data/load/ReadAhead.h"
#include "data/load/SamplePath.h"
#include "data/load/ZoneBuilder.h"
#include "data/stream/StreamPoints.h"
#include "engine/InstrumentContents.h"
#include "engine/ZInstrument.h"
#include "platform/File.h"
#include "platform/Paths.h"
#include "platform/ThreadRole.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <new>

namespace zarno {
namespace {

using Kind = LoadProblem::Kind;

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
    Load(InstrumentContents& target, const std::string& path, const LoadOptions& options, LoadResult& result)
        : target_(target)
        , path_(path)
        , instrumentPath_(toBackslashForm(path))
        , options_(options)
        , result_(result) {}

    bool readFile();
    void noteEarlyEnd();
    void fillHeader();
    bool isAllowed();
    bool makeGroups();

  private:
    bool fail(LoadProblem::Kind kind);
    std::string samplePath(const ZoneEntry& zone) const;
    void planReadAhead();
    bool makeZone(ZGroup& group, const GroupEntry& entry, std::size_t zoneIndex, std::size_t groupIndex);
    std::unique_ptr<ZZone> openZone(const std::string& sampleName, const std::string& samplePath,
                                    const ZoneEntry& entry);
    std::unique_ptr<ZZone> locateElsewhere(const std::string& samplePath);
    float fractionDone(const GroupEntry& group, std::size_t zoneIndex, std::size_t groupIndex) const;
    bool report() const;

    InstrumentContents& target_;
    const std::string& path_;
    const std::string instrumentPath_; // in backslash form
    const LoadOptions& options_;
    LoadResult& result_;
    std::shared_ptr<const File> file_;
    InstrumentFile contents_;
    ZoneBuilder builder_{target_.settings, [this] { return report(); }};
    ReadAhead ahead_;
    std::size_t zonesMade_ = 0;
    int failedSearches_ = 0;

    // What progress says at the moment.
    float fraction_ = 0.0f;
    std::string groupName_, sampleName_;
};

bool Load::fail(LoadProblem::Kind kind) {
    result_.problem = {};
    result_.problem.kind = kind;
    result_.problem.file = path_;
    return false;
}

bool Load::readFile() {
    file_ = std::make_shared<const File>(path_);
    if (!file_->isOpen()) return fail(pathExists(path_) ? Kind::CannotOpen : Kind::NotFound);
    result_.opened = true;
    if (options_.opened) options_.opened();
    Bytes bytes(*file_);
    const InstrumentFile::Refusal refusal = contents_.parse(bytes, options_.alive);
    if (!contents_.isEmbedded()) file_.reset();
    if (refusal == InstrumentFile::Refusal::NotAnInstrument) return fail(Kind::NotAnInstrument);
    if (refusal == InstrumentFile::Refusal::TooNew) {
        fail(Kind::TooNew);
        result_.problem.number = contents_.version;
        return false;
    }
    noteEarlyEnd();
    return true;
}

// The instrument loads all the same, as far as it could be read.
void Load::noteEarlyEnd() {
    if (!contents_.incomplete) return;
    using Cause = Incomplete::Cause;
    const Incomplete& incomplete = *contents_.incomplete;
    LoadProblem& problem = result_.problem;
    problem = {Kind::CutShort, path_, incomplete.offset, 0, incomplete.reason};
    if (incomplete.cause == Cause::ReadError) problem.kind = Kind::CannotRead;
    if (incomplete.cause == Cause::Limit)
        problem = {Kind::LimitExceeded, path_, incomplete.offset, limits::licenceTexts, "licence texts"};
}

void Load::fillHeader() {
    InstrumentTexts& texts = target_.texts;
    texts.path = path_;
    texts.name = contents_.name.text();
    texts.title = contents_.title.text();
    texts.remark = contents_.remark.text();
    texts.panelImage = std::move(contents_.image);
    // A layout that is there and empty is one all the same: the panel says that it cannot be read.
    if (!contents_.incomplete || !contents_.layout.bytes.empty()) texts.layout = contents_.layout.text();
    for (const StoredText& licence : contents_.licences)
        texts.licences.emplace_back(licence.text());
    if (contents_.incomplete) {
        texts.incompleteReason = contents_.incomplete->reason;
        texts.incompleteAt = contents_.incomplete->offset;
    }

    InstrumentSettings& settings = target_.settings;
    settings = contents_.settings;
    settings.streamBufferFrames = settings.streamBufferFramesStored.load();
    settings.sixteenBit = settings.sixteenBitStored.load();
    settings.streaming = settings.streamingStored.load();
    settings.polyphony = settings.polyphonyStored.load();
}

bool Load::isAllowed() {
    AllowEverything everything;
    LicenceCheck& check = options_.licence ? *options_.licence : everything;
    return check.allows(target_.texts.licences, options_.enteredText, options_.delegate) ||
           fail(Kind::NotLicensed);
}

// UTF-8 from here on, for opening, searching and telling. First, since in some code pages a backslash is the
// second byte of a letter.
std::string Load::samplePath(const ZoneEntry& zone) const {
    return fromBackslashForm(resolveSamplePath(toUtf8(zone.sample.text()), instrumentPath_));
}

// Preloads are small pieces of many files, or of one large file.
void Load::planReadAhead() {
    const InstrumentSettings& settings = target_.settings;
    if (settings.streaming == 0) return;
    const std::uint64_t stereoFrame = settings.sixteenBit != 0 ? 4 : 8;
    const std::uint64_t bytes = static_cast<std::uint64_t>(chunkFramesInUse(settings)) * stereoFrame;
    constexpr std::uint64_t furthestFrame = std::uint64_t{1} << 40;
    for (const GroupEntry& group : contents_.groups)
        for (const ZoneEntry& zone : group.zones) {
            const std::uint64_t start = std::min(zone.record.startFrame, furthestFrame) * stereoFrame;
            if (contents_.isEmbedded())
                ahead_.add(file_, contents_.blocks[zone.block].position + start, bytes);
            else
                ahead_.add(samplePath(zone), start, bytes);
        }
}

bool Load::makeGroups() {
    planReadAhead();
    for (std::size_t g = 0; g < contents_.groups.size(); ++g) {
        const GroupEntry& entry = contents_.groups[g];
        groupName_ = entry.name.text();
        ZGroup& group = *target_.groups.emplace_back(std::make_unique<ZGroup>(groupName_));
        group.record = entry.record;
        for (std::size_t z = 0; z < entry.zones.size(); ++z)
            if (!makeZone(group, entry, z, g)) return fail(Kind::Cancelled);
        group.touch();
    }
    return true;
}

// False when the user cancels.
bool Load::makeZone(ZGroup& group, const GroupEntry& entry, std::size_t zoneIndex, std::size_t groupIndex) {
    const ZoneEntry& stored = entry.zones[zoneIndex];
    sampleName_ = stored.sample.text();
    const std::string path = samplePath(stored);
    ahead_.reach(zonesMade_++);
    auto zone = openZone(sampleName_, path, stored);
    fraction_ = fractionDone(entry, zoneIndex, groupIndex);
    if (!report() || builder_.wasStopped()) return false;

    const bool elsewhere = !zone->valid;
    if (elsewhere) zone = locateElsewhere(path);
    if (builder_.wasStopped()) return false;
    if (!zone) return true;
    zone->record = stored.record;
    // On purpose a sample found elsewhere keeps its points: it may be a shorter stand-in.
    if (!elsewhere) clampPoints(zone->record, zone->lengthInFrames);
    builder_.recordChanged(*zone);
    if (builder_.wasStopped()) return false;
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
    bool isThere = isRegularFile(samplePath);
    if (options_.delegate && failedSearches_ < limits::failedSearches) {
        char reply[ZSEDelegate::replyBytes] = {};
        options_.delegate->reportMessage(samplePath.c_str(), reply);
        reply[sizeof reply - 1] = 0;
        if (reply[0] != 0) {
            auto zone = builder_.fromWaveFile(reply);
            if (zone->valid) return zone;
            isThere = isThere || isRegularFile(reply);
        }
        ++failedSearches_;
    }
    (isThere ? result_.unsupported : result_.missing).push_back(samplePath);
    return nullptr;
}

float Load::fractionDone(const GroupEntry& group, std::size_t zoneIndex, std::size_t groupIndex) const {
    const auto groups = static_cast<float>(contents_.groupCount);
    const float inGroup = static_cast<float>(zoneIndex) / static_cast<float>(group.zoneCount);
    return inGroup / groups + static_cast<float>(groupIndex) / groups;
}

// False when the load is to end.
bool Load::report() const {
    ZSEDelegate* delegate = options_.delegate;
    return !delegate || delegate->loadProgress(fraction_, groupName_.c_str(), sampleName_.c_str());
}

} // namespace

LoadResult readInstrument(InstrumentContents& contents, const std::string& path, const LoadOptions& options) {
    thread::mustBe(thread::reader | thread::loading);
    LoadResult result;
    try {
        Load load(contents, path, options, result);
        if (!load.readFile()) return result;
        load.fillHeader();
        result.loaded = load.isAllowed() && load.makeGroups();
    } catch (const LimitExceeded& excess) {
        result.problem = {Kind::LimitExceeded, path, 0, excess.most, excess.what()};
    } catch (const std::bad_alloc&) {
        result.problem = {Kind::OutOfMemory, path, 0, 0, {}};
    }
    return result;
}

bool takeOver(ZInstrument& instrument, InstrumentContents& contents, LoadResult& result) {
    thread::mustBe(thread::loading);
    const std::string path = contents.texts.path;
    try {
        instrument.exchange(contents);
    } catch (const std::bad_alloc&) {
        result.loaded = false;
        result.problem = {Kind::OutOfMemory, path, 0, 0, {}};
    }
    if (!result.loaded) return false;
    if (!instrument.groups().empty()) instrument.activateGroup(instrument.groups().front().get());
    instrument.applySettings();
    if (instrument.delegate()) instrument.delegate()->settingsChanged();
    return true;
}

LoadResult loadInstrument(ZInstrument& instrument, const std::string& path, const std::string& enteredText,
                          LicenceCheck& licence) {
    const BusyMark busy(instrument);
    InstrumentContents contents;
    LoadOptions options{enteredText, &licence, instrument.delegate(), [&] { instrument.clear(); }, {}};
    LoadResult result = readInstrument(contents, path, options);
    if (result.opened) takeOver(instrument, contents, result);
    return result;
}

LoadResult loadInstrument(ZInstrument& instrument, const std::string& path) {
    AllowEverything licence;
    return loadInstrument(instrument, path, {}, licence);
}

} // namespace zarno
