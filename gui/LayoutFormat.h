// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

// The vocabulary of panel layouts, as plain data: for the reader, and for tools that judge layouts.
namespace zarno {

enum class ControlKind { Label, Knob, Combo, Button, Keyboard };

struct ControlTag {
    std::string_view tag; // compared without regard to case
    ControlKind kind;
};
inline constexpr ControlTag controlTags[] = {{"label", ControlKind::Label},
                                             {"knob", ControlKind::Knob},
                                             {"combo", ControlKind::Combo},
                                             {"button", ControlKind::Button},
                                             {"keyboard", ControlKind::Keyboard}};

// The attributes of a control, but for colours. Those above "9" are colours: id plus layoutColourOffset.
inline constexpr std::string_view controlAttributes[] = {"x", "y", "width", "height", "1", "2", "3",
                                                         "4", "5", "6",     "7",      "8", "9"};

struct LayoutColour {
    int id; // the framework's
    ControlKind kind;
    std::string_view what;
};
// The colours that a layout may set, in the order in which they are applied.
inline constexpr LayoutColour layoutColours[] = {
    {0x1001312, ControlKind::Knob, "ring"},
    {0x1001311, ControlKind::Knob, "value on the ring"},
    {0x1000100, ControlKind::Button, "face"},
    {0x1000101, ControlKind::Button, "face while on"},
    {0x1000281, ControlKind::Label, "text"},
    {0x1005000, ControlKind::Keyboard, "white keys"},
    {0x1005001, ControlKind::Keyboard, "black keys"},
    {0x1005003, ControlKind::Keyboard, "key under the mouse"},
    {0x1005002, ControlKind::Keyboard, "lines between keys"},
    {0x1000a00, ControlKind::Combo, "text"},
    {0x1000c00, ControlKind::Combo, "outline"},
    {0x1000d00, ControlKind::Combo, "button"},
    {0x1000e00, ControlKind::Combo, "arrow"},
    {0x1000b00, ControlKind::Combo, "background"},
};
inline constexpr int layoutColourOffset = 100;

} // namespace zarno
