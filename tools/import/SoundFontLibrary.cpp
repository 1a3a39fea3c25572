// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontLibrary.h"

#include "tools/import/SampleLibrary.h"
#include "tools/import/SoundFontImport.h"
#include "tools/import/SoundFontVoices.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <set>

namespace zarno {
namespace {

void importOne(const SoundFontFile& file, const SoundFontFile::Preset& preset, const ImportOptions& options,
               ImportReport& report) {
    importInstrument(importPreset(file, preset, report), options, report);
}

// Of shaped copies of all presets together, in 16 bits.
std::uint64_t shapedBytesOf(const SoundFontFile& file) {
    constexpr std::uint64_t least = 512u << 20, most = 1024u << 20, perByte = 4;
    return std::clamp(std::uint64_t{2} * file.dataPoints * perByte, least, most);
}

// An embedded instrument stands for itself: it has all that it plays.
std::uint64_t samplesOfSeveral(const SoundFontFile& file, const std::set<std::size_t>& left) {
    std::vector<int> users(file.samples.size(), 0);
    for (std::size_t i = 0; i < file.presets.size(); ++i) {
        if (left.contains(i)) continue;
        std::set<std::size_t> own;
        for (const SoundFontVoice& voice : voicesOf(file, file.presets[i]))
            own.insert(voice.sample);
        for (const std::size_t sample : own)
            ++users[sample];
    }
    return static_cast<std::uint64_t>(
        std::count_if(users.begin(), users.end(), [](int count) { return count > 1; }));
}

} // namespace

void importSoundFont(const SoundFontFile& file, const std::optional<std::string>& preset,
                     ImportOptions options, ImportReport& report) {
    if (file.presets.empty()) throw MakerError(file.path, "there are no presets");
    importOne(file, preset ? findPreset(file, *preset) : file.presets.front(), options, report);
}

void importAllPresets(const SoundFontFile& file, const ImportOptions& options, ImportReport& report) {
    const auto folder = filePath(options.out);
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    if (failed) throw MakerError(options.out, "the folder cannot be made");
    ImportReport whole = report;
    std::set<std::size_t> left; // out, of the presets
    SampleLibrary library("samples");
    std::uint64_t shapedBytes = shapedBytesOf(file);
    if (options.announce) options.announce(2ull * file.dataPoints + shapedBytes);
    for (std::size_t i = 0; i < file.presets.size(); ++i) {
        ImportOptions one = options;
        one.announce = nullptr; // that was said for all
        if (!options.embed) one.library = &library;
        one.mostShapedBytes =
            shapedBytes / (file.presets.size() - i); // what one leaves the next ones may take
        one.out = utf8Text(folder / filePath(fileNameOf(file.presets[i]) + ".zse"));
        if (options.progress)
            one.progress = [&, i](double fraction) {
                options.progress((static_cast<double>(i) + fraction) /
                                 static_cast<double>(file.presets.size()));
            };
        ImportReport own;
        try {
            importOne(file, file.presets[i], one, own);
        } catch (const MakerError& error) {
            whole.add("preset that plays nothing", "left out", error.what());
            left.insert(i);
            continue;
        }
        whole.addAll(own);
        shapedBytes -= std::min(shapedBytes, own.shapedBytes);
        whole.groups += own.groups;
        whole.zones += own.zones;
        whole.samples += own.samples;
        whole.sampleBytes += own.sampleBytes;
        whole.streaming |= own.streaming;
        whole.embedded = own.embedded;
    }
    if (const std::uint64_t shared = samplesOfSeveral(file, left); shared > 0 && options.embed)
        whole.add("sample that several presets play", "written once for each of them", file.path, shared);
    whole.target = options.out;
    report = whole;
}

std::string listPresets(const SoundFontFile& file) {
    std::string text;
    for (const auto& preset : file.presets)
        text += std::to_string(preset.bank) + ':' + std::to_string(preset.program) + ' ' + preset.name + '\n';
    return text;
}

} // namespace zarno
