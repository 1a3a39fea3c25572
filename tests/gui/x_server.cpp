// SPDX-License-Identifier: GPL-3.0-or-later
// What an X server shows of the window, and what a host does with the window around it.
#include "gui/CLookAndFeel.h"
#include "tests/gui/support/WindowFixture.h"

#if JUCE_LINUX
#include <thread>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace zarno {
namespace {

// Zooms a window in and out, and compares the screen with what the window would paint until they agree.
class ZoomSession final : private juce::Timer {
  public:
    ZoomSession(CZSPGUI& window, int enlargements)
        : window_(window)
        , left_(2 * enlargements) {
        startTimer(20);
    }
    ~ZoomSession() override { XCloseDisplay(display_); }
    int unpainted() const { return unpainted_; }

  private:
    void timerCallback() override {
        constexpr int patience = 150; // ticks
        if (waiting_ > 0 && !isPainted() && ++waiting_ < patience) return;
        unpainted_ += waiting_ == patience ? 1 : 0;
        if (left_-- == 0) return juce::MessageManager::getInstance()->stopDispatchLoop();
        waiting_ = 1;
        window_.setZoom(left_ % 2 == 1 ? 150 + left_ % 3 * 25 : 75);
    }

    bool isPainted() const {
        const auto handle = reinterpret_cast<::Window>(window_.getPeer()->getNativeHandle());
        const int width = window_.getWidth(), height = window_.getHeight();
        XWindowAttributes attributes;
        XGetWindowAttributes(display_, handle, &attributes);
        if (attributes.width != width || attributes.height != height) return false;
        const auto expected = window_.createComponentSnapshot(window_.getLocalBounds());
        XImage* shown = XGetImage(display_, handle, 0, 0, static_cast<unsigned>(width),
                                  static_cast<unsigned>(height), AllPlanes, ZPixmap);
        int different = 0;
        for (int y = 3; y < height; y += 16)
            for (int x = 3; x < width; x += 16) {
                const juce::Colour pixel(0xff000000u | static_cast<std::uint32_t>(XGetPixel(shown, x, y)));
                const auto wanted = expected.getPixelAt(x, y);
                different += std::abs(pixel.getRed() - wanted.getRed()) > 24 ? 1 : 0;
            }
        XDestroyImage(shown);
        return different < 5; // text may come out a little otherwise
    }

    CZSPGUI& window_;
    Display* const display_ = XOpenDisplay(nullptr);
    int left_, waiting_ = 0, unpainted_ = 0;
};

class WindowOnScreenOfX : public Window {};

TEST_F(WindowOnScreenOfX, AllOfItselfAfterEachOfAHundredEnlargementsUnderLoad) {
    CLookAndFeel lookAndFeel;
    lookAndFeel.install();
    load({});
    open();
    window->setOpaque(true);
    window->addToDesktop(juce::ComponentPeer::windowHasTitleBar);
    std::atomic<bool> done{false};
    std::vector<std::thread> busy;
    for (int i = 0; i < 2; ++i)
        busy.emplace_back([&] {
            while (!done) {
            }
        });
    ZoomSession session(*window, 100);
    juce::MessageManager::getInstance()->runDispatchLoop();
    done = true;
    for (auto& thread : busy)
        thread.join();
    EXPECT_EQ(session.unpainted(), 0);
}

TEST_F(WindowOnScreenOfX, ItIsAsLargeAsTheDesktopWantsAndTheDisplayHasRoomFor) {
    load({});
    setenv("GDK_SCALE", "2", 1);
    open();
    window->addToDesktop(0);
    EXPECT_EQ(window->getWidth(), 2 * 593);
    window->setZoom(300);
    EXPECT_GE(window->getHeight(), 2 * (242 + StatusBar::height));
    EXPECT_LE(window->getHeight(), juce::Desktop::getInstance().getDisplays().getPrimaryDisplay()->userArea.getHeight());
    unsetenv("GDK_SCALE");
    window->setZoom(100);
    EXPECT_EQ(window->getWidth(), 593);
}

// Opens a menu, has the host hide its window, and waits until the menu has gone.
class HidingSession final : private juce::Timer {
  public:
    HidingSession(CZSPGUI& window, Display* display, ::Window host)
        : window_(window)
        , display_(display)
        , host_(host) {
        startTimer(50);
    }
    bool hasOpened() const { return isHidden_; }
    bool hasClosed() const { return isHidden_ && menus() == 0; }

  private:
    static int menus() { return juce::ModalComponentManager::getInstance()->getNumModalComponents(); }
    void timerCallback() override {
        if (hasClosed() || ++ticks_ == 100) return juce::MessageManager::getInstance()->stopDispatchLoop();
        if (isHidden_) return;
        if (menus() == 0) return window_.dialogs().showInstrumentMenu(window_.statusBar());
        XUnmapWindow(display_, host_);
        XSync(display_, False);
        isHidden_ = true;
    }

    CZSPGUI& window_;
    Display* display_;
    ::Window host_;
    int ticks_ = 0;
    bool isHidden_ = false;
};

TEST_F(WindowOnScreenOfX, ItsMenusCloseWhenTheHostHidesTheWindowAroundIt) {
    load({});
    Display* display = XOpenDisplay(nullptr);
    const auto host = XCreateSimpleWindow(display, DefaultRootWindow(display), 50, 50, 700, 400, 0, 0, 0);
    XMapRaised(display, host);
    XSync(display, False);
    open();
    window->addToDesktop(0, reinterpret_cast<void*>(host));
    HidingSession session(*window, display, host);
    juce::MessageManager::getInstance()->runDispatchLoop();
    EXPECT_TRUE(session.hasOpened());
    EXPECT_TRUE(session.hasClosed());
    juce::PopupMenu::dismissAllActiveMenus();
    window.reset();
    XCloseDisplay(display);
}

} // namespace
} // namespace zarno
#endif
