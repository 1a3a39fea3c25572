// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzCrossfade.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

constexpr double silence = -144.0;

// 0..1 along a fade; the limits themselves belong to what lies outside.
double along(const SfzCrossfade::Fade& fade, double value) {
    if (value <= fade.low && fade.low < fade.high) return 0.0;
    if (value < fade.low) return 0.0;
    return value >= fade.high ? 1.0 : (value - fade.low) / (fade.high - fade.low);
}

} // namespace

double SfzCrossfade::decibelsAt(double value) const {
    double gain = 1.0;
    if (in) gain *= along(*in, value);
    if (out) gain *= 1.0 - (value <= out->low ? 0.0 : along(*out, value));
    if (gain <= 0.0) return silence;
    return (equalPower ? 10.0 : 20.0) * std::log10(gain);
}

SfzCrossfade sfzCrossfade(const SfzOpcodes& opcodes, const std::string& unit, int offset, int controller) {
    const std::string number = controller < 0 ? "" : std::to_string(controller);
    const auto fade = [&](const std::string& name, int lowest,
                          int highest) -> std::optional<SfzCrossfade::Fade> {
        const auto low = opcodes.key(name + "_lo" + unit + number),
                   high = opcodes.key(name + "_hi" + unit + number);
        if (!low && !high) return std::nullopt;
        SfzCrossfade::Fade made{low.value_or(lowest) + offset, high.value_or(highest) + offset};
        made.high = std::max(made.low, made.high);
        return made;
    };
    SfzCrossfade found;
    // Where one limit of a fade is missing, nothing fades: a fade in is over at 0, one out begins at 127.
    found.in = fade("xfin", 0, 0);
    found.out = fade("xfout", 127, 127);
    found.equalPower = opcodes.text("xf_" + unit + "curve", "power") != "gain";
    return found;
}

} // namespace zarno
