// SPDX-License-Identifier: GPL-3.0-or-later
// Hosts of every kind against a clock of the test's own: who may wait for the disk, and for how long.
#include "data/stream/HostLead.h"
#include "tests/support/Chance.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zarno {
namespace {

constexpr double blockMs = 512 / 44.1;

struct Host {
    HostLead lead;
    double clockMs = 1e9, renderedMs = 0.0;

    // Begins a block and says how long a voice may wait in it.
    double beginBlock() {
        lead.beginBlock(renderedMs, clockMs, blockMs);
        renderedMs += blockMs;
        return lead.waitMs(clockMs);
    }
};

// Early and late by up to half a block, after pauses and overruns, with a sound card that is 0.2 % too fast.
TEST(HostLead, ALiveHostNeverWaits) {
    Host host;
    Chance chance(1);
    double due = host.clockMs;
    for (int block = 0; block < 50000; ++block) {
        due += blockMs * 0.998;
        if (chance.oneIn(1000)) due += chance.of({30.0, 700.0, 5000.0});
        host.clockMs = due + chance.real(-blockMs / 2, blockMs / 2);
        ASSERT_EQ(host.beginBlock(), 0.0) << block;
    }
}

// With less than 10 ms in hand it renders until it has 200. Waits are taken to their ends.
TEST(HostLead, AHostThatRendersAheadNeverDropsOut) {
    Host host;
    Chance chance(2);
    constexpr double least = 10.0, most = 200.0;
    double inHand = least, longest = 0.0;
    const auto pass = [&](double ms) {
        host.clockMs += ms;
        inHand -= ms;
    };
    for (int block = 0; block < 20000; ++block) {
        if (inHand > most) pass(inHand - least);
        const double wait = host.beginBlock();
        longest = std::max(longest, wait);
        pass(chance.oneIn(20) ? wait : 0.0);
        pass(chance.real(0.0, 5.0)); // the work itself
        ASSERT_GT(inHand, 0.0) << block;
        inHand += blockMs;
    }
    EXPECT_GT(longest, 100.0) << "what is in hand is used";
}

TEST(HostLead, ABounceMayWaitForWhatItHasRenderedAheadUntilItPauses) {
    Host host;
    for (int block = 0; block < 200; ++block) {
        host.clockMs += blockMs / 20;
        host.beginBlock();
    }
    EXPECT_NEAR(host.beginBlock(), 200 * blockMs * 0.95 - blockMs / 20 - 10, 2 * blockMs);
    EXPECT_EQ(host.lead.waitMs(host.clockMs + 1e6), 0.0) << "a wait uses the lead up";
    host.clockMs += 60000.0;
    EXPECT_EQ(host.beginBlock(), 0.0);
    host.clockMs -= 1e12; // a clock that is set back
    EXPECT_EQ(host.beginBlock(), 0.0);
}

} // namespace
} // namespace zarno
