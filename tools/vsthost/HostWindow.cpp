// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/HostWindow.h"

#include "tools/vsthost/HostedPlugin.h"
#include "tools/vsthost/NativeWindow.h"

#include <chrono>
#include <thread>

namespace zarno {

HostWindow::HostWindow(HostedPlugin& plugin, std::unique_ptr<NativeWindow> window)
    : plugin_(plugin)
    , window_(std::move(window)) {
    plugin_.onResize = [this](HostedPlugin::Size wanted) { return window_->resize(wanted); };
}

HostWindow::~HostWindow() {
    plugin_.onResize = nullptr;
    plugin_.closeEditor();
}

std::unique_ptr<HostWindow> HostWindow::open(HostedPlugin& plugin, std::string& error) {
    const auto size = plugin.editorSize();
    if (size.width <= 0 || size.height <= 0) {
        error = "the plug-in has no editor: " + std::to_string(size.width) + " x " + std::to_string(size.height);
        return nullptr;
    }
    auto native = NativeWindow::create(size);
    if (native == nullptr) {
        error = "there is no display";
        return nullptr;
    }
    std::unique_ptr<HostWindow> window(new HostWindow(plugin, std::move(native)));
    if (!plugin.openEditor(window->window_->handle())) {
        error = "the editor did not open";
        return nullptr;
    }
    return window;
}

bool HostWindow::reopen() {
    plugin_.closeEditor();
    plugin_.editorSize(); // as hosts do; the editor is made here
    return plugin_.openEditor(window_->handle());
}

void HostWindow::run(double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < end) {
        window_->handleEvents();
        plugin_.idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

Picture HostWindow::picture() const {
    return window_->picture();
}

} // namespace zarno
