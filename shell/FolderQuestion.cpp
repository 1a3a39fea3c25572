// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/FolderQuestion.h"

#include "shell/EditorPort.h"

namespace zarno {

void FolderQuestion::Reply::set(const juce::File& chosen) {
    const juce::ScopedLock hold(lock);
    folder = chosen.getFullPathName().toStdString();
}

FolderQuestion::FolderQuestion(EditorPort& port, const std::string& sampleName, const juce::File& start)
    : reply_(std::make_shared<Reply>())
    , call_(MessageCall::make([&port, sampleName, start, reply = reply_] {
        const auto name = juce::String::fromUTF8(sampleName.data(), static_cast<int>(sampleName.size()));
        EditorWindow* window = port.window();
        if (window == nullptr) return reply->set({});
        window->askForSampleFolder(name, start, [reply](const juce::File& chosen) { reply->set(chosen); });
    })) {
    call_->post();
}

FolderQuestion::~FolderQuestion() {
    call_->abandon();
}

std::optional<std::string> FolderQuestion::answer() const {
    const juce::ScopedLock hold(reply_->lock);
    return reply_->folder;
}

} // namespace zarno
