// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ThreadNames.h"

#include <filesystem>
#include <fstream>

namespace zarno {

int threadsNamed(const std::string& wanted) {
    int count = 0;
    std::error_code gone; // threads end while we look
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", gone)) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        count += name == wanted.substr(0, 15) ? 1 : 0;
    }
    return count;
}

} // namespace zarno
