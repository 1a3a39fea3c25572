// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/Shaping.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {
namespace {

constexpr double decibelsPerTimeConstant = 8.685889638; // 20 log10(e)

double decibels(double gain) {
    return 20.0 * std::log10(gain);
}

// A straight line of 96 dB, seen as a level that rises 40 dB for a factor of ten.
double convex(double x) {
    return x <= 0.0 ? 0.0 : std::max(0.0, 1.0 + 40.0 / 96.0 * std::log10(x));
}

} // namespace

double ImportedContour::at(double time) const {
    time -= delay;
    if (time < 0.0) return 0.0;
    if (time < attack) return convex(time / attack);
    time -= attack + hold;
    if (time < 0.0) return 1.0;
    return decay > 0.0 ? std::max(rest, 1.0 - time / decay) : rest;
}

double ImportedLevel::engineSlope() const {
    constexpr double mostHeadroom = 24.0; // dB: four bits of sixteen
    return -sustain <= mostHeadroom ? slope : std::min(slope, mostHeadroom / std::max(silence + hold, 1e-3));
}

double ImportedLevel::wantedAt(double time) const {
    if (time < silence + attack) return decibels(std::max(1e-5, (time - silence) / attack));
    return falls() ? std::max(sustain, -slope * std::max(0.0, time - holdsUntil())) : 0.0;
}

double ImportedLevel::engineAt(double time) const {
    constexpr double aim = 1.5873016; // of the engine's attack, which is over when it reaches 1
    if (time < attack) return decibels(std::max(1e-5, std::min(1.0, aim * -std::expm1(-time / attack))));
    if (!falls()) return 0.0;
    const double floor = std::pow(10.0, sustain / 20.0);
    const double timeConstant = decibelsPerTimeConstant / engineSlope();
    return decibels(floor + (1.0 - floor) * std::exp((attack - time) / timeConstant));
}

double ImportedLevel::decibelsAt(double time) const {
    return exists() ? wantedAt(std::min(time, end())) - engineAt(std::min(time, end())) : 0.0;
}

// The engine is ahead until the hold ends, most of all then, and behind from then on.
double ImportedLevel::headroom() const {
    return exists() ? wantedAt(holdsUntil()) - engineAt(holdsUntil()) : 0.0;
}

double ImportedLevel::end() const {
    if (!exists()) return 0.0;
    constexpr double inaudible = -90.0;   // dB; a fall to below is a straight line in the engine, too
    constexpr double timeConstants = 4.0; // until the engine is within 0.2 dB of its sustain level
    if (!falls() || (sustain < inaudible && engineSlope() == slope)) return holdsUntil();
    const double fallen = holdsUntil() - sustain / slope;
    return sustain < inaudible ? fallen : fallen + timeConstants * decibelsPerTimeConstant / engineSlope();
}

double ImportedSwing::at(double time) const {
    if (time < delay) return 0.0;
    if (isSine) return std::sin(2.0 * std::numbers::pi * (time - delay) * rate / 1000.0);
    const double turns = (time - delay) * rate / 1000.0 + 0.25;
    const double x = 4.0 * (turns - std::floor(turns)); // 0..4 from the lowest point
    return x < 2.0 ? x - 1.0 : 3.0 - x;
}

// A swing in cents is longer above than below; without the division a loop would end behind its end.
double ImportedSwing::pitchAt(double time) const {
    if (pitch == 0.0 || time < delay) return 1.0;
    const double octaves = pitch / 1200.0 * std::numbers::ln2;
    const double mean = isSine ? std::cyl_bessel_i(0.0, std::fabs(octaves)) : std::sinh(octaves) / octaves;
    return std::exp(octaves * at(time)) / mean;
}

double ImportedShaping::cutoffAt(double time) const {
    double cents = contourToCutoff * contour.at(std::min(time, longest));
    for (const ImportedSwing& swing : swings)
        cents += swing.cutoff * swing.at(time);
    return cutoff * std::exp2(cents / 1200.0);
}

double ImportedShaping::lowestCutoff() const {
    double cents = std::min(0.0, contourToCutoff);
    for (const ImportedSwing& swing : swings)
        cents -= std::fabs(swing.cutoff);
    return cutoff * std::exp2(cents / 1200.0);
}

double ImportedShaping::pitchAt(double time) const {
    const double bend =
        contourToPitch == 0.0 ? 0.0 : contourToPitch * (contour.at(std::min(time, longest)) - contour.rest);
    return std::exp2(bend / 1200.0) * swings[0].pitchAt(time) * swings[1].pitchAt(time);
}

// No swing makes a level more than full.
double ImportedShaping::levelAt(double time) const {
    const double swing = swings[0].level * swings[0].at(time) + swings[1].level * swings[1].at(time);
    time = std::min(time, longest);
    const double added = level.decibelsAt(time) + std::min(swing, -level.wantedAt(time));
    return std::pow(10.0, (added - headroom()) / 20.0);
}

ImportedShaping ImportedShaping::atKey(double key) const {
    ImportedShaping made = *this;
    made.cutoff *= std::exp2(cutoffTracking * (key - cutoffCentre) / 1200.0);
    made.cutoffTracking = 0.0;
    made.cutoffCentre = 0;
    for (ImportedBand& band : made.bands) {
        band.frequency *= std::exp2(band.tracking * (key - band.centre) / 1200.0);
        band.tracking = 0.0;
        band.centre = 0;
    }
    return made;
}

// A filter that lets everything pass that the recording holds and an ear hears.
ImportedShaping ImportedShaping::audibleAt(double rate) const {
    constexpr double highest = 19000.0, lowest = 20.0; // Hz
    const double top = std::min(highest, 0.5 * rate);
    ImportedShaping made = *this;
    if (lowestCutoff() >= top) made.cutoff = made.resonance = made.contourToCutoff = 0.0;
    if (made.cutoff == 0.0) made.resonance = 0.0;
    std::array<ImportedBand, 6> kept;
    std::size_t count = 0;
    for (const ImportedBand& band : bands) {
        using Kind = ImportedBand::Kind;
        const bool isLow = band.kind == Kind::LowPass || band.kind == Kind::LowPass1;
        const bool isHigh = band.kind == Kind::HighPass || band.kind == Kind::HighPass1;
        const bool isOutside = (isLow && band.frequency >= top) || (isHigh && band.frequency <= lowest) ||
                               (band.kind == Kind::Peak && band.frequency >= 0.5 * rate);
        if (band.exists() && !(isOutside && band.gain == 0.0)) kept[count++] = band;
    }
    made.bands = kept;
    return made;
}

double ImportedShaping::q() const {
    return std::pow(10.0, resonance / 20.0) / std::numbers::sqrt2;
}

double ImportedShaping::headroom() const {
    double room = level.headroom() + (cutoff > 0.0 ? std::max(0.0, decibels(q())) : 0.0);
    for (const ImportedBand& band : bands) {
        const bool isFilter = band.kind != ImportedBand::Kind::Peak &&
                              band.kind != ImportedBand::Kind::LowShelf &&
                              band.kind != ImportedBand::Kind::HighShelf;
        if (band.exists())
            room += std::max(0.0, band.gain) + (isFilter ? std::max(0.0, decibels(band.q)) : 0.0);
    }
    if (level.falls()) room += std::fabs(swings[0].level) + std::fabs(swings[1].level);
    return room;
}

double ImportedShaping::end() const {
    const bool moves = contourToPitch != 0.0 || (cutoff > 0.0 && contourToCutoff != 0.0);
    const double rests = std::min(longest, std::max(level.end(), moves ? contour.end() : 0.0));
    return std::max({level.silence, rests, swings[0].delay, swings[1].delay});
}

} // namespace zarno
