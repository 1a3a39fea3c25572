// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <compare>

// What sounds in other formats while a note is held and the engine has nothing for: a low-pass filter, pitch
// and filter that move, levels that hold before they fall. The importer does it to copies of the recording,
// each for a few keys. All times in ms.
namespace zarno {

/// A contour that starts with the note: it rises to 1 and falls to rest.
struct ImportedContour {
    double delay = 0.0;
    double attack = 0.0; ///< the rise is steep first, as a level's that rises in a straight line would be
    double hold = 0.0;
    double decay = 0.0; ///< of the fall from 1 to 0, in a straight line; it stops at `rest`
    double rest = 0.0;  ///< 0..1

    double at(double time) const;
    /// When it has come to rest.
    double end() const { return delay + attack + hold + decay * (1.0 - rest); }
    auto operator<=>(const ImportedContour&) const = default;
};

/// A level that holds and then falls in a straight line of dB, as a factor on the engine's envelope, which
/// falls by one pole, to the same sustain level, without a hold.
struct ImportedFall {
    double start = 0.0; ///< when the hold begins: behind the attack
    double hold = 0.0;
    double slope = 0.0;   ///< dB a ms; 0: there is no such thing
    double sustain = 0.0; ///< dB, negative

    /// The engine's slope at first, dB a ms: the same, unless the hold were too long for that.
    double engineSlope() const;
    bool exists() const { return slope > 0.0 && sustain < 0.0; }
    double decibelsAt(double time) const; ///< at most headroom()
    double headroom() const;
    /// From here on the factor does not change.
    double end() const;
    auto operator<=>(const ImportedFall&) const = default;

  private:
    double decibelsBehind(double time) const;
};

/// A slow triangle, from 0 up at first.
struct ImportedSwing {
    double delay = 0.0;
    double rate = 0.0;       ///< Hz
    double pitch = 0.0;      ///< cents, at its peak
    double cutoff = 0.0;     ///< cents
    double level = 0.0;      ///< dB
    bool onlySofter = false; ///< half of it does not make the level more than full

    bool exists() const { return pitch != 0.0 || cutoff != 0.0 || level != 0.0; }
    double at(double time) const;      ///< -1..+1
    double pitchAt(double time) const; ///< as a factor, 1 in the middle of all times
    double levelAt(double time) const; ///< dB
    auto operator<=>(const ImportedSwing&) const = default;
};

struct ImportedShaping {
    /// Two poles, the same at every key. Hz; 0: there is none.
    double cutoff = 0.0;
    double resonance = 0.0; ///< dB above a flat curve; the filter's gain is 1 at 0 Hz
    double silence = 0.0;   ///< before the recording begins
    ImportedContour contour;
    double contourToCutoff = 0.0; ///< cents, at 1
    double contourToPitch = 0.0;  ///< cents, at 1; the zone's tune is without it
    ImportedFall fall;
    double longest = 1e9; ///< from here on contour and fall stand still, wherever they are
    std::array<ImportedSwing, 2> swings;

    bool exists() const {
        return cutoff > 0.0 || contourToPitch != 0.0 || silence > 0.0 || fall.exists() ||
               swings[0].exists() || swings[1].exists();
    }
    double cutoffAt(double time) const; ///< Hz
    double pitchAt(double time) const;  ///< as a factor on what it is at rest
    double levelAt(double time) const;  ///< as a factor, turned down by headroom()
    double lowestCutoff() const;        ///< Hz
    /// dB by which a shaped recording is turned down, so that neither resonance nor fall clips it.
    double headroom() const;
    double q() const; ///< of the filter
    /// From here on nothing moves any more but what swings.
    double end() const;
    auto operator<=>(const ImportedShaping&) const = default;
};

} // namespace zarno
