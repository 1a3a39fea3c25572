// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Contents of assets/panel, compiled in.
namespace zarno::pictures {

extern const char* const backgroundSvg;
extern const char* const buttonStripSvg;

} // namespace zarno::pictures
