// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/HostRig.h"

#include <gtest/gtest.h>

namespace zarno::test {
namespace {

// Hosts unload a module the moment its last instance is closed, notes sounding or not: no thread of ours may be
// left behind in code that is gone, and nothing may grow.
TEST(Unloading, AHundredTimesWithAStreamedNoteSounding) {
    HostRig rig;
    InstrumentBuilder streamed = levelInstrument("Streamed");
    streamed.settings.streaming = streamed.settings.streamingStored = 1;
    streamed.settings.streamBufferFrames = streamed.settings.streamBufferFramesStored = 256;
    rig.addInstrument("streamed.zse", streamed.bytes());
    for (int i = 0; i < 100 && !testing::Test::HasFailure(); ++i) {
        const auto plugin = rig.loadActive();
        ASSERT_NE(plugin, nullptr);
        const Rendered sound = render(*plugin, 1024 + i * 16, {{5, noteOn(60)}});
        EXPECT_EQ(firstSound(sound.left), 5) << "round " << i;
        EXPECT_NE(sound.left.back(), 0.0f) << "round " << i;
    }
}

} // namespace
} // namespace zarno::test
