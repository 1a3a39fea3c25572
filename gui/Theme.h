// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

// The appearance of everything that a layout does not describe: colours as ARGB, lengths in pixels at 100 %.
// No other file of the window names a colour of its own surfaces.
namespace zarno::theme {

inline constexpr std::uint32_t body = 0xff1d2025; // around the panel, and the surfaces that cover it
inline constexpr std::uint32_t bar = 0xff15171b;  // the bar below it
inline constexpr std::uint32_t field = 0xff101216; // text fields and lists
inline constexpr std::uint32_t bubble = 0xff0d0f12;
inline constexpr std::uint32_t menu = 0xff24272d;
inline constexpr std::uint32_t quietButton = 0xff23262c;
inline constexpr std::uint32_t raised = 0xff32363e; // buttons on surfaces
inline constexpr std::uint32_t outline = 0xff454a54;
inline constexpr std::uint32_t text = 0xfff1f3f6;
inline constexpr std::uint32_t quietText = 0xffa7aebb;
inline constexpr std::uint32_t accent = 0xfff2a54a;     // the one accent: what is on, chosen or focused
inline constexpr std::uint32_t accentText = 0xff15171b; // on the accent
inline constexpr std::uint32_t warning = 0xfff08a70;
inline constexpr std::uint32_t good = 0xff7fc48b; // the level meter, and files that will be taken
inline constexpr std::uint32_t whiteKey = 0xffe9e6e0;
inline constexpr std::uint32_t blackKey = 0xff1b1c20;

inline constexpr float textHeight = 13.0f, smallTextHeight = 12.0f, titleHeight = 18.0f;
inline constexpr float corner = 4.0f;

// What stands on what. A test computes the contrast of each pair (WCAG 2.1): at least 4.5 for text, 3 for marks
// such as the focus ring.
struct Pair {
    const char* what;
    std::uint32_t front, back;
    double leastContrast;
};
inline constexpr Pair pairs[] = {
    {"text on the bar", text, bar, 4.5},
    {"quiet text on the bar", quietText, bar, 4.5},
    {"a warning on the bar", warning, bar, 4.5},
    {"text on a button of the bar", text, quietButton, 4.5},
    {"a warning on a button of the bar", warning, quietButton, 4.5},
    {"focus on the bar", accent, bar, 3.0},
    {"focus on a button of the bar", accent, quietButton, 3.0},
    {"the level on the bar", good, bar, 3.0},
    {"a clip mark on the bar", warning, bar, 3.0},
    {"text on a surface", text, body, 4.5},
    {"quiet text on a surface", quietText, body, 4.5},
    {"a warning on a surface", warning, body, 4.5},
    {"focus on a surface", accent, body, 3.0},
    {"text on a button", text, raised, 4.5},
    {"focus on a button", accent, raised, 3.0},
    {"text in a field or list", text, field, 4.5},
    {"quiet text in a field or list", quietText, field, 4.5},
    {"focus of a field or list", accent, field, 3.0},
    {"text on a chosen row", accentText, accent, 4.5},
    {"a value", text, bubble, 4.5},
    {"text in a menu", text, menu, 4.5},
    {"quiet text in a menu", quietText, menu, 4.5},
    {"a file that will be taken", good, body, 4.5},
    {"the name of a white key", blackKey, whiteKey, 4.5},
};

} // namespace zarno::theme
