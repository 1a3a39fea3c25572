// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ModuleIdentity.h"
#include "tests/host/HostRig.h"
#include "tools/vsthost/PluginReport.h"

#include <gmock/gmock.h>

namespace zarno::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PluginReport reportOf(const HostRig& rig) {
    const auto plugin = rig.load();
    return plugin ? askPlugin(*plugin) : PluginReport{};
}

// Brands a copy of the module in the way of the system it is for.
void brand(const HostRig& rig, const ModuleIdentity& identity) {
    std::fstream file(rig.modulePath(), std::ios::in | std::ios::out | std::ios::binary);
    std::array<std::uint8_t, identityField::end> start{};
    file.read(reinterpret_cast<char*>(start.data()), start.size());
    if (writeIdentityFields(start, identity)) {
        file.seekp(0);
        file.write(reinterpret_cast<const char*>(start.data()), start.size());
    } else {
        std::ofstream(rig.modulePath() + sidecarSuffix, std::ios::binary) << formatSidecar(identity);
    }
}

TEST(WhatHostsAreTold, UnbrandedModule) {
    const auto report = reportOf(HostRig());
    EXPECT_EQ(uniqueIdAsText(report.uniqueId), "Zspl");
    EXPECT_EQ(report.version, 131333);
    EXPECT_EQ(report.vendorVersion, 131333);
    EXPECT_EQ(report.interfaceVersion, 2400);
    EXPECT_EQ(report.effectName, "Zarno Sampler Player");
    EXPECT_EQ(report.product, "Zarno Sampler Player");
    EXPECT_EQ(report.vendor, "Zarno");
    EXPECT_EQ(report.inputs, 0);
    EXPECT_EQ(report.outputs, 2);
    EXPECT_THAT(report.outputNames, ElementsAre("Left", "Right"));
    EXPECT_EQ(report.parameters, 0);
    EXPECT_EQ(report.programs, 0);
    EXPECT_EQ(report.initialDelay, 0);
    EXPECT_TRUE(report.hasEditor && report.replacing && report.chunks && report.synthesizer);
    EXPECT_FALSE(report.silentWhenStopped);
    EXPECT_TRUE(report.receivesMidi);
    EXPECT_EQ(report.category, Vst2::kPlugCategSynth);
}

TEST(WhatHostsAreTold, BrandedModuleSpeaksForItsPack) {
    const HostRig rig;
    brand(rig, {*uniqueIdFromText("Abc7"), "Sixteen letters!", "House of Tines"});
    const auto report = reportOf(rig);
    EXPECT_EQ(report.uniqueId, 0x41626337u);
    EXPECT_EQ(report.product, "Sixteen letters!");
    EXPECT_EQ(report.vendor, "House of Tines");
}

TEST(WhatHostsAreTold, EmptyTextsFallBack) {
    const HostRig rig;
    brand(rig, {*uniqueIdFromText("Abc8"), "", ""});
    const auto report = reportOf(rig);
    EXPECT_EQ(uniqueIdAsText(report.uniqueId), "Abc8");
    EXPECT_EQ(report.product, "Zarno Sampler Player");
    EXPECT_EQ(report.vendor, "Zarno");
}

// No programs for a host that counts, instruments for one that asks.
TEST(WhatHostsAreTold, ProgramsAreTheLibrary) {
    HostRig rig;
    rig.addInstrument("deep/er/a.zs2", levelInstrument("Second form").bytes());
    rig.addInstrument("b.zse", levelInstrument("Bells").bytes());
    rig.addInstrument("c.ZSE", levelInstrument("Celesta").bytes());
    rig.addInstrument("untitled.zse", [] {
        auto builder = levelInstrument("Has no title");
        builder.title.clear();
        return builder.bytes();
    }());
    rig.addInstrument("noise.zse", "nothing of an instrument in here");
    rig.addInstrument("readme.txt", "not even the name of one");

    const auto plugin = rig.load();
    ASSERT_TRUE(plugin);
    auto report = askPlugin(*plugin);
    EXPECT_EQ(report.programs, 0);
    EXPECT_THAT(report.programNames, ElementsAre("Bells", "Celesta", "Second form"));
    EXPECT_EQ(report.currentProgram, 0);
    EXPECT_EQ(report.currentProgramName, "Bells");

    plugin->selectProgram(2);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    report = askPlugin(*plugin);
    EXPECT_EQ(report.currentProgram, 2);
    plugin->selectProgram(77);
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 2) << "an index that no instrument has";
}

TEST(WhatHostsAreTold, WithoutLibraryThereAreNoNames) {
    const auto report = reportOf(HostRig());
    EXPECT_THAT(report.programNames, IsEmpty());
    EXPECT_EQ(report.currentProgram, 0);
    EXPECT_EQ(report.currentProgramName, "");
}

} // namespace
} // namespace zarno::test
