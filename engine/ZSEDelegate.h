// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace zarno {

// What the engine and the loader tell the program around them. The order of the operations is fixed. Each
// says which thread may call it.
class ZSEDelegate {
  public:
    // Size of the caller-owned buffer behind the two operations that hand back a text.
    static constexpr std::size_t replyBytes = 512;

    virtual ~ZSEDelegate() = default;

    // [reader, loading] Fraction done (0..1), group and sample being read. False abandons the load.
    virtual bool loadProgress(float fraction, const char* groupName, const char* sampleName) = 0;

    virtual bool reserved1() { return true; }

    // [any, the audio thread too: must not lock, allocate or wait] The set of active groups changed.
    virtual void groupsChanged() = 0;

    // [reader, loading] A sample is missing: its resolved path. Fill reply (replyBytes, zero-terminated) with
    // the path of a replacement, or leave it an empty string.
    virtual void reportMessage(const char* text, char* reply) = 0;

    // [any, the audio thread too] The engine's settings were applied.
    virtual void settingsChanged() = 0;

    virtual void reserved5() {}

    // [reader, loading] Fill reply (replyBytes, zero-terminated) with the licence text the user enters.
    virtual void requestLicenceText(char* reply) = 0;
};

} // namespace zarno
