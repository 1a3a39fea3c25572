// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontLibrary.h"

#include "tools/import/SoundFontImport.h"
#include "tools/import/SoundFontVoices.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <set>

namespace zarno {
namespace {

constexpr float headRoom = -10.0f; // dB

void importOne(const SoundFontFile& file, const SoundFontFile::Preset& preset, ImportOptions options,
               ImportReport& report) {
    options.finish = [panel = options.finish](Model& model) {
        model.file.settings.volume = headRoom;
        if (panel) panel(model);
    };
    importInstrument(importPreset(file, preset, report), options, report);
}

// Each instrument file stands for itself, so that it can be moved or deleted alone.
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
    importOne(file, preset ? findPreset(file, *preset) : file.presets.front(), std::move(options), report);
}

void importAllPresets(const SoundFontFile& file, const ImportOptions& options, ImportReport& report) {
    const auto folder = filePath(options.out);
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    if (failed) throw MakerError(options.out, "the folder cannot be made");
    ImportReport whole = report;
    std::set<std::size_t> left; // out, of the presets
    for (std::size_t i = 0; i < file.presets.size(); ++i) {
        ImportOptions one = options;
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
        for (const auto& remark : own.remarks())
            whole.add(remark.what, remark.instead, remark.firstPlace, remark.count);
        whole.groups += own.groups;
        whole.zones += own.zones;
        whole.samples += own.samples;
        whole.sampleBytes += own.sampleBytes;
        whole.streaming |= own.streaming;
        whole.embedded = own.embedded;
    }
    if (const std::uint64_t shared = samplesOfSeveral(file, left); shared > 0)
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
