// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

/// What a pack contains besides modules and instruments: the files LICENSE, NOTICE and packaging/INSTALL-PACK.txt of
/// this source tree. The last has "@NAME@" where the pack's name belongs.
extern const char* const licenceText;
extern const char* const noticeText;
extern const char* const installText;

} // namespace zarno
