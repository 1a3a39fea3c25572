// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

// A file on a share that has vanished: while a test wants so, the system does not give back what the module
// reads of files called "hung.wav".
namespace zarno::test::hungFile {

inline constexpr char name[] = "hung.wav";
inline std::atomic<bool> hangs{false};
inline std::atomic<int> hanging{0}; // threads in such a read

// What stands before the system's read, for reads of that file.
inline void wait() {
    if (!hangs) return;
    ++hanging;
    while (hangs)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    --hanging;
}

// Has a module that has just been loaded read through us.
void standBefore(const std::string& modulePath);

bool isLoaded(const std::string& modulePath);

} // namespace zarno::test::hungFile
