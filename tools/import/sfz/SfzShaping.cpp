// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzRegion.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

constexpr double middleVelocity = 0.5;
constexpr double leastEqGain = 0.5;      // dB
constexpr double leastBend = 1.0;        // cents
constexpr double leastCutoffMove = 50.0; // cents
constexpr double longestTime = 100000.0; // ms

class ShapingReader {
  public:
    ShapingReader(const SfzOpcodes& opcodes, const SfzControl& control, ImportedZone& zone,
                  ImportReport& report)
        : opcodes_(opcodes)
        , control_(control)
        , zone_(zone)
        , shaping_(zone.shaping)
        , report_(report) {}

    void filters();
    void equalisers();
    void envelopes();
    void swings();
    void direction();

  private:
    double number(const std::string& name, double otherwise = 0.0) const {
        return opcodes_.number(name, otherwise);
    }
    double milliseconds(const std::string& name, double otherwise = 0.0) const {
        return std::clamp(number(name, otherwise) * 1000.0, 0.0, longestTime);
    }
    void filter(const std::string& suffix, const std::string& prefix);
    void addBand(ImportedBand::Kind kind, double frequency, double q, double gain, double tracking,
                 int centre);
    ImportedContour contour(const std::string& envelope) const;
    void addSwing(ImportedSwing swing);

    const SfzOpcodes& opcodes_;
    const SfzControl& control_;
    ImportedZone& zone_;
    ImportedShaping& shaping_;
    ImportReport& report_;
};

void ShapingReader::addBand(ImportedBand::Kind kind, double frequency, double q, double gain, double tracking,
                            int centre) {
    const auto free = std::find_if(shaping_.bands.begin(), shaping_.bands.end(),
                                   [](const ImportedBand& band) { return !band.exists(); });
    if (free == shaping_.bands.end())
        return report_.add("more filters than can be shaped", "the first ones", zone_.place);
    *free = {kind,
             std::clamp(frequency, 1.0, 96000.0),
             std::clamp(q, 0.05, 100.0),
             std::clamp(gain, -60.0, 36.0),
             std::clamp(tracking, -1200.0, 1200.0),
             centre};
}

// "fil_type", "cutoff", "resonance"; of the second filter "fil2_type", "cutoff2", "resonance2".
void ShapingReader::filter(const std::string& suffix, const std::string& prefix) {
    using Kind = ImportedBand::Kind;
    const auto cutoff = opcodes_.number("cutoff" + suffix);
    if (!cutoff || *cutoff <= 0.0) return;
    const std::string type = opcodes_.text(prefix + "_type", "lpf_2p");
    const double resonance = std::clamp(number("resonance" + suffix), 0.0, 40.0);
    const double q = std::pow(10.0, resonance / 20.0); // the gain at the cutoff frequency
    const double frequency =
        *cutoff *
        std::exp2(std::clamp(middleVelocity * number(prefix + "_veltrack"), -9600.0, 9600.0) / 1200.0);
    const double tracking = number(prefix + "_keytrack");
    const int centre = opcodes_.key(prefix + "_keycenter").value_or(60) + control_.noteOffset;
    const double gain = number(prefix + "_gain");
    const auto add = [&](Kind kind, double itsQ) { addBand(kind, frequency, itsQ, gain, tracking, centre); };
    constexpr double flat = 0.70710678; // of a filter of two poles
    if (type == "lpf_2p" || type == "lpf_2p_sv") {
        if (shaping_.cutoff > 0.0) return add(Kind::LowPass, q);
        shaping_.cutoff = std::clamp(frequency, 1.0, 96000.0);
        shaping_.resonance = resonance + 20.0 * std::log10(std::numbers::sqrt2); // above a flat curve
        shaping_.cutoffTracking = std::clamp(tracking, -1200.0, 1200.0);
        shaping_.cutoffCentre = centre;
    } else if (type == "lpf_1p") {
        add(Kind::LowPass1, flat);
    } else if (type == "hpf_1p") {
        add(Kind::HighPass1, flat);
    } else if (type == "lpf_4p" || type == "lpf_6p") {
        add(Kind::LowPass, q);
        add(Kind::LowPass, flat);
        if (type == "lpf_6p") add(Kind::LowPass, flat);
    } else if (type == "hpf_2p" || type == "hpf_2p_sv" || type == "hpf_4p" || type == "hpf_6p") {
        add(Kind::HighPass, q);
        if (type == "hpf_4p" || type == "hpf_6p") add(Kind::HighPass, flat);
        if (type == "hpf_6p") add(Kind::HighPass, flat);
    } else if (type.starts_with("bpf_")) {
        add(Kind::BandPass, q);
    } else if (type.starts_with("brf_")) {
        add(Kind::Notch, q);
    } else if (type == "pkf_2p" || type == "peq") {
        add(Kind::Peak, q);
    } else if (type == "lsh") {
        add(Kind::LowShelf, flat);
    } else if (type == "hsh") {
        add(Kind::HighShelf, flat);
    } else {
        report_.add("fil_type=" + type, "played unfiltered", zone_.place);
    }
}

void ShapingReader::filters() {
    filter("", "fil");
    filter("2", "fil2");
}

void ShapingReader::equalisers() {
    constexpr double usual[] = {50.0, 500.0, 5000.0}; // Hz
    for (int i = 1; i <= 3; ++i) {
        const std::string name = "eq" + std::to_string(i) + '_';
        const double gain = number(name + "gain") + middleVelocity * number(name + "vel2gain");
        if (std::fabs(gain) < leastEqGain) continue;
        const double frequency =
            number(name + "freq", usual[i - 1]) + middleVelocity * number(name + "vel2freq");
        const double octaves = std::clamp(number(name + "bw", 1.0), 0.01, 8.0);
        const double q = 1.0 / (2.0 * std::sinh(0.5 * std::numbers::ln2 * octaves));
        const std::string type = opcodes_.text(name + "type", "peak");
        addBand(type == "lshelf"   ? ImportedBand::Kind::LowShelf
                : type == "hshelf" ? ImportedBand::Kind::HighShelf
                                   : ImportedBand::Kind::Peak,
                frequency, q, gain, 0.0, 60);
    }
}

ImportedContour ShapingReader::contour(const std::string& envelope) const {
    ImportedContour made;
    made.delay = milliseconds(envelope + "_delay");
    made.attack = milliseconds(envelope + "_attack");
    made.hold = milliseconds(envelope + "_hold");
    made.decay = milliseconds(envelope + "_decay");
    made.rest = std::clamp(number(envelope + "_sustain", 100.0) / 100.0, 0.0, 1.0);
    return made;
}

// One contour a zone: the pitch's, when both move.
void ShapingReader::envelopes() {
    const auto depthOf = [&](const std::string& envelope) {
        const double depth = number(envelope + "_depth") + middleVelocity * number(envelope + "_vel2depth");
        return std::clamp(depth, -12000.0, 12000.0);
    };
    const double bend = depthOf("pitcheg"), sweep = depthOf("fileg");
    if (std::fabs(bend) >= leastBend) {
        shaping_.contour = contour("pitcheg");
        shaping_.contourToPitch = bend;
        zone_.tune += bend * shaping_.contour.rest;
    }
    if (std::fabs(sweep) < leastCutoffMove || shaping_.cutoff <= 0.0) return;
    if (shaping_.contourToPitch != 0.0)
        return report_.add("filter envelope beside a pitch envelope", "the filter stands still", zone_.place);
    shaping_.contour = contour("fileg");
    shaping_.contourToCutoff = sweep;
}

void ShapingReader::addSwing(ImportedSwing swing) {
    if (std::fabs(swing.pitch) < leastBend) swing.pitch = 0.0;
    if (std::fabs(swing.cutoff) < leastCutoffMove || shaping_.cutoff <= 0.0) swing.cutoff = 0.0;
    if (std::fabs(swing.level) < leastEqGain) swing.level = 0.0;
    swing.rate = std::clamp(swing.rate, 0.0, 100.0);
    constexpr double slowest = 0.05; // Hz: a tenth of a turn while a note sounds
    if (!swing.exists() || swing.rate < slowest) return;
    for (ImportedSwing& free : shaping_.swings)
        if (!free.exists()) {
            free = swing;
            return;
        }
    report_.add("more than two LFOs", "the first two", zone_.place);
}

// What fades in begins where it has half its depth.
void ShapingReader::swings() {
    const auto timing = [&](const std::string& lfo) {
        ImportedSwing swing;
        swing.isSine = true;
        swing.rate = number(lfo + "_freq");
        swing.delay = milliseconds(lfo + "_delay") + 0.5 * milliseconds(lfo + "_fade");
        return swing;
    };
    for (const char* kind : {"pitchlfo", "fillfo", "amplfo"}) {
        ImportedSwing swing = timing(kind);
        const double depth = number(std::string(kind) + "_depth");
        (kind[0] == 'p'   ? swing.pitch
         : kind[0] == 'f' ? swing.cutoff
                          : swing.level) = std::clamp(depth, -4800.0, 4800.0);
        swing.level = std::clamp(swing.level, -24.0, 24.0);
        addSwing(swing);
    }
    for (int i = 1; i <= 8; ++i) {
        const std::string lfo = "lfo" + std::to_string(i);
        if (!opcodes_.has(lfo + "_freq")) continue;
        ImportedSwing swing = timing(lfo);
        swing.isSine = number(lfo + "_wave", 1.0) != 0.0;
        swing.pitch = std::clamp(number(lfo + "_pitch"), -4800.0, 4800.0);
        swing.cutoff = std::clamp(number(lfo + "_cutoff"), -4800.0, 4800.0);
        swing.level = std::clamp(number(lfo + "_volume"), -24.0, 24.0);
        addSwing(swing);
    }
}

void ShapingReader::direction() {
    shaping_.isReversed = opcodes_.text("direction") == "reverse";
}

} // namespace

void readSfzShaping(const SfzOpcodes& opcodes, const SfzControl& control, ImportedZone& zone,
                    ImportReport& report) {
    ShapingReader reader(opcodes, control, zone, report);
    reader.filters();
    reader.equalisers();
    reader.envelopes();
    reader.swings();
    reader.direction();
}

} // namespace zarno
