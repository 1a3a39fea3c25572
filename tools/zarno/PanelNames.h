// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarno {

/// An attribute of a control as a layout has it.
struct LayoutAttribute {
    std::string name, value;
};

/// The readable form of an attribute of the element `tag`, of the same name and value where it has none.
/// Pictures are not turned: see PanelSource.
LayoutAttribute readableAttribute(std::string_view tag, const LayoutAttribute& attribute);

/// The reverse. Throws MakerError without a place for a control or alignment that does not exist.
LayoutAttribute layoutAttribute(std::string_view tag, const LayoutAttribute& readable);

} // namespace zarno
