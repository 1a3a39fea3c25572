// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

// The colours of everything that a layout does not colour itself, as ARGB.
namespace zarno::theme {

inline constexpr std::uint32_t body = 0xff1d2025; // behind and around the panel
inline constexpr std::uint32_t bar = 0xff15171b;  // the bar below it
inline constexpr std::uint32_t quietButton = 0xff23262c;
inline constexpr std::uint32_t raised = 0xff32363e; // buttons and menus
inline constexpr std::uint32_t outline = 0xff454a54;
inline constexpr std::uint32_t text = 0xfff1f3f6;
inline constexpr std::uint32_t quietText = 0xff9aa1ad;
inline constexpr std::uint32_t accent = 0xfff2a54a; // the one accent: what is on, chosen or focused
inline constexpr std::uint32_t warning = 0xffe8735a;
inline constexpr std::uint32_t whiteKey = 0xffe9e6e0;
inline constexpr std::uint32_t blackKey = 0xff1b1c20;

} // namespace zarno::theme
