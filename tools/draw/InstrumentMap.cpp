// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/draw/InstrumentMap.h"

#include "data/load/InstrumentFile.h"
#include "platform/Utf8.h"
#include "tools/draw/Canvas.h"

#include <algorithm>
#include <string>
#include <vector>

namespace zarno {
namespace {

constexpr std::uint32_t paper = 0xff1d2025, field = 0xff15171b, gridLine = 0xff2b2f37, ink = 0xfff1f3f6,
                        quietInk = 0xff9aa1ad, whiteKey = 0xffe9e6e0, blackKey = 0xff1b1c20;
// Told apart also by those who do not see all colours, as far as eight can be.
constexpr std::uint32_t groupColours[] = {0xfff2a54a, 0xff5ab4e8, 0xff6fcf97, 0xffe8735a,
                                          0xffb79cf0, 0xfff2d64a, 0xff4ac7c0, 0xffe88bbd};

constexpr double keyWidth = 14, margin = 22, axis = 46, keyboardHeight = 74, legendRow = 20, titleHeight = 58,
                 switchHeight = 20, laneGap = 16;

std::uint32_t colourOf(std::size_t group) {
    return groupColours[group % std::size(groupColours)];
}
std::uint32_t withAlpha(std::uint32_t colour, std::uint32_t alpha) {
    return (colour & 0xFFFFFF) | (alpha << 24);
}

bool isBlack(int key) {
    constexpr bool black[] = {false, true, false, true, false, false, true, false, true, false, true, false};
    return black[key % 12];
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

std::string shortName(std::string_view sample) {
    const auto slash = sample.find_last_of("\\/");
    std::string name(slash == std::string_view::npos ? sample : sample.substr(slash + 1));
    const auto dot = name.rfind('.');
    return toUtf8(name.substr(0, dot == 0 ? std::string::npos : dot));
}

// What makes a group sound, for the legend.
std::string triggerText(const GroupRecord& r) {
    std::string text;
    switch (static_cast<GroupTrigger>(r.trigger.load())) {
    case GroupTrigger::Always:
        break;
    case GroupTrigger::Channel:
        text = "channel " + std::to_string(r.channel + 1);
        break;
    case GroupTrigger::Note:
        text = "keyswitch " + std::to_string(r.keyswitchNote);
        break;
    case GroupTrigger::Controller:
        text = "controller " + std::to_string(r.controllerNumber) + " from " +
               std::to_string(r.controllerLow) + " to " + std::to_string(r.controllerHigh);
        break;
    case GroupTrigger::Program:
        text = "program " + std::to_string(r.program);
        break;
    case GroupTrigger::Manual:
        text = "chosen by hand";
        break;
    }
    constexpr const char* selections[] = {"", "round robin", "random robin", "random"};
    const std::int32_t selection = r.selectionMode;
    const auto add = [&](const std::string& more) { text += (text.empty() ? "" : ", ") + more; };
    if (selection > 0 && selection < 4) add(selections[selection]);
    if (r.releaseTrigger != 0) add("on release");
    if (r.excluded != 0) add("excluded");
    return text;
}

// A zone as far as its group lets it sound.
struct Area {
    int lowKey, highKey, low, high; // velocities

    Area(const GroupRecord& group, const ZoneRecord& zone)
        : lowKey(std::max({zone.lowKey, group.lowKey.load(), 0}))
        , highKey(std::min({zone.highKey, group.highKey.load(), 127}))
        , low(std::max({zone.lowVelocity, group.lowVelocity.load(), 1}))
        , high(std::min({zone.highVelocity, group.highVelocity.load(), 127})) {}
    bool isEmpty() const { return lowKey > highKey || low > high; }
    bool overlaps(const Area& other) const {
        return lowKey <= other.highKey && other.lowKey <= highKey && low <= other.high && other.low <= high;
    }
};

// Groups whose zones lie over each other are drawn one below the other: which lane each group is in.
std::vector<std::size_t> lanesOf(const InstrumentFile& file) {
    constexpr std::size_t mostLanes = 8; // the last one takes what is left
    std::vector<std::vector<Area>> lanes;
    std::vector<std::size_t> chosen;
    for (const GroupEntry& group : file.groups) {
        std::vector<Area> areas;
        for (const ZoneEntry& zone : group.zones)
            if (const Area area(group.record, zone.record); !area.isEmpty()) areas.push_back(area);
        const auto isFree = [&](const std::vector<Area>& lane) {
            return std::none_of(areas.begin(), areas.end(), [&](const Area& area) {
                return std::any_of(lane.begin(), lane.end(),
                                   [&](const Area& other) { return area.overlaps(other); });
            });
        };
        auto lane = std::find_if(lanes.begin(), lanes.end(), isFree);
        if (lane == lanes.end() && lanes.size() < mostLanes)
            lane = lanes.insert(lanes.end(), std::vector<Area>());
        if (lane == lanes.end()) --lane;
        lane->insert(lane->end(), areas.begin(), areas.end());
        chosen.push_back(static_cast<std::size_t>(lane - lanes.begin()));
    }
    return chosen;
}

class Map {
  public:
    explicit Map(const InstrumentFile& file)
        : file_(file)
        , lanes_(lanesOf(file)) {
        findKeys();
        for (const std::size_t lane : lanes_)
            laneCount_ = std::max(laneCount_, lane + 1);
        velocityHeight_ = laneCount_ == 1 ? 3.4 : laneCount_ == 2 ? 2.4 : 1.6;
        height_ = fieldBottom() + switchHeight + keyboardHeight + margin +
                  static_cast<double>(shownGroups()) * legendRow + margin;
    }

    std::vector<std::uint8_t> draw() {
        Canvas canvas(static_cast<int>(axis + keys() * keyWidth + 2 * margin), static_cast<int>(height_));
        canvas_ = &canvas;
        canvas.fill({0, 0, 1e5, 1e5}, paper);
        title();
        grid();
        for (std::size_t g = 0; g < file_.groups.size(); ++g)
            for (const ZoneEntry& each : file_.groups[g].zones)
                zone(file_.groups[g].record, each, colourOf(g), lanes_[g]);
        keyboard();
        keyswitches();
        legend();
        return canvas.png();
    }

  private:
    static constexpr std::size_t mostLegendRows = 40;

    std::size_t shownGroups() const { return std::min(file_.groups.size(), mostLegendRows); }
    int keys() const { return highKey_ - lowKey_ + 1; }
    double keyX(int key) const { return margin + axis + (key - lowKey_) * keyWidth; }
    double laneHeight() const { return 127 * velocityHeight_; }
    double laneTop(std::size_t lane) const {
        return titleHeight + static_cast<double>(lane) * (laneHeight() + laneGap);
    }
    double velocityY(int velocity, std::size_t lane) const {
        return laneTop(lane) + (127 - velocity) * velocityHeight_;
    }
    double fieldBottom() const { return laneTop(laneCount_ - 1) + laneHeight(); }

    // Whole octaves around what is used, four at least.
    void findKeys() {
        int low = 127, high = 0;
        const auto include = [&](std::int32_t key) {
            low = std::min(low, std::clamp(key, 0, 127));
            high = std::max(high, std::clamp(key, 0, 127));
        };
        for (const GroupEntry& group : file_.groups) {
            if (isKeyswitched(group)) include(group.record.keyswitchNote);
            for (const ZoneEntry& zone : group.zones) {
                include(std::max<std::int32_t>(zone.record.lowKey, group.record.lowKey));
                include(std::min<std::int32_t>(zone.record.highKey, group.record.highKey));
            }
        }
        if (low > high) low = 48, high = 72;
        lowKey_ = low / 12 * 12;
        highKey_ = std::min(127, std::max(high / 12 * 12 + 11, lowKey_ + 47));
    }
    static bool isKeyswitched(const GroupEntry& group) {
        return group.record.trigger == static_cast<std::int32_t>(GroupTrigger::Note);
    }

    void title() {
        std::size_t zones = 0;
        for (const GroupEntry& group : file_.groups)
            zones += group.zones.size();
        const double room = keys() * keyWidth;
        canvas_->text(toUtf8(file_.name.text()), keyX(lowKey_), 30, {20, ink, true}, Canvas::Align::Left,
                      room);
        canvas_->text(counted(file_.groups.size(), "group") + ", " + counted(zones, "zone"), keyX(lowKey_),
                      48, {12, quietInk}, Canvas::Align::Left, room);
    }

    void grid() {
        for (std::size_t lane = 0; lane < laneCount_; ++lane)
            gridOf(lane);
        canvas_->text("velocity", keyX(lowKey_) - 8, fieldBottom() + 15, {11, quietInk},
                      Canvas::Align::Right);
    }

    void gridOf(std::size_t lane) {
        canvas_->fill({keyX(lowKey_), laneTop(lane), keys() * keyWidth, laneHeight()}, field);
        for (int key = lowKey_; key <= highKey_; ++key)
            if (key % 12 == 0)
                canvas_->line(keyX(key), laneTop(lane), keyX(key), laneTop(lane) + laneHeight(), gridLine);
        for (const int velocity : {1, 32, 64, 96, 127}) {
            const double y = velocityY(velocity, lane) + velocityHeight_ / 2;
            canvas_->line(keyX(lowKey_), y, keyX(highKey_ + 1), y, gridLine);
            canvas_->text(std::to_string(velocity), keyX(lowKey_) - 8, y + 4, {11, quietInk},
                          Canvas::Align::Right);
        }
    }

    void zone(const GroupRecord& group, const ZoneEntry& entry, std::uint32_t colour, std::size_t lane) {
        const Area area(group, entry.record);
        if (area.isEmpty()) return;
        const Box box{keyX(area.lowKey), velocityY(area.high, lane),
                      (area.highKey - area.lowKey + 1) * keyWidth,
                      (area.high - area.low + 1) * velocityHeight_};
        canvas_->fill(box, withAlpha(colour, 0x48), 2);
        canvas_->outline(box, withAlpha(colour, 0xd0), 1, 2);
        label(shortName(entry.sample.text()), box);
    }

    // Across or upwards, as it fits; not on top of another one, as alternatives of one zone would have it.
    void label(const std::string& name, const Box& box) {
        const bool isTaken = std::any_of(labelled_.begin(), labelled_.end(), [&](const Box& other) {
            return box.x < other.x + other.width && other.x < box.x + box.width &&
                   box.y < other.y + other.height && other.y < box.y + box.height;
        });
        if (isTaken) return;
        labelled_.push_back(box);
        const Canvas::Lettering lettering{9.5, ink};
        const bool fitsAcross = canvas_->widthOf(name, lettering) <= box.width - 8;
        if (box.height >= 14 && (fitsAcross || box.width >= box.height))
            canvas_->text(name, box.x + 4, box.y + 11, lettering, Canvas::Align::Left, box.width - 8);
        else if (box.width >= keyWidth)
            canvas_->upwardText(name, box.x + box.width / 2 + 3.5, box.y + box.height - 5, lettering,
                                box.height - 10);
    }

    void keyboard() {
        const double top = fieldBottom() + switchHeight;
        const double left = keyX(lowKey_), width = keys() * keyWidth;
        canvas_->fill({left, top, width, keyboardHeight - 18}, whiteKey);
        for (int key = lowKey_; key <= highKey_; ++key) {
            const double x = keyX(key);
            if (isBlack(key)) {
                // The line between its neighbours, in its middle.
                canvas_->line(x + keyWidth / 2, top, x + keyWidth / 2, top + keyboardHeight - 18, 0xffb9b5ab);
                canvas_->fill({x + 1, top, keyWidth - 2, 34}, blackKey, 1.5);
            } else if (key % 12 == 0 || key % 12 == 5) {
                canvas_->line(x, top, x, top + keyboardHeight - 18, 0xffb9b5ab);
            }
            if (key % 12 == 0)
                canvas_->text("C" + std::to_string(key / 12 - 1) + " \u00b7 " + std::to_string(key), x + 2,
                              top + keyboardHeight - 4, {11, quietInk});
        }
    }

    // A flag above the key, in the colour of the group it switches to.
    void keyswitches() {
        const double top = fieldBottom();
        for (std::size_t g = 0; g < file_.groups.size(); ++g) {
            if (!isKeyswitched(file_.groups[g])) continue;
            const int key = file_.groups[g].record.keyswitchNote;
            if (key < lowKey_ || key > highKey_) continue;
            const double x = keyX(key), keyTop = top + switchHeight;
            canvas_->fill({x + 1, top + 4, keyWidth - 2, switchHeight - 4}, colourOf(g), 2);
            canvas_->text("K", x + keyWidth / 2, top + 16, {10, blackKey, true}, Canvas::Align::Middle);
            canvas_->fill({x + 2, keyTop, keyWidth - 4, isBlack(key) ? 32.0 : keyboardHeight - 20},
                          withAlpha(colourOf(g), isBlack(key) ? 0xff : 0xb0), 1.5);
        }
    }

    void legend() {
        double y = fieldBottom() + switchHeight + keyboardHeight + margin;
        for (std::size_t g = 0; g < shownGroups(); ++g, y += legendRow) {
            const GroupEntry& group = file_.groups[g];
            canvas_->fill({keyX(lowKey_), y - 10, 14, 12}, colourOf(g), 2);
            const std::string name = toUtf8(group.name.text());
            const double nameX = keyX(lowKey_) + 22;
            canvas_->text(name, nameX, y, {12, ink}, Canvas::Align::Left, keys() * keyWidth * 0.55);
            const double behind =
                nameX + std::min(canvas_->widthOf(name, {12, ink}), keys() * keyWidth * 0.55) + 12;
            std::string rest = counted(group.zones.size(), "zone");
            if (const std::string trigger = triggerText(group.record); !trigger.empty())
                rest += ", " + trigger;
            if (g + 1 == mostLegendRows && file_.groups.size() > mostLegendRows)
                rest += " (and " + std::to_string(file_.groups.size() - mostLegendRows) + " more groups)";
            canvas_->text(rest, behind, y, {12, quietInk}, Canvas::Align::Left, keyX(highKey_ + 1) - behind);
        }
    }

    const InstrumentFile& file_;
    std::vector<std::size_t> lanes_; // of each group
    std::size_t laneCount_ = 1;
    double velocityHeight_ = 1;
    std::vector<Box> labelled_;
    Canvas* canvas_ = nullptr;
    int lowKey_ = 0, highKey_ = 127;
    double height_ = 0;
};

} // namespace

std::vector<std::uint8_t> drawInstrumentMap(const InstrumentFile& file) {
    return Map(file).draw();
}

} // namespace zarno
