// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/Importer.h"

#include "data/Limits.h"
#include "data/load/InstrumentFormat.h"
#include "platform/Machine.h"
#include "tools/import/FileNames.h"
#include "tools/import/SampleLibrary.h"
#include "tools/import/SampleWriter.h"
#include "tools/import/ShapeZones.h"
#include "tools/import/VelocitySlices.h"
#include "tools/import/ZoneRecords.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace zarno {
namespace {

// What samples may take in the player's memory before they are streamed.
constexpr std::uint64_t leastMemory = 64u << 20, mostMemory = 512u << 20;
constexpr std::uint64_t shareOfMemory = 16; // one in sixteen bytes of this machine's, between these two
// A streamed note has a seam at each chunk: as long ones as these bytes allow.
constexpr std::uint64_t shortestChunk = 32768, longestChunk = 262144;
constexpr std::uint64_t mostBufferBytes = 128u << 20; // of all voices
constexpr std::uint64_t mostPreloadBytes = 256u << 20;
constexpr int usualPolyphony = 64;

class Import {
  public:
    Import(const ImportedInstrument& source, const ImportOptions& options, ImportReport& report)
        : source_(source)
        , samples_(source.samples)
        , options_(options)
        , report_(report) {}

    void run();

  private:
    void mapZones();
    void chooseStorage();
    std::uint64_t chooseChunk();
    bool allows(std::uint64_t chunk);
    std::uint64_t bytesInMemory(std::uint64_t chunk, std::uint64_t framesOfEach);
    bool hasWideSamples() const;
    SampleForms formsFor(std::uint64_t chunk, ImportReport& report);
    void chooseWidths();
    SampleWidth widthOf(const SampleForm& form) const;
    void fillHeader();
    void fillGroups();
    void nameForms();
    std::filesystem::path sampleFolder() const;
    void addBlocks();
    void writeWaves();
    void fillReport();
    void advance(std::uint64_t frames);
    int polyphony() const {
        return std::clamp(source_.polyphony.value_or(usualPolyphony), 1, limits::voices);
    }
    const ImportedSample& sampleOf(const SampleForm& form) const { return samples_[form.sample]; }

    const ImportedInstrument& source_;
    std::vector<ImportedSample> samples_; // the source's, and shaped copies
    const ImportOptions& options_;
    ImportReport& report_;
    std::vector<MappedGroup> groups_;
    bool streaming_ = false, sixteenBit_ = true;
    std::uint64_t chunkFrames_ = 0; // 0: in memory
    std::vector<SampleForm> forms_;
    std::vector<std::string> names_; // of forms, as zones say them
    std::vector<bool> isWritten_;    // by this import, not by another one of the library
    Model model_;
    std::uint64_t framesToWrite_ = 0, framesWritten_ = 0;
};

void Import::mapZones() {
    std::vector<ImportedZone> zones;
    for (const ImportedZone& zone : splitByKey(source_.zones)) {
        const std::uint64_t frames = samples_.at(zone.sample).format.frames;
        if (zone.keys.isEmpty() || zone.velocities.isEmpty())
            report_.add("range without keys or velocities", "zone left out", zone.place);
        else if (zone.start >= std::min(zone.end, frames))
            report_.add("start behind the sample's end", "zone left out", zone.place);
        else
            zones.push_back(zone);
    }
    if (zones.empty()) throw MakerError(report_.source, "there is nothing in it that could be played");
    groups_ = mapGroups(options_.plain ? withoutShaping(zones, report_)
                                       : shapeZones(zones, samples_, report_, options_.mostShapedBytes),
                        source_.firstKeyswitch, report_);
    assignChokeIds(groups_, report_);
    model_.file.settings.velocityFloor = velocityFloorOf(groups_, report_);
    sliceVelocities(groups_, model_.file.settings, report_);
    if (groups_.empty()) throw MakerError(report_.source, "there is nothing in it that could be played");
}

SampleForms Import::formsFor(std::uint64_t chunk, ImportReport& report) {
    SampleForms forms(samples_, chunk, report);
    for (const MappedGroup& group : groups_)
        for (const ImportedZone& zone : group.zones)
            forms.add(zone);
    return forms;
}

bool isWide(const SoundFormat& format) {
    return format.bits > 16 || format.floatingPoint;
}

bool Import::hasWideSamples() const {
    for (const MappedGroup& group : groups_)
        for (const ImportedZone& zone : group.zones)
            if (isWide(samples_[zone.sample].format)) return true;
    return false;
}

// Of all forms, no more than so many frames of each.
std::uint64_t Import::bytesInMemory(std::uint64_t chunk, std::uint64_t framesOfEach) {
    ImportReport notYet; // said once, for the choice that is made
    const std::uint64_t bytesPerValue = hasWideSamples() ? 4 : 2;
    std::uint64_t bytes = 0;
    const SampleForms forms = formsFor(chunk, notYet);
    for (const SampleForm& form : forms.forms())
        bytes += std::min(form.writtenFrames(), framesOfEach) * bytesPerValue *
                 static_cast<std::uint64_t>(writtenChannels(sampleOf(form).format));
    return bytes;
}

void Import::chooseStorage() {
    streaming_ = options_.storage == SampleStorage::Stream;
    if (options_.storage == SampleStorage::Auto)
        streaming_ = bytesInMemory(0, UINT64_MAX) >
                     std::clamp(physicalMemory() / shareOfMemory, leastMemory, mostMemory);
    if (streaming_) chunkFrames_ = chooseChunk();
}

// Short loops are unrolled to the length of a chunk: that may not make the samples much larger.
bool Import::allows(std::uint64_t chunk) {
    constexpr std::uint64_t sides = 2, buffers = 2;
    const std::uint64_t bytesPerValue = hasWideSamples() ? 4 : 2;
    if (static_cast<std::uint64_t>(polyphony()) * buffers * chunk * sides * bytesPerValue > mostBufferBytes)
        return false;
    return bytesInMemory(chunk, chunk) <= mostPreloadBytes &&
           bytesInMemory(chunk, UINT64_MAX) <= bytesInMemory(shortestChunk, UINT64_MAX) / 4 * 5;
}

std::uint64_t Import::chooseChunk() {
    std::uint64_t chunk = longestChunk;
    while (chunk > shortestChunk && !allows(chunk))
        chunk /= 2;
    return chunk;
}

void Import::chooseWidths() {
    for (const SampleForm& form : forms_) {
        const ImportedSample& sample = sampleOf(form);
        const bool isTooWide = sample.format.bits > 24 || sample.format.floatingPoint;
        if (isWide(sample.format)) sixteenBit_ = false;
        if (sample.format.channels > 2)
            report_.add("more than two channels", "the first two are kept", sample.name);
        if (isTooWide && !options_.embed)
            report_.add("samples of 32 bits", "24 bits, clipped at full scale (--embed keeps floats)",
                        sample.name);
    }
}

SampleWidth Import::widthOf(const SampleForm& form) const {
    if (options_.embed) return sixteenBit_ ? SampleWidth::Int16 : SampleWidth::Float32;
    const SoundFormat& format = sampleOf(form).format;
    return isWide(format) ? SampleWidth::Int24 : SampleWidth::Int16;
}

void Import::fillHeader() {
    InstrumentFile& file = model_.file;
    std::memcpy(file.magic, format::magic, sizeof file.magic);
    file.version = format::newestVersion;
    file.storage = options_.embed ? format::Embedded : format::External;
    const auto text = [](const std::string& from) {
        return StoredText{from.substr(0, std::min(from.find('\0'), limits::nameBytes)), true};
    };
    file.name = file.title = text(source_.name);
    file.remark = text(source_.text);
    InstrumentSettings& settings = file.settings;
    settings.streaming = settings.streamingStored = streaming_ ? 1 : 0;
    settings.streamBufferFrames = settings.streamBufferFramesStored =
        static_cast<std::int32_t>(streaming_ ? chunkFrames_ : shortestChunk);
    settings.sixteenBit = settings.sixteenBitStored = sixteenBit_ ? 1 : 0;
    settings.polyphony = settings.polyphonyStored = polyphony();
    settings.quality =
        static_cast<std::int32_t>(Quality::Mid); // High is 3 dB down at a fifth of a sample's rate
    settings.volume = static_cast<float>(source_.volume);
    const double vibrato = source_.vibratoRate.value_or(0.0);
    settings.lfoDestination =
        static_cast<std::int32_t>(vibrato > 0.0 ? LfoDestination::Pitch : LfoDestination::None);
    settings.lfoDepthSource =
        static_cast<std::int32_t>(vibrato > 0.0 ? LfoDepthSource::ModWheel : LfoDepthSource::None);
    if (vibrato > 0.0) settings.lfoRate = static_cast<float>(std::clamp(vibrato, 0.1, 20.0));
}

// Chooses the samples' forms on the way: each zone has its say before any point is set.
void Import::fillGroups() {
    SampleForms forms = formsFor(chunkFrames_, report_);
    forms.moveSeams();
    forms_ = forms.forms();
    chooseWidths();
    nameForms();
    for (const MappedGroup& group : groups_) {
        GroupEntry entry;
        entry.name = {group.name.substr(0, limits::nameBytes), true};
        entry.record = group.record;
        for (const ImportedZone& zone : group.zones) {
            const std::size_t form = forms.find(zone);
            ZoneRecord record = recordOf(zone);
            forms.setPoints(zone, form, record);
            entry.zones.push_back({{names_[form], true}, options_.embed ? form : ZoneEntry::noBlock, record});
        }
        entry.zoneCount = static_cast<std::int32_t>(entry.zones.size());
        model_.file.groups.push_back(std::move(entry));
    }
    model_.file.groupCount = static_cast<std::int32_t>(model_.file.groups.size());
}

std::filesystem::path Import::sampleFolder() const {
    const std::filesystem::path out = filePath(options_.out);
    if (options_.library) return out.parent_path() / filePath(options_.library->folder());
    return std::filesystem::path(out).replace_extension(".samples");
}

// Zones name a sample as it stands in the file, or as a wave in the folder beside it.
void Import::nameForms() {
    FileNames files;
    const std::string folder = options_.embed ? "" : utf8Text(sampleFolder().filename()) + '\\';
    for (const SampleForm& form : forms_) {
        SampleLibrary::Wave wave{{}, true};
        if (options_.library && !options_.embed)
            wave = options_.library->wave(sampleOf(form), form, static_cast<int>(widthOf(form)));
        else
            wave.name = files.make(sampleOf(form).name);
        names_.push_back(folder + wave.name + ".wav");
        isWritten_.push_back(wave.isNew);
        if (!wave.isNew) continue;
        framesToWrite_ += form.writtenFrames();
        report_.sampleBytes += writtenBytes(sampleOf(form).format, form, widthOf(form));
        if (sampleOf(form).shape)
            report_.shapedBytes += writtenBytes(sampleOf(form).format, form, SampleWidth::Int16);
    }
}

void Import::advance(std::uint64_t frames) {
    framesWritten_ += frames;
    if (options_.progress && framesToWrite_ > 0)
        options_.progress(static_cast<double>(framesWritten_) / static_cast<double>(framesToWrite_));
}

void Import::addBlocks() {
    for (std::size_t i = 0; i < forms_.size(); ++i) {
        const SampleForm& form = forms_[i];
        const SoundFormat& format = sampleOf(form).format;
        SampleBlock block;
        block.name = names_[i];
        block.header.bytesPerSample = static_cast<std::int32_t>(widthOf(form));
        block.header.sampleRate = format.sampleRate;
        block.header.channels = writtenChannels(format);
        block.header.frames = static_cast<std::int64_t>(form.writtenFrames());
        block.dataBytes = writtenBytes(format, form, widthOf(form));
        model_.file.blocks.push_back(block);
        model_.frames.push_back([this, &form](std::ostream& out) {
            writeFrames(sampleOf(form), form, widthOf(form), out, [this](std::uint64_t n) { advance(n); });
        });
    }
}

void Import::writeWaves() {
    const std::filesystem::path folder = sampleFolder();
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    if (failed) throw MakerError(utf8Text(folder), "the folder cannot be made");
    for (std::size_t i = 0; i < forms_.size(); ++i) {
        if (!isWritten_[i]) continue;
        const std::string file = names_[i].substr(names_[i].rfind('\\') + 1);
        writeWave(sampleOf(forms_[i]), forms_[i], widthOf(forms_[i]), utf8Text(folder / filePath(file)),
                  [this](std::uint64_t n) { advance(n); });
    }
}

void Import::fillReport() {
    report_.target = options_.out;
    report_.groups = model_.file.groups.size();
    report_.samples = forms_.size();
    report_.streaming = streaming_;
    report_.embedded = options_.embed;
    for (const GroupEntry& group : model_.file.groups)
        report_.zones += group.zones.size();
    for (const SampleForm& form : forms_)
        if (form.passes > 1)
            report_.note("short loop",
                         streaming_ ? "unrolled to the length of a stream chunk"
                                    : "unrolled until it is " + std::to_string(SampleForms::shortestLoop) +
                                          " frames long",
                         sampleOf(form).name);
}

void Import::run() {
    mapZones();
    chooseStorage();
    fillGroups();
    fillHeader();
    if (options_.announce) options_.announce(report_.sampleBytes);
    if (options_.embed)
        addBlocks();
    else
        writeWaves();
    if (options_.finish) options_.finish(model_);
    writeInstrumentFile(model_, options_.out);
    fillReport();
    if (options_.check) options_.check(options_.out, report_);
}

} // namespace

void importInstrument(const ImportedInstrument& source, const ImportOptions& options, ImportReport& report) {
    Import(source, options, report).run();
}

} // namespace zarno
