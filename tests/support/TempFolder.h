// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace zarno::test {

// A fresh folder for the running test, removed behind it.
class TempFolder : public ScratchFolder {
  public:
    TempFolder()
        : ScratchFolder(nameOfTest()) {}

  private:
    static std::string nameOfTest() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        return std::string(test->test_suite_name()) + "-" + test->name();
    }
};

} // namespace zarno::test
