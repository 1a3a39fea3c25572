// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/sfz/SfzDocument.h"

#include <array>
#include <map>
#include <set>
#include <string>

namespace zarno {

/// The controllers of an SFZ text as they stand when it was loaded, their names, and its curves.
class SfzControllers {
  public:
    SfzControllers();

    /// Every section has its say before any value is asked for: they may stand in any order.
    void read(const SfzSection& section);

    /// 0..1. What a note decides (its velocity, its key, chance) is in the middle of its range.
    double start(int controller) const;
    /// The value of a curve at 0..1, by number: seven that every player has, and those of the text.
    double curved(int curve, double value) const;
    /// "controller 74 (Cutoff)"
    std::string nameOf(int controller) const;
    /// The engine's controllers start at 0. True when that is as good as the start value to every range and
    /// crossfade of the text, so that groups can follow the controller.
    bool canFollow(int controller) const;

    static constexpr int count = 512;        ///< numbers a text may use; those from 128 on are no MIDI
    static constexpr int noteVelocity = 131; ///< the note's velocity as a controller

  private:
    using Curve = std::array<double, 128>;

    void readControl(const SfzOpcode& opcode);
    void readCurve(const SfzSection& section);
    void readThreshold(const SfzOpcode& opcode);

    std::map<int, double> starts_;
    std::map<int, std::string> labels_;
    std::map<int, Curve> curves_;
    std::map<int, std::set<int>> steps_; ///< values from which on ranges of a controller begin or have ended
};

} // namespace zarno
