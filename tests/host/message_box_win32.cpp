// SPDX-License-Identifier: GPL-3.0-or-later
// What the user is told in a box of the system's.
#include "tests/host/HostRig.h"
#include "tools/vsthost/HostWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include <windows.h>

namespace zarno::test {
namespace {

// Reads and dismisses every box with this caption.
class User {
  public:
    explicit User(const wchar_t* caption)
        : thread_([this, caption] {
            for (; !done_; Sleep(20)) {
                const HWND box = FindWindowW(L"#32770", caption);
                if (box == nullptr) continue;
                wchar_t text[200] = {};
                GetWindowTextW(GetDlgItem(box, 0xFFFF), text, 200);
                read_.emplace_back(text);
                for (; IsWindow(box); Sleep(20))
                    PostMessageW(box, WM_CLOSE, 0, 0);
            }
        }) {}
    ~User() { leave(); }

    std::vector<std::wstring> leave() {
        done_ = true;
        if (thread_.joinable()) thread_.join();
        return read_;
    }

  private:
    std::atomic<bool> done_{false};
    std::vector<std::wstring> read_;
    std::thread thread_;
};

TEST(MessageBoxOnScreen, TellsOncePerLoadWhatIsWrongWithAPanel) {
    HostRig rig;
    auto wrong = levelInstrument("Wrong");
    wrong.layout = "<panel/>";
    rig.addInstrument("wrong.zse", wrong.bytes());
    const auto plugin = rig.loadActive();
    User user(L"Zarno Sampler Player");
    for (int opening = 0; opening < 3; ++opening) {
        std::string error;
        const auto window = HostWindow::open(*plugin, error);
        ASSERT_NE(window, nullptr) << error;
        window->run(0.5);
    }
    EXPECT_EQ(user.leave(), std::vector<std::wstring>{L"No Player Node found"});
}

TEST(MessageBoxOnScreen, AFailedLoadShowsOneThatOutlivesTheModule) {
    const std::wstring text = L"Unable to load this instrument.";
    HWND box = nullptr;
    {
        HostRig rig;
        rig.addInstrument("a.zse", levelInstrument("A").bytes());
        const auto broken = rig.addInstrument("b.zse", levelInstrument("B").bytes());
        const auto plugin = rig.loadActive();
        std::string error;
        const auto window = HostWindow::open(*plugin, error);
        ASSERT_NE(window, nullptr) << error;
        std::ofstream(broken) << "no instrument";
        plugin->selectProgram(1);
        for (int i = 0; i < 500 && box == nullptr; ++i) {
            window->run(0.02);
            box = FindWindowW(L"#32770", L"Zarno Sampler Player");
        }
        ASSERT_NE(box, nullptr);
    } // the module is unloaded while the box stands
    ASSERT_TRUE(IsWindow(box));
    User user(L"Zarno Sampler Player");
    for (int i = 0; i < 200 && IsWindow(box); ++i)
        Sleep(20);
    EXPECT_FALSE(IsWindow(box));
    Sleep(200); // the box's thread gives the module back
    EXPECT_EQ(user.leave(), std::vector<std::wstring>{text});
}

} // namespace
} // namespace zarno::test
