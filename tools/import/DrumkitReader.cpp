// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/Readers.h"
#include "tools/import/SamplePool.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <string_view>

namespace zarno {
namespace {

constexpr int firstKey = 36; // Hydrogen's instruments lie on the keys from here on, in their order
constexpr int lastKey = 127;
constexpr double framesPerMs = 44.1; // of its envelopes

struct Layer {
    std::string file;
    double low = 0.0, high = 1.0; // velocity
    double gain = 1.0;
    double pitch = 0.0; // semitones
};

double number(const pugi::xml_node& node, const char* name, double otherwise) {
    const double value = node.child(name).text().as_double(otherwise);
    return std::isfinite(value) ? std::clamp(value, -1e6, 1e6) : otherwise;
}

Layer readLayer(const pugi::xml_node& node, double gain) {
    return {node.child_value("filename"), number(node, "min", 0.0), number(node, "max", 1.0),
            gain * number(node, "gain", 1.0), number(node, "pitch", 0.0)};
}

// Kits of all ages: one file, layers, layers of components.
std::vector<Layer> readLayers(const pugi::xml_node& instrument) {
    std::vector<Layer> layers;
    if (instrument.child("filename")) layers.push_back({instrument.child_value("filename")});
    for (const pugi::xml_node& layer : instrument.children("layer"))
        layers.push_back(readLayer(layer, 1.0));
    for (const pugi::xml_node& component : instrument.children("instrumentComponent"))
        for (const pugi::xml_node& layer : component.children("layer"))
            layers.push_back(readLayer(layer, number(component, "gain", 1.0)));
    return layers;
}

double decibels(double gain) {
    return 20.0 * std::log10(std::max(gain, 1e-5));
}

class DrumkitReader {
  public:
    DrumkitReader(const std::string& folder, ImportReport& report)
        : folder_(folder)
        , report_(report) {}

    ImportedInstrument read();

  private:
    void addInstrument(const pugi::xml_node& node, int key);
    ImportedZone zoneOf(const pugi::xml_node& node, int key) const;
    void separate(std::vector<ImportedZone>& zones);

    const std::string& folder_;
    ImportReport& report_;
    SamplePool pool_{report_};
    ImportedInstrument kit_;
};

ImportedZone DrumkitReader::zoneOf(const pugi::xml_node& node, int key) const {
    ImportedZone zone;
    zone.place = node.child_value("name");
    zone.keys = {key, key};
    zone.rootKey = key;
    zone.velocityTracking = 0.5; // its level is proportional to velocity
    zone.choke = std::max(0, static_cast<int>(number(node, "muteGroup", -1)) + 1);
    zone.loop = node.child("isStopNote").text().as_bool() ? LoopMode::None : LoopMode::OneShot;
    const double left = number(node, "pan_L", 1.0), right = number(node, "pan_R", 1.0);
    const double louder = std::max({left, right, 1e-5});
    zone.pan = node.child("pan") ? number(node, "pan", 0.0) : (right - left) / louder;
    zone.volume = decibels(number(node, "volume", 1.0) * number(node, "gain", 1.0));
    zone.envelope.attack = number(node, "Attack", 0.0) / framesPerMs;
    zone.envelope.decay = number(node, "Decay", 0.0) / framesPerMs;
    zone.envelope.sustain = decibels(number(node, "Sustain", 1.0));
    zone.envelope.release = std::max(5.0, number(node, "Release", 1000.0) / framesPerMs);
    return zone;
}

// Of layers that lie over each other Hydrogen plays one. Where they overlap in part, each keeps its half.
void DrumkitReader::separate(std::vector<ImportedZone>& zones) {
    std::map<ImportedRange, ImportedRange> ranges;
    for (const ImportedZone& zone : zones)
        ranges[zone.velocities] = zone.velocities;
    for (auto range = ranges.begin(); range != ranges.end() && std::next(range) != ranges.end(); ++range) {
        ImportedRange &lower = range->second, &upper = std::next(range)->second;
        if (lower.isEmpty() || upper.isEmpty() || !lower.overlaps(upper)) continue;
        if (lower.high > upper.low) // more than a rounded limit in common
            report_.add("layers that overlap in velocity", "split in the middle", zones.front().place);
        // One of two that are left with the same velocity becomes empty.
        upper.low = std::min(std::max((upper.low + lower.high + 1) / 2, lower.low + 1), upper.high);
        lower.high = upper.low - 1;
    }
    for (ImportedZone& zone : zones)
        zone.velocities = ranges.at(zone.velocities);
}

// Those of the same velocities are alternatives.
void alternate(std::vector<ImportedZone>& zones, ImportedAlternation::Kind kind) {
    std::map<ImportedRange, int> counts;
    for (ImportedZone& zone : zones)
        zone.alternation.position = counts[zone.velocities]++;
    for (ImportedZone& zone : zones) {
        zone.alternation.count = counts[zone.velocities];
        if (zone.alternation.count > 1) zone.alternation.kind = kind;
    }
}

void DrumkitReader::addInstrument(const pugi::xml_node& node, int key) {
    if (node.child("isMuted").text().as_bool()) {
        report_.add("muted instrument", "left out", node.child_value("name"));
        return;
    }
    if (node.child("filterActive").text().as_bool())
        report_.add("filter", "played unfiltered", node.child_value("name"));
    std::vector<ImportedZone> zones;
    for (const Layer& layer : readLayers(node)) {
        ImportedZone zone = zoneOf(node, key);
        if (layer.file.empty()) continue;
        const auto sample = pool_.find(folder_ + '/' + layer.file, zone.place);
        if (!sample) continue;
        zone.sample = sample->sample;
        zone.velocities.low = static_cast<int>(std::lround(std::clamp(layer.low, 0.0, 1.0) * 127));
        zone.velocities.high = static_cast<int>(std::lround(std::clamp(layer.high, 0.0, 1.0) * 127));
        zone.volume += decibels(layer.gain);
        zone.tune = layer.pitch * 100;
        zones.push_back(std::move(zone));
    }
    separate(zones);
    const bool inTurns = std::string_view(node.child_value("sampleSelectionAlgo")) == "ROUND_ROBIN";
    alternate(zones, inTurns ? ImportedAlternation::Kind::RoundRobin : ImportedAlternation::Kind::Random);
    kit_.zones.insert(kit_.zones.end(), zones.begin(), zones.end());
}

ImportedInstrument DrumkitReader::read() {
    const std::string path = folder_ + "/drumkit.xml";
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_file(filePath(path).c_str());
    if (!parsed) throw MakerError(path, parsed.description());
    const pugi::xml_node kit = document.child("drumkit_info");
    kit_.name = kit.child_value("name");
    if (kit_.name.empty()) kit_.name = utf8Text(filePath(folder_).filename());
    kit_.text = kit.child_value("author");
    int key = firstKey;
    for (const pugi::xml_node& node : kit.child("instrumentList").children("instrument")) {
        if (key > lastKey)
            report_.add("instrument above the last key", "left out", node.child_value("name"));
        else
            addInstrument(node, key++);
    }
    kit_.samples = pool_.takeSamples();
    return std::move(kit_);
}

} // namespace

ImportedInstrument readDrumkit(const std::string& folder, ImportReport& report) {
    return DrumkitReader(folder, report).read();
}

} // namespace zarno
