// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#if defined(ZARNO_THREAD_CHECKS)
#include <source_location>
#endif

/// What the tags in the headers, `[audio]`, `[loading]`, `[reader]`, `[disk]`, `[message]`, mean: a thread that is known
/// to be of one kind may not enter what is for another. The sanitizer builds and debug builds check it, all
/// others compile it to nothing. A thread of which nothing is known may do anything: tests and offline hosts
/// do.
namespace zarno::thread {

enum Role : unsigned {
    unknown = 0,
    audio = 1,   ///< renders
    loading = 2, ///< replaces an instrument's contents and keeps the audio thread out
    disk = 4,    ///< fills the buffers of streaming voices
    message = 8, ///< the framework's, for windows and most of what hosts ask
    reader = 16  ///< reads an instrument file into contents that nobody plays yet
};

#if defined(ZARNO_THREAD_CHECKS)

/// Ends the process with a message when this thread is none of these kinds ("audio | loading").
void mustBe(unsigned roles, std::source_location where = std::source_location::current());
inline void mustNotBe(unsigned roles, std::source_location where = std::source_location::current()) {
    mustBe(~roles, where);
}

/// Something else than to end the process, for tests. May throw.
void onWrongThread(void (*handler)(const char* complaint));

/// What is known of the calling thread.
Role current();

/// While it lives, this thread is of this kind.
class Acts {
  public:
    explicit Acts(Role now);
    ~Acts();
    Acts(const Acts&) = delete;
    Acts& operator=(const Acts&) = delete;

  private:
    const Role former_;
};

#else

inline void mustBe(unsigned) {}
inline void mustNotBe(unsigned) {}

class Acts {
  public:
    explicit Acts(Role) {}
    ~Acts() {}
    Acts(const Acts&) = delete;
    Acts& operator=(const Acts&) = delete;
};

#endif

} // namespace zarno::thread
