// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/PluginFilter.h"

#include "shell/CZSP.h"

#include <utility>

namespace zarno {
namespace {

thread_local CZSP* created = nullptr;

}

CZSP* takeCreatedProcessor() {
    return std::exchange(created, nullptr);
}

} // namespace zarno

// JUCE's plug-in wrappers call this by name.
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() {
    zarno::created = new zarno::CZSP();
    return zarno::created;
}
