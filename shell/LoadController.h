// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/LoadRequest.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace zarno {

/// Owns which instrument is current, which request is being loaded and which one waits. Decides what happens
/// to a request; loads nothing itself. The table of transitions is in docs/architecture.md.
///
/// Any thread may call any operation. Only `restore` waits, and only for the end of the running load.
class LoadController {
  public:
    enum class State {
        Idle,         ///< nothing is being loaded
        Loading,      ///< one request is being loaded
        RestoreWaits, ///< one request is being loaded, and a restore waits for its end
        Closed        ///< no request is taken any more
    };

    /// The user or the host chooses an instrument, to be loaded in the background. During a load the choice
    /// only becomes the current path and index. Choosing what is loaded already does nothing; choosing the
    /// path whose load failed, or that was named during another load, loads it. True: the caller starts the
    /// loading thread, which performs `running`.
    bool select(const std::string& path, int index);

    /// The current instrument once more, in the background. `liveState` is the tail of a chunk with the
    /// player's values and is applied afterwards; a restored state whose load failed goes before it. True as
    /// for select.
    bool reload(std::vector<std::uint8_t> liveState);

    /// `path` in the background in place of a current instrument that could not be loaded, with the restored
    /// state that waited for it. True as for select.
    bool replaceMissing(const std::string& path, int index);

    /// A load that the caller performs itself, as soon as a running one has ended. False: a later restore or
    /// `close` made it obsolete, and the caller does nothing. The request's background flag is ignored.
    bool restore(LoadRequest request);

    /// The request that is being loaded. Only for the thread that performs it, until `finish`.
    const LoadRequest& running() const { return running_; }

    /// The running load has ended, and the request that waited runs. `succeeded`: the request's instrument is
    /// loaded, its state applied. `cleared`: what was loaded before is gone, whether the load succeeded or
    /// not.
    void finish(bool succeeded, bool cleared);

    /// No request starts any more, and those that wait give up. The running load still ends with `finish`.
    void close();

    State state() const;
    bool isLoading() const;
    /// The thread that shows dialogs may be the one that waits, so the running load asks no questions.
    bool declinesQuestions() const;

    struct Current {
        std::string path; ///< of what is loaded, being loaded, or was chosen during a load; empty when none
        int index = -1;
    };
    Current current() const;
    bool isCurrentLoaded() const;
    bool lastLoadSucceeded() const;

    /// What a host that saves now is given.
    struct Saved {
        std::vector<std::uint8_t> chunk; ///< the restored chunk, as long as its instrument is not loaded
        std::string path;                ///< otherwise the current path
        bool pathAlone = false;          ///< and the engine's values do not belong to it: a load is under way
    };
    Saved saved() const;

  private:
    void name(const std::string& path, int index);
    bool begin(std::vector<std::uint8_t> pendingState);
    bool isBusy() const { return state_ != State::Idle; }

    mutable std::mutex lock_;
    std::condition_variable changed_;
    State state_ = State::Idle;
    LoadRequest running_, waiting_;
    std::uint64_t lastTicket_ = 0, runningTicket_ = 0, waitingTicket_ = 0; // of restores; 0: no restore
    std::string currentPath_, loadedPath_;
    int currentIndex_ = -1;
    bool lastLoadSucceeded_ = true;
    std::vector<std::uint8_t>
        receivedChunk_; // of the last restore, until it is loaded or another path is chosen
};

} // namespace zarno
