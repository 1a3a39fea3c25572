// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/vsthost/Abi.h"
#include "tools/vsthost/SharedModule.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zarno {

/// A message on its way into the plug-in, at a sample of the coming block. Longer than 3 bytes: system
/// exclusive.
struct HostEvent {
    int offset = 0;
    std::vector<std::uint8_t> bytes;
};

/// One instance of a plug-in module, driven as an audio workstation does. The thread that loads it is its
/// message thread; process and send may be called from one other thread at a time.
class HostedPlugin {
  public:
    struct Options {
        double sampleRate = 44100.0;
        int blockSize = 512;
        bool offline = true; ///< what the plug-in is told about the process level
    };

    /// Loads the module at `path` (UTF-8) and opens an instance. Null when that fails; `error` then says why.
    static std::unique_ptr<HostedPlugin> load(const std::string& path, const Options& options,
                                              std::string& error);
    /// Closes the editor, the instance and the module, in this order.
    ~HostedPlugin();
    HostedPlugin(const HostedPlugin&) = delete;
    HostedPlugin& operator=(const HostedPlugin&) = delete;

    const Vst2::AEffect& effect() const { return *effect_; }
    const Options& options() const { return options_; }
    Vst2::VstIntPtr call(int opcode, int index = 0, Vst2::VstIntPtr value = 0, void* pointer = nullptr,
                         float option = 0.0f);
    /// A text that the plug-in writes into a buffer; empty when it writes none.
    std::string text(int opcode, int index = 0);

    /// Turns processing on with new settings, after turning it off if need be.
    void activate(double sampleRate, int blockSize);
    void activate() { activate(options_.sampleRate, options_.blockSize); }
    void deactivate();
    void setOffline(bool offline) { offline_ = offline; }

    /// Events of the coming block, in order of their offsets.
    void send(const std::vector<HostEvent>& events);
    /// Renders one block of at most the block size into two buffers.
    void process(float* left, float* right, int frames);

    std::vector<std::uint8_t> chunk();
    void restore(std::span<const std::uint8_t> chunk);
    void selectProgram(int index) { call(Vst2::effSetProgram, 0, index); }
    /// Makes the random choices of our own module repeatable. False from modules that know nothing of it.
    bool seedRandom(std::uint32_t seed);
    /// Lets the plug-in's messages through until the loading in the background, if any, has ended: a chunk
    /// that is its path alone says that it goes on. False when that takes longer than `seconds`.
    bool waitForLoading(double seconds);

    /// The window system's handle of the window to open in.
    bool openEditor(void* parent);
    void closeEditor();
    bool isEditorOpen() const { return editorOpen_; }
    struct Size {
        int width = 0, height = 0;
    };
    Size editorSize();
    /// What a host's event loop does now and then: lets the plug-in handle its messages.
    void idle();

    /// Called when the plug-in asks for a window of another size. Returns whether it got it.
    std::function<bool(Size)> onResize;

  private:
    HostedPlugin(std::unique_ptr<SharedModule> module, const Options& options)
        : module_(std::move(module))
        , options_(options)
        , offline_(options.offline) {}

    static Vst2::VstIntPtr hostCallback(Vst2::AEffect* effect, int opcode, int index, Vst2::VstIntPtr value,
                                        void* pointer, float option);
    Vst2::VstIntPtr handle(int opcode, int index, Vst2::VstIntPtr value, void* pointer);
    Vst2::VstIntPtr timeInfo();

    std::unique_ptr<SharedModule> module_;
    Options options_;
    std::atomic<bool> offline_; // the audio thread asks for it
    Vst2::AEffect* effect_ = nullptr;
    Vst2::VstTimeInfo time_{};
    double renderedFrames_ = 0.0;
    bool active_ = false;
    bool editorOpen_ = false;
};

/// Handles the window messages of this thread that wait, as a host's event loop would. Nothing on systems
/// where a plug-in has a message queue of its own.
void pumpMessages();

} // namespace zarno
