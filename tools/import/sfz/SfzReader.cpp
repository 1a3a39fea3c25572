// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzReader.h"

#include "data/Limits.h"
#include "tools/import/Readers.h"
#include "tools/import/sfz/SfzNeighbours.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zarno {
namespace {

std::optional<double> findSfzVibrato(const std::vector<SfzSection>& sections);

class SfzReader {
  public:
    SfzReader(const SfzFiles& files, ImportReport& report)
        : files_(files)
        , report_(report) {}

    ImportedInstrument read(const std::vector<SfzSection>& sections);

  private:
    void section(const SfzSection& section);
    void control(const SfzSection& section);
    void level(SfzOpcodes::Level level, const SfzSection& section);
    void region(const std::string& place);

    const SfzFiles& files_;
    ImportReport& report_;
    SfzControl control_;
    std::map<ImportedGains, std::shared_ptr<const ImportedGains>>
        velocityGains_; // once each, of many regions
    SfzOpcodes opcodes_;
    std::vector<SfzRegion> regions_;
    ImportedInstrument instrument_;
};

std::string forwardSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

void SfzReader::control(const SfzSection& section) {
    std::optional<int> notes, octaves;
    for (const SfzOpcode& opcode : section.opcodes) {
        const auto number = SfzOpcodes::numberFrom(opcode.value);
        const int keys = static_cast<int>(std::clamp(number.value_or(0.0), -127.0, 127.0));
        if (opcode.name == "default_path") control_.defaultPath = opcode.value;
        if (opcode.name == "note_offset") notes = keys;
        if (opcode.name == "octave_offset") octaves = keys;
    }
    if (notes || octaves)
        control_.noteOffset = std::clamp(notes.value_or(0) + 12 * octaves.value_or(0), -127, 127);
}

void SfzReader::level(SfzOpcodes::Level level, const SfzSection& section) {
    opcodes_.begin(level);
    for (const SfzOpcode& opcode : section.opcodes)
        opcodes_.set(level, opcode);
    const std::string* polyphony = opcodes_.findAt(level, "polyphony");
    if (polyphony && level == SfzOpcodes::Global)
        if (const auto voices = SfzOpcodes::numberFrom(*polyphony); voices && *voices >= 1.0)
            instrument_.polyphony = static_cast<int>(std::min(*voices, 1e6));
}

void SfzReader::region(const std::string& place) {
    const std::string sample = opcodes_.text("sample");
    if (sample.empty() || sample.front() == '*') {
        report_.add(sample.empty() ? "region without a sample" : "generated sound " + sample, "left out",
                    place);
        return;
    }
    if (regions_.size() >= limits::importedZones) throw MakerError(place, "there are too many regions");
    const auto entry = files_.sample(forwardSlashes(control_.defaultPath + sample), place);
    if (!entry) return;
    auto region = readSfzRegion(opcodes_, control_, *entry->info, place, report_);
    if (!region) return;
    region->zone.sample = entry->sample;
    if (auto& gains = region->zone.velocityGains)
        gains = velocityGains_.try_emplace(*gains, gains).first->second;
    if (const auto first = opcodes_.key("sw_default"))
        instrument_.firstKeyswitch = *first + control_.noteOffset;
    regions_.push_back(std::move(*region));
}

void SfzReader::section(const SfzSection& section) {
    if (section.header == "curve") return; // read before
    if (section.header == "control") return control(section);
    if (section.header == "global") return level(SfzOpcodes::Global, section);
    if (section.header == "master") return level(SfzOpcodes::Master, section);
    if (section.header == "group") return level(SfzOpcodes::Group, section);
    if (section.header == "region") {
        level(SfzOpcodes::Region, section);
        return region(section.place);
    }
    report_.add(section.header.empty() ? "opcodes before the first header"
                                       : "header <" + section.header + '>',
                "ignored", section.place);
}

ImportedInstrument SfzReader::read(const std::vector<SfzSection>& sections) {
    for (const SfzSection& one : sections)
        control_.controllers.read(one);
    for (const SfzSection& one : sections)
        section(one);
    instrument_.volume = chordHeadroom;
    instrument_.vibratoRate = findSfzVibrato(sections);
    connectSfzRegions(regions_, report_);
    for (SfzRegion& region : regions_)
        instrument_.zones.push_back(std::move(region.zone));
    return std::move(instrument_);
}

// Hz of the vibrato that the mod wheel brings in, when it does.
std::optional<double> findSfzVibrato(const std::vector<SfzSection>& sections) {
    std::map<std::string, double> rates, depths; // by LFO
    for (const SfzSection& section : sections)
        for (const SfzOpcode& opcode : section.opcodes) {
            const std::string lfo = opcode.name.substr(0, opcode.name.find('_'));
            const double value = SfzOpcodes::numberFrom(opcode.value).value_or(0.0);
            if (opcode.name == lfo + "_freq") rates[lfo] = value;
            for (const char* depth :
                 {"_pitch_oncc1", "_pitch_cc1", "_depthcc1", "_depth_oncc1", "_depth_cc1"})
                if (opcode.name == lfo + depth && (lfo == "pitchlfo" || lfo.starts_with("lfo")))
                    depths[lfo] = value;
        }
    for (const auto& [lfo, depth] : depths)
        if (const auto rate = rates.find(lfo); depth != 0.0 && rate != rates.end() && rate->second > 0.0)
            return rate->second;
    return std::nullopt;
}

std::optional<std::string> readTextFile(const std::string& path) {
    const std::string found = findFile(path);
    if (found.empty()) return std::nullopt;
    std::error_code failed;
    if (std::filesystem::file_size(filePath(found), failed) > limits::importedTextBytes || failed)
        throw MakerError(path, "the text is too long");
    std::ifstream file(filePath(found), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace

ImportedInstrument parseSfz(std::string_view text, const std::string& fileName, const SfzFiles& files,
                            ImportReport& report) {
    const auto lines = readSfzLines(text, fileName, files.include, report);
    return SfzReader(files, report).read(parseSfzSections(lines, report));
}

ImportedInstrument readSfz(const std::string& path, ImportReport& report) {
    const std::filesystem::path file = filePath(path), folder = file.parent_path();
    const auto beside = [&folder](const std::string& name) { return utf8Text(folder / filePath(name)); };
    const auto text = readTextFile(path);
    if (!text) throw MakerError(path, "the file cannot be read");
    SamplePool pool(report);
    SfzFiles files;
    files.include = [&](const std::string& name) { return readTextFile(beside(name)); };
    files.sample = [&](const std::string& name, const std::string& place) {
        return pool.find(beside(name), place);
    };
    ImportedInstrument instrument = parseSfz(*text, utf8Text(file.filename()), files, report);
    instrument.name = utf8Text(file.stem());
    instrument.samples = pool.takeSamples();
    return instrument;
}

} // namespace zarno
