// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/ThreadRole.h"

#include <string>
#include <vector>

namespace zarno {

class ZSEDelegate;

/// Decides whether an instrument may be loaded.
class LicenceCheck {
  public:
    virtual ~LicenceCheck() = default;

    /// [reader, loading] `licences`: the instrument's own texts; `enteredText`: what the user entered for it, may be empty.
    /// `delegate` may be null; it can ask the user.
    virtual bool allows(const std::vector<std::string>& licences, const std::string& enteredText,
                        ZSEDelegate* delegate) = 0;
};

class AllowEverything final : public LicenceCheck {
  public:
    bool allows(const std::vector<std::string>&, const std::string&, ZSEDelegate*) override {
        thread::mustBe(thread::reader | thread::loading);
        return true;
    }
};

} // namespace zarno
