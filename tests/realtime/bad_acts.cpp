// SPDX-License-Identifier: GPL-3.0-or-later
// What nobody may do while audio renders, done there on purpose: the linker puts this before the engine's own
// renderBlock in a module that is built for the trap alone. The environment says which act.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace {

std::string_view wanted() {
    const char* act = std::getenv("ZARNO_BAD_ACT");
    return act != nullptr ? act : "";
}

// Somebody else who holds a lock most of the time.
class Holder {
  public:
    Holder()
        : thread_([this] {
            while (!done_) {
                const std::lock_guard hold(lock);
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        }) {}
    ~Holder() {
        done_ = true;
        thread_.join();
    }
    std::mutex lock;

  private:
    std::atomic<bool> done_{false};
    std::thread thread_;
};

Holder* holder() {
    static Holder instance;
    return &instance;
}
Holder* const atLoad = wanted() == "lock" ? holder() : nullptr;
void* volatile kept = std::malloc(64);
const int nowhere = ::dup(2);

void commit(std::string_view act) {
    if (act == "allocate") kept = std::malloc(100); // the last one is lost, which is bad as well
    if (act == "free" && kept != nullptr) {
        std::free(kept);
        kept = nullptr;
    }
    if (act == "lock") const std::lock_guard hold(atLoad->lock);
    if (act == "sleep") std::this_thread::sleep_for(std::chrono::microseconds(1));
    if (act == "file") (void) ::access("/", F_OK);
    if (act == "message") (void) !::write(nowhere, "", 0);
}

} // namespace

extern "C" void ZARNO_REAL(void* instrument, float** outputs, int count, int frames);
extern "C" void ZARNO_WRAPPED(void* instrument, float** outputs, int count, int frames) {
    commit(wanted());
    ZARNO_REAL(instrument, outputs, count, frames);
}
