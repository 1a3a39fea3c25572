// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/MessageCall.h"

#include <memory>
#include <optional>
#include <string>

namespace zarno {

class EditorPort;

/// A load's question to the user where a sample lies, put by the window that is open. The loading thread looks
/// for the answer now and then and may drop the question at any time; nobody waits for the message thread.
class FolderQuestion {
  public:
    /// `sampleName`: of the missing file. `start`: the folder that is shown first.
    FolderQuestion(EditorPort& port, const std::string& sampleName, const juce::File& start);
    /// The window closes the dialog at the end of the load, if it is still open.
    ~FolderQuestion();
    FolderQuestion(const FolderQuestion&) = delete;
    FolderQuestion& operator=(const FolderQuestion&) = delete;

    /// The folder's path, empty when the user cancelled or there is no window; none while he thinks.
    std::optional<std::string> answer() const;

  private:
    struct Reply {
        juce::CriticalSection lock;
        std::optional<std::string> folder;
        void set(const juce::File& chosen);
    };

    const std::shared_ptr<Reply> reply_; // the dialog holds it too
    const std::shared_ptr<MessageCall> call_;
};

} // namespace zarno
