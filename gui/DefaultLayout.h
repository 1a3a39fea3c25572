// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

// The layout that an instrument starts out with: 593 x 242, six knobs, two labels, a keyboard and a stop button.
inline constexpr const char* defaultLayout =
    R"(<?xml version="1.0" encoding="UTF-8"?><player width="593" height="242">
<images/>
<label x="173" y="62" width="286" height="21" 8="" 2="1" 16777957="ffffffff"/>
<label x="149" y="82" width="317" height="23" 8="" 2="2" 16777957="ffffffff"/>
<keyboard x="9" y="180" width="574" height="60" 4="36,95"/>
<knob x="75" y="123" width="40" height="40" 2="101" 16782198="66dfc4c4" 16782197="7fdadadc"/>
<knob x="148" y="124" width="40" height="40" 2="102" 16782198="66dfc4c4" 16782197="7fdadadc"/>
<knob x="222" y="123" width="40" height="40" 2="103" 16782198="66dfc4c4" 16782197="7fdadadc"/>
<knob x="309" y="124" width="40" height="40" 2="104" 16782198="66dfc4c4" 16782197="7fdadadc"/>
<knob x="393" y="124" width="40" height="40" 2="2" 16782198="66dfc4c4" 16782197="7fdadadc"/>
<knob x="477" y="124" width="40" height="40" 2="3" 16782198="66dfc4c4" 16782197="7fdadadc"/>
<button x="471" y="82" width="24" height="22" 2="9" 1="0"/>
</player>)";

} // namespace zarno
