// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/Repainter.h"

namespace zarno {

void Repainter::paintWhatWaits() {
    constexpr juce::uint32 whileMs = 1000, patienceMs = 200;
    const auto now = juce::Time::getMillisecondCounter();
    auto* top = window_.getTopLevelComponent();
    if (const auto* peer = top->getPeer())
        if (std::exchange(seenBounds_, peer->getBounds()) != peer->getBounds()) changedAt_ = now;
    if (now - changedAt_ < whileMs) top->repaint();
    if (now - lastBlank_ < patienceMs) return;
    for (int i = 0; i < juce::ComponentPeer::getNumPeers(); ++i)
        juce::ComponentPeer::getPeer(i)->performAnyPendingRepaintsNow();
}

} // namespace zarno
