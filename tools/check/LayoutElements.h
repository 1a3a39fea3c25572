// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarno {

struct LayoutElement {
    struct Attribute {
        std::string name, value;
    };
    std::string tag;
    int line = 0;
    int parent = -1; ///< index of the element around it
    std::vector<Attribute> attributes;
    std::string text; ///< what stands between its tags, but for elements

    /// Names are compared without regard to case; the first one counts. Null when there is none.
    const std::string* find(std::string_view name) const;
};

/// The elements of a layout in document order, with their lines, which the player's own reader does not keep.
/// Names may begin with a digit, as layouts need it. Reading stops at the first fault.
struct LayoutElements {
    struct Fault {
        int line = 0;
        std::string what;
    };
    std::vector<LayoutElement> list;
    std::optional<Fault> fault;
};
LayoutElements readLayoutElements(std::string_view text);

bool equalIgnoringCase(std::string_view a, std::string_view b);

} // namespace zarno
