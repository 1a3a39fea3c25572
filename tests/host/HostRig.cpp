// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/HostRig.h"

#include "gui/DefaultLayout.h"
#include "platform/Module.h"
#include "platform/Paths.h"
#include "tests/support/WaveBuilder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zarno::test {
namespace {

#ifdef _WIN32
constexpr const char* moduleSuffix = ".dll";
#else
constexpr const char* moduleSuffix = ".so";
#endif

void hideUserFolders(const std::string& folder) {
#ifdef _WIN32
    (void) folder; // what asks for them finds those of a Wine folder that is ours alone
#else
    // No window belongs on a developer's desktop; those that open one run under scripts/with-display.
    if (std::getenv("ZARNO_HIDDEN_SCREEN") == nullptr) ::setenv("DISPLAY", ":65000", 1);
    ::setenv("XDG_DATA_HOME", (folder + "/data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
#endif
}

} // namespace

HostRig::HostRig(const std::string& moduleName)
    : name_(moduleName)
    , module_(folder_ / (moduleName + moduleSuffix)) {
    // The module lies beside the program that tests it.
    const auto built =
        joinPath(parentPath(zarno::modulePath()), std::string("ZarnoSamplerPlayer") + moduleSuffix);
    std::filesystem::copy_file(built, module_);
    hideUserFolders(folder_ / "user");
}

std::string HostRig::addInstrument(const std::string& name, const std::string& bytes) {
    return std::filesystem::path(folder_.write(name_ + ".instruments/" + name, bytes))
        .make_preferred()
        .string();
}

std::unique_ptr<HostedPlugin> HostRig::load(const HostedPlugin::Options& options) const {
    std::string error;
    auto plugin = HostedPlugin::load(module_, options, error);
    EXPECT_TRUE(plugin) << error;
    return plugin;
}

std::unique_ptr<HostedPlugin> HostRig::loadActive(const HostedPlugin::Options& options) const {
    auto plugin = load(options);
    if (plugin) plugin->activate();
    return plugin;
}

std::string monoBlock(int frames, int rate, const std::function<double(int frame)>& value) {
    std::string data;
    for (int frame = 0; frame < frames; ++frame)
        data += raw(static_cast<std::int16_t>(std::lround(value(frame) * 32767.0)));
    return block(2, rate, 1, frames, data);
}

InstrumentBuilder levelInstrument(const std::string& name, double level) {
    InstrumentBuilder builder;
    builder.name = name;
    builder.layout = defaultLayout;
    builder.storage = 1;
    builder.settings.streaming = builder.settings.streamingStored = 0;
    auto playing = zone("level", monoBlock(200000, 44100, [level](int) { return level; }));
    playing.record.fixedPitch = 1;
    playing.record.ignoreVelocity = 1;
    builder.groups.push_back({"Level", {}, {playing}, {}});
    return builder;
}

// The slow one reads samples of holes into memory.
void addSlowLibrary(HostRig& rig) {
    constexpr std::uint32_t dataBytes = 6 << 20;
    rig.addInstrument("a small.zse", levelInstrument("Small").bytes());
    InstrumentBuilder builder;
    builder.name = "Slow";
    builder.settings.streaming = builder.settings.streamingStored = 0;
    InstrumentBuilder::Group group{"Slow", {}, {}, {}};
    group.record.volume = -1.5f; // tells its saved state from the small one's
    for (int i = 0; i < 10; ++i) {
        const std::string name = "s" + std::to_string(i) + ".wav";
        rig.addInstrument(name, WaveBuilder().format(1, 44100, 16).data("", dataBytes).bytes(dataBytes + 36));
        std::filesystem::resize_file(rig.folder().path() / "Pack.instruments" / name, dataBytes + 44);
        group.zones.push_back(zone(name));
    }
    builder.groups.push_back(group);
    rig.addInstrument("b slow.zse", builder.bytes());
}

Rendered render(HostedPlugin& plugin, int frames, const std::vector<TimedEvent>& events) {
    Rendered result;
    result.left.resize(static_cast<std::size_t>(frames));
    result.right.resize(static_cast<std::size_t>(frames));
    std::size_t next = 0;
    for (int at = 0; at < frames;) {
        const int count = std::min(plugin.options().blockSize, frames - at);
        std::vector<HostEvent> due;
        for (; next < events.size() && events[next].frame < at + count; ++next)
            due.push_back({static_cast<int>(events[next].frame - at), events[next].bytes});
        plugin.send(due);
        plugin.process(result.left.data() + at, result.right.data() + at, count);
        at += count;
    }
    return result;
}

int firstSound(const std::vector<float>& samples) {
    const auto found =
        std::find_if(samples.begin(), samples.end(), [](float value) { return value != 0.0f; });
    return found == samples.end() ? -1 : static_cast<int>(found - samples.begin());
}

} // namespace zarno::test
