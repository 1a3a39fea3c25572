// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/Repainter.h"

namespace zarno {

void Repainter::paintWhatWaits() const {
    constexpr juce::uint32 patienceMs = 200;
    if (juce::Time::getMillisecondCounter() - lastBlank_ < patienceMs) return;
    for (int i = 0; i < juce::ComponentPeer::getNumPeers(); ++i)
        juce::ComponentPeer::getPeer(i)->performAnyPendingRepaintsNow();
}

} // namespace zarno
