// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/InstrumentView.h"

#include "engine/ZInstrument.h"
#include "gui/GroupSelection.h"
#include "platform/Utf8.h"

namespace zarno {

juce::String fromEngine(const std::string& text) {
    return juce::String::fromUTF8(toUtf8(text).c_str());
}

juce::String fileNameWithoutExtension(const juce::String& path) {
    const auto name = path.substring(path.lastIndexOfAnyOf("/\\") + 1);
    return name.containsChar('.') ? name.upToLastOccurrenceOf(".", false, false) : name;
}

void InstrumentView::read(EditorLink& link) {
    const ZInstrument& engine = link.engine();
    name = fromEngine(engine.texts().name);
    if (engine.texts().path.empty())
        name.clear();
    else if (name.trim().isEmpty())
        name = fileNameWithoutExtension(fromEngine(engine.texts().path));
    groups.clear();
    juce::StringArray active;
    for (const auto& group : engine.groups()) {
        const char* note = group->isReleaseTrigger() ? "on release" : staysActive(*group) ? "always" : "";
        groups.push_back({fromEngine(group->name), note});
        if (group->active) active.add(groups.back().name);
    }
    activeGroups = active.joinIntoString(", ");
    roles = keyRolesOf(engine);
    missing = missingText(link.missingSamples());
    lastLoad = link.lastLoad();
}

} // namespace zarno
