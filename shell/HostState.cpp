// SPDX-License-Identifier: GPL-3.0-or-later
// How CZSP saves and restores what a host keeps in its project.
#include "data/Limits.h"
#include "platform/Paths.h"
#include "platform/Patience.h"
#include "shell/CZSP.h"
#include "shell/HostChunk.h"

namespace zarno {
namespace {

// A file system that does not answer counts as one that does not have the file.
bool isThere(const std::string& path) {
    const auto found = std::make_shared<bool>(false);
    return doWithPatience(limits::hungReadMs, [=](const SignOfLife&) { *found = isRegularFile(path); }) &&
           *found;
}

} // namespace

void CZSP::getStateInformation(juce::MemoryBlock& chunk) {
    std::vector<std::uint8_t> bytes;
    bool pathAlone = false;
    std::string path;
    {
        const juce::ScopedLock hold(lock_);
        bytes = receivedChunk_;
        path = currentPath_.toStdString();
        // The records would be those of another instrument, or half of one.
        pathAlone = loading_ || loadedPath_ != currentPath_;
    }
    if (bytes.empty() && pathAlone) bytes = encodeChunkPath(path);
    if (bytes.empty()) {
        const juce::ScopedLock hold(contentsLock_);
        bytes = encodeChunk(path, engine_.settings(), engine_.currentGroupIndex(), engine_.groups());
    }
    chunk.append(bytes.data(), bytes.size());
}

void CZSP::setStateInformation(const void* data, int size) {
    if (data == nullptr || size <= 0) return;
    const std::span<const std::uint8_t> chunk(static_cast<const std::uint8_t*>(data),
                                              static_cast<std::size_t>(size));
    auto [path, tail] = splitChunk(chunk);
    if (path.empty()) return;
    // A library that has moved: the instrument of the same file name stands in.
    if (const int found = library_.indexOfFileName(path); found >= 0 && !isThere(path))
        path = library_.entries[static_cast<std::size_t>(found)].path;
    {
        const juce::ScopedLock hold(lock_);
        receivedChunk_.assign(chunk.begin(), chunk.end());
        pendingState_.assign(tail.begin(), tail.end());
    }
    selectInstrument(-1, juce::String::fromUTF8(path.data(), static_cast<int>(path.size())), true, true);
}

void CZSP::applyPendingState() {
    std::vector<std::uint8_t> pending;
    {
        const juce::ScopedLock hold(lock_);
        pending = std::exchange(pendingState_, {});
        // Tried again after a failure: the restored state is still wanted.
        if (pending.empty() && !receivedChunk_.empty()) {
            const auto tail = splitChunk(receivedChunk_).tail;
            pending.assign(tail.begin(), tail.end());
        }
    }
    const juce::ScopedLock holdContents(contentsLock_);
    const auto state = decodeTail(pending, engine_.groups().size());
    // Only copies from here on: what derives from them is computed by the next render.
    const ZInstrument::Hurry hurry(engine_); // a bounce that waits for the disk holds the callback lock
    const juce::ScopedLock holdCallback(getCallbackLock());
    if (state.settings) takeRestoredFields(engine_.settings(), *state.settings);
    if (state.settings) engine_.requestApplySettings();
    for (std::size_t i = 0; i < state.groups.size(); ++i) {
        copyGroup(engine_.groups()[i]->record, state.groups[i]);
        engine_.prepareZones(*engine_.groups()[i]);
    }
    if (state.currentGroup) makeOnlyActiveGroup(*state.currentGroup);
}

void CZSP::makeOnlyActiveGroup(std::int32_t index) {
    engine_.deactivateAllGroups();
    if (index < 0) return;
    engine_.activateGroup(engine_.groups()[static_cast<std::size_t>(index)].get());
    groupsChanged();
}

} // namespace zarno
