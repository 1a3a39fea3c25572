// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <map>
#include <numbers>
#include <string>

namespace zarno::test {

// One region as the definitions of its opcodes have it, evaluated for a note while no controller moves. As
// plain as can be, and without anything of the importer's.
struct SfzReference {
    std::map<std::string, double> opcodes;
    std::map<int, double> controllers; // 0..127 at the start

    struct Note {
        double left = 1, right = 1, cents = 0;
    };

    std::string text() const {
        std::string text = "<control>";
        for (const auto& [number, value] : controllers)
            text += " set_cc" + std::to_string(number) + '=' + std::to_string(value);
        text += "<region>";
        for (const auto& [name, value] : opcodes)
            text += ' ' + name + '=' + std::to_string(value);
        return text;
    }

    Note play(int key, int velocity) const {
        Note note;
        const double db =
            at("volume", 0) + moved("volume") + at("amp_keytrack", 0) * (key - at("amp_keycenter", 60));
        double gain = std::pow(10, db / 20) * at("amplitude", 100) / 100;
        for (const auto& [number, value] : controllers)
            if (opcodes.contains("amplitude_oncc" + std::to_string(number)))
                gain *= change("amplitude", number) / 100;
        gain *= byVelocity(velocity) * fade("vel", velocity) * fade("key", key);
        for (const auto& [number, value] : controllers)
            gain *= fade("cc" + std::to_string(number), value);
        note.left = note.right = gain;
        for (const char* name : {"pan", "position"}) {
            const double pan = std::min(100., std::max(-100., at(name, 0) + moved(name)));
            note.left *= std::sqrt(2) * std::cos((pan + 100) / 200 * std::numbers::pi / 2);
            note.right *= std::sqrt(2) * std::sin((pan + 100) / 200 * std::numbers::pi / 2);
        }
        note.cents = (key - at("pitch_keycenter", 60)) * at("pitch_keytrack", 100) +
                     100 * at("transpose", 0) + at("tune", 0) + moved("tune");
        return note;
    }

  private:
    double at(const std::string& name, double usual) const {
        const auto found = opcodes.find(name);
        return found == opcodes.end() ? usual : found->second;
    }
    double change(const std::string& name, int number) const {
        const double x = controllers.at(number) / 127, depth = at(name + "_oncc" + std::to_string(number), 0);
        switch (static_cast<int>(at(name + "_curvecc" + std::to_string(number), 0))) {
        case 1:
            return depth * (2 * x - 1);
        case 2:
            return depth * (1 - x);
        case 3:
            return depth * (1 - 2 * x);
        case 4:
            return depth * x * x;
        default:
            return depth * x;
        }
    }
    double moved(const std::string& name) const {
        double sum = 0;
        for (const auto& [number, value] : controllers)
            sum += change(name, number);
        return sum;
    }
    double byVelocity(int velocity) const {
        double curve = velocity / 127. * velocity / 127.;
        int below = 0, above = 127;
        double low = 0, high = 1;
        bool isGiven = false;
        for (int v = 1; v < 127; ++v) {
            if (!opcodes.contains("amp_velcurve_" + std::to_string(v))) continue;
            isGiven = true;
            const double point = opcodes.at("amp_velcurve_" + std::to_string(v));
            if (v <= velocity) below = v, low = point;
            if (v > velocity && v < above) above = v, high = point;
        }
        if (isGiven) curve = velocity == 127 ? 1 : low + (high - low) * (velocity - below) / (above - below);
        const double track = at("amp_veltrack", 100) / 100;
        return track >= 0 ? 1 - track + track * curve : 1 + track * curve;
    }
    // What of several is silent is silent; the square root has equal power.
    double fade(const std::string& unit, double value) const {
        const auto root = [](double x) { return std::sqrt(std::min(1., std::max(0., x))); };
        double gain = 1;
        if (opcodes.contains("xfin_lo" + unit)) {
            const double low = at("xfin_lo" + unit, 0), high = at("xfin_hi" + unit, 0);
            gain *= root((value - low) / (high - low));
        }
        if (opcodes.contains("xfout_lo" + unit)) {
            const double low = at("xfout_lo" + unit, 0), high = at("xfout_hi" + unit, 0);
            gain *= root((high - value) / (high - low));
        }
        return gain;
    }
};

} // namespace zarno::test
