// SPDX-License-Identifier: GPL-3.0-or-later
// The program that plays without a host: JUCE's holder for device, MIDI inputs and settings, in a window with the
// system's own title bar.
#include "shell/StandaloneHooks.h"

#include <juce_audio_devices/juce_audio_devices.h>
#include <juce_audio_plugin_client/juce_audio_plugin_client.h>
#include <juce_audio_utils/juce_audio_utils.h>

#include <juce_audio_plugin_client/Standalone/juce_StandaloneFilterWindow.h>

namespace zarno {
namespace {

// Three bars of a wave in a rounded square.
juce::Image programIcon() {
    juce::Image icon(juce::Image::ARGB, 64, 64, true);
    juce::Graphics g(icon);
    g.setColour(juce::Colour(0xff1d2025));
    g.fillRoundedRectangle(2.0f, 2.0f, 60.0f, 60.0f, 12.0f);
    g.setColour(juce::Colour(0xfff2a54a));
    float x = 13.0f;
    for (const float height : {20.0f, 40.0f, 28.0f, 14.0f}) {
        g.fillRoundedRectangle(x, 32.0f - height / 2.0f, 7.0f, height, 3.0f);
        x += 10.5f;
    }
    return icon;
}

class Window final : public juce::DocumentWindow {
  public:
    Window(const juce::String& name, juce::PropertySet* settings)
        : DocumentWindow(name, juce::Colour(0xff1d2025), minimiseButton | closeButton, false)
        , holder_(settings, false, {}, nullptr, {}, true) {
        StandaloneHooks::lacksAudioDevice = [this] {
            return holder_.deviceManager.getCurrentAudioDevice() == nullptr;
        };
        StandaloneHooks::showAudioSettings = [this] { holder_.showAudioSettingsDialog(); };
        setUsingNativeTitleBar(true);
        setIcon(programIcon());
        setContentOwned(holder_.processor->createEditorIfNeeded(), true);
        setResizable(false, false);
        centreWithSize(getWidth(), getHeight());
        addToDesktop();
        setVisible(true);
        getPeer()->setIcon(programIcon());
    }
    ~Window() override {
        StandaloneHooks::lacksAudioDevice = nullptr;
        StandaloneHooks::showAudioSettings = nullptr;
        holder_.stopPlaying();
        clearContentComponent();
    }
    void closeButtonPressed() override { juce::JUCEApplicationBase::getInstance()->systemRequestedQuit(); }
    void save() { holder_.savePluginState(); }

  private:
    juce::StandalonePluginHolder holder_;
};

class Program final : public juce::JUCEApplication {
  public:
    Program() {
        juce::PropertiesFile::Options options;
        options.applicationName = getApplicationName();
        options.filenameSuffix = ".settings";
        options.osxLibrarySubFolder = "Application Support";
#if JUCE_LINUX
        options.folderName = "~/.config";
#endif
        properties_.setStorageParameters(options);
    }
    const juce::String getApplicationName() override { return "Zarno Sampler Player"; }
    const juce::String getApplicationVersion() override { return JucePlugin_VersionString; }
    bool moreThanOneInstanceAllowed() override { return true; }

    void initialise(const juce::String&) override {
        window_ = std::make_unique<Window>(getApplicationName(), properties_.getUserSettings());
    }
    void shutdown() override {
        window_ = nullptr;
        properties_.saveIfNeeded();
    }
    void systemRequestedQuit() override {
        if (window_ != nullptr) window_->save();
        juce::ModalComponentManager::getInstance()->cancelAllModalComponents();
        quit();
    }

  private:
    juce::ApplicationProperties properties_;
    std::unique_ptr<Window> window_;
};

} // namespace
} // namespace zarno

juce::JUCEApplicationBase* juce_CreateApplication();
juce::JUCEApplicationBase* juce_CreateApplication() {
    return new zarno::Program();
}
