// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/FolderQuestion.h"

#include "platform/Utf8.h"
#include "shell/EditorPort.h"

namespace zarno {

void FolderQuestion::Reply::set(const juce::File& chosen) {
    const juce::ScopedLock hold(lock);
    folder = chosen.getFullPathName().toStdString();
}

FolderQuestion::FolderQuestion(EditorPort& port, const std::string& sampleName, const juce::File& start)
    : windowNumber_(port.windowNumber())
    , reply_(std::make_shared<Reply>())
    , call_(MessageCall::make([&port, sampleName, start, number = windowNumber_, reply = reply_] {
        const auto name = juce::String::fromUTF8(toUtf8(sampleName).c_str());
        EditorWindow* window = port.window();
        if (window == nullptr) return reply->set({});
        if (port.windowNumber() != number) return; // LoadRunner::discuss asks the new window
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
