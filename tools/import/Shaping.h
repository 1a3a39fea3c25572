// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <compare>
#include <cstdint>

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

/// A level that rises in a straight line, holds and then falls in a straight line of dB, as dB on top of the
/// engine's envelope, which rises in a bend and falls by one pole, to the same sustain level, without a hold.
struct ImportedLevel {
    double silence = 0.0; ///< before it rises
    double attack = 0.0;  ///< the engine's, too, which does not wait for the silence to end
    double hold = 0.0;
    double slope = 0.0;    ///< dB a ms
    double sustain = 0.0;  ///< dB, negative
    bool isEngines = true; ///< it can do that alone, or nearly

    bool exists() const { return !isEngines; }
    bool falls() const { return slope > 0.0 && sustain < 0.0; }
    double wantedAt(double time) const; ///< dB
    /// The engine's slope at first, dB a ms: the same, unless the hold were too long for that.
    double engineSlope() const;
    double decibelsAt(double time) const; ///< at most headroom()
    double headroom() const;
    /// From here on the factor does not change.
    double end() const;
    auto operator<=>(const ImportedLevel&) const = default;

  private:
    double engineAt(double time) const;
    double holdsUntil() const { return silence + attack + hold; }
};

/// A filter that stands still, or an equaliser's band.
struct ImportedBand {
    enum class Kind {
        None,
        LowPass,
        HighPass,
        BandPass,
        Notch,
        Peak,
        LowShelf,
        HighShelf,
        LowPass1,
        HighPass1
    };

    Kind kind = Kind::None;
    double frequency = 0.0; ///< Hz
    double q = 0.7;
    double gain = 0.0;     ///< dB: of peak and shelves in their band, of others over all
    double tracking = 0.0; ///< cents a key by which the frequency follows
    int centre = 60;       ///< key of that frequency

    bool exists() const { return kind != Kind::None; }
    auto operator<=>(const ImportedBand&) const = default;
};

/// A slow triangle or sine, from 0 up at first.
struct ImportedSwing {
    double delay = 0.0;
    double rate = 0.0;   ///< Hz
    double pitch = 0.0;  ///< cents, at its peak
    double cutoff = 0.0; ///< cents
    double level = 0.0;  ///< dB
    bool isSine = false; ///< else a triangle

    bool exists() const { return pitch != 0.0 || cutoff != 0.0 || level != 0.0; }
    double at(double time) const;      ///< -1..+1
    double pitchAt(double time) const; ///< as a factor, 1 in the middle of all times
    auto operator<=>(const ImportedSwing&) const = default;
};

struct ImportedShaping {
    /// Two poles, the same at every key. Hz; 0: there is none.
    double cutoff = 0.0;
    double resonance = 0.0; ///< dB above a flat curve; the filter's gain is 1 at 0 Hz
    ImportedContour contour;
    double contourToCutoff = 0.0; ///< cents, at 1
    double contourToPitch = 0.0;  ///< cents, at 1; the zone's tune is without it
    ImportedLevel level;
    double longest = 1e9; ///< from here on contour and level stand still, wherever they are
    std::array<ImportedSwing, 2> swings;

    double cutoffTracking = 0.0; ///< cents a key by which the cutoff follows
    int cutoffCentre = 60;       ///< key at which it is `cutoff`
    std::array<ImportedBand, 6> bands;
    double width = 1.0;         ///< of a recording of two sides: 0 makes them one, -1 exchanges them
    bool isReversed = false;    ///< played from its end to its start
    std::uint64_t loopFade = 0; ///< frames before the loop's end that fade into those before its start

    bool exists() const {
        return cutoff > 0.0 || contourToPitch != 0.0 || level.exists() || swings[0].exists() ||
               swings[1].exists() || bands[0].exists() || width != 1.0 || isReversed || loopFade > 0;
    }
    /// As it is at one key: nothing follows keys any more.
    ImportedShaping atKey(double key) const;
    /// Without what nobody would hear in a recording of that rate: see the importer's guide.
    ImportedShaping audibleAt(double rate) const;
    double cutoffAt(double time) const; ///< Hz
    double pitchAt(double time) const;  ///< as a factor on what it is at rest
    double levelAt(double time) const;  ///< as a factor, turned down by headroom()
    double lowestCutoff() const;        ///< Hz
    /// dB by which a shaped recording is turned down, so that neither resonance nor level clips it.
    double headroom() const;
    double q() const; ///< of the filter
    /// From here on nothing moves any more but what swings.
    double end() const;
    auto operator<=>(const ImportedShaping&) const = default;
};

} // namespace zarno
