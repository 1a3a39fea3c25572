// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/MessageCall.h"

#include <memory>
#include <optional>
#include <string>

namespace zarno {

class EditorPort;

/// A load's question to the user where a sample lies, shown by the open window. The loading thread polls for
/// the answer and may drop the question at any time; no thread waits for the message thread.
class FolderQuestion {
  public:
    /// `sampleName`: of the missing file. `start`: the folder that is shown first.
    FolderQuestion(EditorPort& port, const std::string& sampleName, const juce::File& start);
    /// The window closes the dialog at the end of the load, if it is still open.
    ~FolderQuestion();
    FolderQuestion(const FolderQuestion&) = delete;
    FolderQuestion& operator=(const FolderQuestion&) = delete;

    /// The folder's path, empty when the user cancelled or there is no window; none before the answer.
    std::optional<std::string> answer() const;

    /// Of the window that the question was meant for. Another one knows nothing of it.
    std::uint32_t windowNumber() const { return windowNumber_; }

  private:
    struct Reply {
        juce::CriticalSection lock;
        std::optional<std::string> folder;
        void set(const juce::File& chosen);
    };

    const std::uint32_t windowNumber_;
    const std::shared_ptr<Reply> reply_; // the dialog holds it too
    const std::shared_ptr<MessageCall> call_;
};

} // namespace zarno
