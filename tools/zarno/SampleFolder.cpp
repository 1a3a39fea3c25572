// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/SampleFolder.h"

#include "data/load/SamplePath.h"
#include "data/sound/ZWaveFile.h"
#include "platform/Paths.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/ModelJson.h"

#include <filesystem>
#include <fstream>
#include <ostream>

namespace zarno {
namespace {

void copyFile(const std::string& path, std::ostream& out) {
    std::ifstream in(filePath(path), std::ios::binary);
    if (in && in.peek() != std::ifstream::traits_type::eof()) out << in.rdbuf();
    if (!in) throw MakerError(path, "the file cannot be read");
}

} // namespace

SampleFolder::SampleFolder(std::string folder, const Json& samples, const PackOptions& options,
                           JsonFaults& faults)
    : decode_(options.decode)
    , folder_(std::move(folder)) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        JsonObject sample(samples[i], "samples[" + std::to_string(i) + "]", faults);
        const std::string name(textFromJson(sample.at("name"), sample.whereOf("name"), faults).text());
        Entry entry;
        entry.file = sample.text("file");
        entry.raw = sample.flag("raw");
        entry.header.bytesPerSample = sample.int32("bytesPerSample", 0);
        entry.header.sampleRate = sample.int32("sampleRate", 0);
        entry.header.channels = sample.int32("channels", 0);
        entry.header.frames = sample.integer("frames", 0, INT64_MIN, INT64_MAX);
        entry.header.reserved = static_cast<std::uint32_t>(sample.integer("reserved", 0, 0, UINT32_MAX));
        sample.finish();
        if (!entry.raw && entry.file.empty()) sample.at("file");
        entries_.emplace(name, entry);
    }
}

std::string SampleFolder::pathOf(const std::string& sampleName) const {
    const auto found = entries_.find(sampleName);
    if (found != entries_.end()) return found->second.raw ? "" : joinPath(folder_, found->second.file);
    const std::string instrument = joinPath(folder_, std::string(instrumentJsonName));
    return fromBackslashForm(resolveSamplePath(sampleName, toBackslashForm(instrument)));
}

SampleFolder::Sound SampleFolder::openSound(const std::string& path) const {
    for (const WaveFormats formats : {WaveFormats::Player, WaveFormats::Tools}) {
        auto wave = std::make_shared<ZWaveFile>(formats);
        if (!wave->open(path)) continue;
        const bool hasFloats = wave->hasFloatSamples();
        wave->close();
        return {std::move(wave), formats == WaveFormats::Player, true, hasFloats};
    }
    if (!decode_ || path.empty()) return {};
    std::shared_ptr<ZSoundFile> decoded = decode_(path);
    if (decoded) decoded->close();
    return {std::move(decoded), false, false, true};
}

const SampleFolder::Sound& SampleFolder::sound(const std::string& sampleName) {
    const std::string path = pathOf(sampleName);
    const auto [found, isNew] = sounds_.try_emplace(path);
    if (isNew) found->second = openSound(path);
    return found->second;
}

SampleFolder::Block SampleFolder::makeBlock(const std::string& sampleName, bool sixteenBit) {
    const auto found = entries_.find(sampleName);
    const Entry entry = found == entries_.end() ? Entry() : found->second;
    Block made = entry.raw ? rawBlock(entry, sixteenBit) : soundBlock(sampleName, entry, sixteenBit);
    made.block.name = sampleName;
    return made;
}

// The file must be as long as the header says, or the block would put all that follows out of step.
SampleFolder::Block SampleFolder::rawBlock(const Entry& entry, bool sixteenBit) const {
    Block made;
    made.block.header = entry.header;
    made.block.dataBytes = format::sampleDataBytes(sixteenBit, entry.header.channels, entry.header.frames);
    if (made.block.dataBytes == 0) {
        made.frames = [](std::ostream&) {};
        return made;
    }
    const std::string path = joinPath(folder_, entry.file);
    std::error_code unreadable;
    const auto size = std::filesystem::file_size(filePath(path), unreadable);
    if (unreadable) throw MakerError(path, "the file cannot be read");
    if (size != made.block.dataBytes)
        throw MakerError(path, "the file must have " + std::to_string(made.block.dataBytes) + " bytes");
    made.frames = [path](std::ostream& out) { copyFile(path, out); };
    return made;
}

SampleFolder::Block SampleFolder::soundBlock(const std::string& sampleName, const Entry& entry,
                                             bool sixteenBit) {
    const std::string path = pathOf(sampleName);
    const Sound& found = sound(sampleName);
    const auto file = found.file;
    if (!file) throw MakerError(path, "there is no wave here that can be read");
    if (sixteenBit && file->bytesPerSample() == 4 && !found.hasFloats)
        throw MakerError(path, "32-bit samples have no 16-bit form: set sixteenBit to 0, or convert them");
    Block made;
    made.block.header = {sixteenBit ? 2 : 4, file->sampleRate(), file->channelCount(), entry.header.reserved,
                         static_cast<std::int64_t>(file->lengthInFrames())};
    made.block.dataBytes =
        format::sampleDataBytes(sixteenBit, made.block.header.channels, made.block.header.frames);
    made.frames = [file, path, sixteenBit](std::ostream& out) {
        if (!file->reopen() || !writeFrames(*file, out, sixteenBit ? 2 : 4))
            throw MakerError(path, "the frames cannot be copied");
        file->close();
    };
    return made;
}

} // namespace zarno
