// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <utility>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace zarno {

/// One line on stderr that grows while something long is done; nothing where stderr is not a terminal. The
/// line is wiped when the bar goes.
class ProgressBar {
  public:
    explicit ProgressBar(std::string label)
        : label_(std::move(label)) {}
    ~ProgressBar() {
        if (shown_) std::fprintf(stderr, "\r%*s\r", static_cast<int>(label_.size()) + width + 10, "");
    }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// `fraction` 0..1. Draws ten times a second at most, so it may be called often.
    void show(double fraction) {
        const auto now = std::chrono::steady_clock::now();
        if (!terminal_ || (shown_ && now - drawn_ < std::chrono::milliseconds(100))) return;
        drawn_ = now;
        shown_ = true;
        const int filled = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * width);
        std::fprintf(stderr, "\r%s [%s%s] %3d %%", label_.c_str(),
                     std::string(static_cast<std::size_t>(filled), '#').c_str(),
                     std::string(static_cast<std::size_t>(width - filled), '.').c_str(),
                     filled * 100 / width);
    }

  private:
    static constexpr int width = 40;

    static bool isTerminal() {
#if defined(_WIN32)
        return _isatty(2) != 0;
#else
        return isatty(2) != 0;
#endif
    }

    std::string label_;
    bool terminal_ = isTerminal();
    bool shown_ = false;
    std::chrono::steady_clock::time_point drawn_;
};

} // namespace zarno
