// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/draw/AutoPanel.h"

#include "data/load/InstrumentFile.h"
#include "gui/Theme.h"
#include "platform/Utf8.h"
#include "tools/draw/Canvas.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace zarno {
namespace {

constexpr int panelWidth = 640, panelHeight = 264;
constexpr int knobSize = 44, knobTop = 122;
constexpr int keyboardTop = 196, keyboardHeight = 66, keyboardInset = 10;
constexpr Box display{20, 44, 600, 58};

constexpr std::uint32_t captionInk = 0xffaeb4bf, bodyTop = 0xff2b2f37, bodyBottom = 0xff17191e,
                        glassTop = 0xff0d0f12, glassBottom = 0xff171a1f, cold = 0xffc9ced8;

struct Knob {
    const char* caption;
    int id; // see ControlBindings.h; 200 and above: a controller
};

struct Contents {
    bool sustains = false, hasReleaseSamples = false, hearsVelocity = false;
    int lowKey = 127, highKey = 0;
};

Contents contentsOf(const InstrumentFile& file) {
    Contents found;
    const auto include = [&](std::int32_t key) {
        found.lowKey = std::min(found.lowKey, std::clamp(key, 0, 127));
        found.highKey = std::max(found.highKey, std::clamp(key, 0, 127));
    };
    for (const GroupEntry& group : file.groups) {
        found.hasReleaseSamples |= group.record.releaseTrigger != 0;
        if (group.record.trigger == static_cast<std::int32_t>(GroupTrigger::Note))
            include(group.record.keyswitchNote);
        for (const ZoneEntry& zone : group.zones) {
            found.sustains |= loops(zone.record);
            found.hearsVelocity |= zone.record.ignoreVelocity == 0;
            include(zone.record.lowKey);
            include(zone.record.highKey);
        }
    }
    if (found.lowKey > found.highKey) found.lowKey = 36, found.highKey = 95;
    return found;
}

std::vector<Knob> knobsFor(const Contents& contents) {
    std::vector<Knob> knobs;
    if (contents.sustains) knobs.push_back({"ATTACK", 101});
    knobs.push_back({"RELEASE", 104});
    if (contents.hasReleaseSamples) knobs.push_back({"KEY-UP DECAY", 105});
    if (contents.hearsVelocity) knobs.push_back({"DYNAMICS", 7});
    if (contents.sustains) knobs.push_back({"VIBRATO", 201});
    for (const Knob& each : {Knob{"REVERB", 6}, Knob{"VOLUME", 2}, Knob{"PAN", 3}})
        knobs.push_back(each);
    return knobs;
}

double knobMiddle(std::size_t index, std::size_t count) {
    constexpr double inset = 14;
    const double room = (panelWidth - 2 * inset) / static_cast<double>(count);
    return std::round(inset + room * (static_cast<double>(index) + 0.5));
}

// A plucked note as bars; which one, the name decides.
void drawWaveform(Canvas& canvas, const std::string& name) {
    std::minstd_rand random(static_cast<unsigned>(std::hash<std::string>()(name)));
    const auto number = [&] { return static_cast<double>(random() % 1000) / 1000.0; };
    const double first = 0.5 + number() * 0.4, second = 0.15 + number() * 0.1, middle = 22;
    for (int x = 22; x < panelWidth - 20; x += 4) {
        const double t = (x - 22) / 600.0;
        const double ripple = 0.6 + 0.4 * std::abs(std::sin(x * first) * std::cos(x * second));
        const double half = std::max(0.7, 15 * (1 - std::exp(-t * 60 - 0.3)) * std::exp(-2.6 * t) * ripple);
        const double warm = std::max(0.0, 1 - 2 * t);
        const auto alpha = static_cast<std::uint32_t>(255 * (0.13 + 0.62 * std::pow(warm, 1.5)));
        canvas.fill({static_cast<double>(x), middle - half, 2, 2 * half},
                    ((t < 0.3 ? theme::accent : cold) & 0xFFFFFF) | (alpha << 24), 1);
    }
}

std::vector<std::uint8_t> drawBackground(const std::string& name, const std::vector<Knob>& knobs) {
    Canvas canvas(panelWidth, panelHeight);
    canvas.fade({0, 0, panelWidth, panelHeight}, bodyTop, bodyBottom);
    canvas.fill({0, 0, panelWidth, 1}, 0x17ffffff);
    drawWaveform(canvas, name);
    canvas.fade(display, glassTop, glassBottom, 7);
    canvas.outline(display, 0x22ffffff, 1, 7);
    canvas.text(name, display.x + 18, display.y + 31, {23, theme::text, true, 0.4}, Canvas::Align::Left,
                display.width - 36);
    for (std::size_t i = 0; i < knobs.size(); ++i) {
        const double x = knobMiddle(i, knobs.size());
        canvas.shade(x, knobTop + knobSize / 2.0, knobSize / 2.0 + 5, 0x6b000000);
        canvas.text(knobs[i].caption, x, knobTop + knobSize + 15, {8.5, captionInk, false, 1.2},
                    Canvas::Align::Middle);
    }
    canvas.fill({keyboardInset - 3.0, keyboardTop - 3.0, panelWidth - 2.0 * (keyboardInset - 3),
                 keyboardHeight + 9.0},
                0xff0d0e11, 4);
    return canvas.png();
}

std::string element(const char* tag, int x, int y, int width, int height, const std::string& rest) {
    return std::string("<") + tag + " x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) +
           "\" width=\"" + std::to_string(width) + "\" height=\"" + std::to_string(height) + "\" " + rest +
           "/>\n";
}

// Whole octaves, four at least; a keyboard of more than seven has keys too narrow to hit.
std::string keyRange(const Contents& contents) {
    int low = contents.lowKey / 12 * 12, high = std::min(127, contents.highKey / 12 * 12 + 11);
    while (high - low < 47)
        low >= 12 ? low -= 12 : high += 12;
    if (high - low > 83) low = std::max(low, 24), high = std::min(high, low + 83);
    return std::to_string(low) + ',' + std::to_string(high);
}

std::string writeLayout(const Contents& contents, const std::vector<Knob>& knobs) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<player width=\"" +
                       std::to_string(panelWidth) + "\" height=\"" + std::to_string(panelHeight) + "\">\n";
    // The groups that sound.
    text +=
        element("label", static_cast<int>(display.x) + 13, static_cast<int>(display.y) + 35,
                static_cast<int>(display.width) - 60, 18, "2=\"2\" 5=\"33\" 7=\"12\" 16777957=\"ff9aa1ad\"");
    text += element("button", static_cast<int>(display.x + display.width) - 36,
                    static_cast<int>(display.y) + 18, 24, 22, "2=\"9\" 1=\"0\"");
    for (std::size_t i = 0; i < knobs.size(); ++i)
        text += element("knob", static_cast<int>(knobMiddle(i, knobs.size())) - knobSize / 2, knobTop,
                        knobSize, knobSize, "2=\"" + std::to_string(knobs[i].id) + '"');
    text += element("keyboard", keyboardInset, keyboardTop, panelWidth - 2 * keyboardInset, keyboardHeight,
                    "4=\"" + keyRange(contents) + '"');
    return text + "</player>\n";
}

} // namespace

void addAutoPanel(InstrumentFile& file) {
    const Contents contents = contentsOf(file);
    const auto knobs = knobsFor(contents);
    file.layout = {writeLayout(contents, knobs), true};
    file.image = drawBackground(toUtf8(file.name.text()), knobs);
    file.imageSize = static_cast<std::int32_t>(file.image.size());
}

} // namespace zarno
