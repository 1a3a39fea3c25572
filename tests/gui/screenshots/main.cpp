// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of the window for documents and for eyes: the real window over a stand-in for the processor, on
// whatever screen there is. Everything that is open is drawn into one picture, menus included.
//
//   zarno_window_pictures ZOOM OUTPUT_FOLDER EXAMPLE_FOLDER [APPROVED_FOLDER]
//
// ZOOM: in percent. EXAMPLE_FOLDER holds layout.xml and panel.png of an example panel. With APPROVED_FOLDER,
// pictures that differ from those there are a failure.
#include "gui/CLookAndFeel.h"
#include "gui/CZSPGUI.h"
#include "tests/gui/support/FakeLink.h"
#include "tests/gui/support/PictureDistance.h"

#include <functional>
#include <iostream>

namespace zarno {
namespace {

void fillEngine(FakeLink& link) {
    auto& engine = link.instrument;
    engine.clear();
    engine.texts().name = "Lantern Tines";
    engine.texts().path = "/Lantern Tines.zse";
    int keyswitch = 36;
    for (const char* name : {"Sustained", "Muted"}) {
        auto& group = engine.createGroup(name);
        group.record.trigger = static_cast<std::int32_t>(GroupTrigger::Note);
        group.record.keyswitchNote = keyswitch++;
        auto zone = std::make_unique<ZZone>();
        zone->record.lowKey = 41;
        zone->record.highKey = 88;
        zone->record.highVelocity = 127;
        group.addZone(std::move(zone));
    }
    engine.groups()[0]->record.attack = -180.0f;
    engine.groups()[0]->record.release = 300.0f;
    engine.settings().volume = -6.0f;
    engine.activateGroup(engine.groups()[0].get());
    engine.texts().title = "Lantern Tines";
    engine.texts().remark = "A tine piano and a mallet instrument, computed.";
    link.titles = {"Lantern Tines", "Glass Bells", "Harbour Organ", "Felt Upright"};
    link.paths = {rooted("/library/Lantern Tines.zse"), rooted("/library/Bells/glass.zse"),
                  rooted("/library/Organs/harbour.zse"), rooted("/library/Keys/felt.zse")};
    link.settings["recent instruments"] = rooted("/library/Organs/harbour.zse");
    link.heard = {0.25f, 0.03};
    link.index = 0;
    ++link.library;
    ++link.loads;
    ++link.groups;
}

class Session final : private juce::Timer {
  public:
    Session(int zoom, juce::File output, juce::File example, juce::File approved)
        : output_(std::move(output))
        , example_(std::move(example))
        , approved_(std::move(approved)) {
        lookAndFeel_.install();
        fillEngine(link_);
        link_.settings["zoom"] = juce::String(zoom);
        window_ = std::make_unique<CZSPGUI>(processor_, link_);
        window_->setOpaque(true);
        window_->addToDesktop(juce::ComponentPeer::windowHasTitleBar);
        window_->setTopLeftPosition(40, 80);
        window_->setVisible(true);
        window_->toFront(true);
        juce::Desktop::setMousePosition({1390, 890}); // over no key
        holdKeys();
        auto& bar = window_->statusBar();
        steps_ = {{"default", [] {}},
                  {"instrument-menu", [&] { window_->dialogs().showInstrumentMenu(bar); }},
                  {"group-menu", [&] { window_->showGroupMenu(bar); }},
                  {"zoom-menu", [&] { bar.onZoom(bar); }},
                  {"value", [this] { turnKnob(); }},
                  {"type-value", [this] { window_->knobs().typeKnobValue(knob(1)); }},
                  {"knob-menu", [this] { openKnobMenu(); }},
                  {"browser", [this] { window_->openBrowser(); }},
                  {"browser-search", [this] { window_->browser().search("or"); }},
                  {"instrument-list", [this] { openList(); }},
                  {"about", [this] { openAbout(); }},
                  {"loading", [this] { load(0.4); }},
                  {"missing-samples", [this] { miss(); }},
                  {"failed-load", [this] { fail(); }},
                  {"drop-taken", [this] { window_->fileDragEnter({"/tmp/Tines.zse"}, 0, 0); }},
                  {"drop-refused", [this] { window_->fileDragEnter({"/tmp/Strings.sfz"}, 0, 0); }},
                  {"first-run", [this] { empty(); }},
                  {"example", [this] { showExample(); }}};
        juce::Desktop::setMousePosition({1590, 1090}); // beside the window
        startTimer(stepMs);
    }

    bool isGood() const { return isGood_; }

  private:
    static constexpr int stepMs = 500; // the window has drawn what there is by then

    void holdKeys() {
        for (const int key : {60, 66})
            window_->panel().keyboardState().noteOn(1, key, 0.8f);
    }
    void finishLoading() {
        window_->loadingFinished();
        holdKeys(); // the new panel's own
    }
    PanelKnob& knob(std::size_t index) {
        return dynamic_cast<PanelKnob&>(*window_->panel().controls().knobs[index]);
    }
    void turnKnob() { knob(1).setValue(0.6, juce::sendNotificationSync); }
    void openKnobMenu() {
        window_->knobs().bubble().hide();
        window_->knobs().showKnobMenu(knob(4));
    }
    void openList() {
        window_->browser().setVisible(false);
        window_->openInstrumentList();
    }
    void openAbout() {
        window_->openInstrumentList(); // which closes it
        window_->openAbout();
    }
    void fail() {
        link_.missing = {};
        link_.succeeded = false;
        link_.report = {"Harbour Organ.zse", "Harbour Organ.zse ends at byte 4096, before the instrument does.", true,
                        false};
        finishLoading();
    }
    void empty() {
        link_.folders = {"/library"}; // the same text on every system
        window_->fileDragExit({});
        link_.succeeded = true;
        link_.report = {};
        link_.titles.clear();
        link_.paths.clear();
        link_.index = -1;
        ++link_.library;
        link_.instrument.clear();
        finishLoading();
    }
    void load(double progress) {
        link_.loading = true;
        link_.progress = progress;
        window_->loadingStarted();
    }
    void miss() {
        link_.loading = false;
        link_.missing.notFound = {"tine-041-soft.wav", "tine-041-loud.wav"};
        link_.missing.unsupported = {"noise.aif"};
        finishLoading();
        window_->dialogs().showMissingMenu(window_->statusBar());
    }
    void showExample() {
        fillEngine(link_);
        juce::MemoryBlock picture;
        example_.getChildFile("panel.png").loadFileAsData(picture);
        auto& texts = link_.instrument.texts();
        texts.layout = example_.getChildFile("layout.xml").loadFileAsString().toStdString();
        texts.panelImage.assign(picture.begin(), picture.end());
        isGood_ = isGood_ && !texts.layout->empty() && !texts.panelImage.empty();
        finishLoading();
    }
    void timerCallback() override {
        step();
        if (isTimerRunning()) startTimer(stepMs); // from now on, however long the step took
    }

    void step() {
        if (isShown_ && !hasItsMenu() && ++tries_ < 20) {
            steps_[step_].second();
            return;
        }
        if (isShown_) {
            if (!hasItsMenu()) {
                isGood_ = false;
                std::cerr << steps_[step_].first << ": its menu did not open\n";
            }
            save(steps_[step_++].first);
            juce::PopupMenu::dismissAllActiveMenus();
        } else if (step_ == steps_.size()) {
            stopTimer();
            window_ = nullptr;
            juce::MessageManager::getInstance()->stopDispatchLoop();
            return;
        } else {
            steps_[step_].second();
        }
        isShown_ = !isShown_;
    }

    // A menu closes at once while the program is not yet the one in front.
    bool hasItsMenu() const {
        const juce::String name(steps_[step_].first);
        const bool isMenu = name.contains("menu") || name.contains("missing-");
        return !isMenu || juce::Desktop::getInstance().getNumComponents() > 1;
    }

    void save(const juce::String& name) {
        auto& desktop = juce::Desktop::getInstance();
        juce::Rectangle<int> all = window_->getScreenBounds();
        for (int i = 0; i < desktop.getNumComponents(); ++i)
            all = all.getUnion(desktop.getComponent(i)->getScreenBounds());
        juce::Image image(juce::Image::RGB, all.getWidth(), all.getHeight(), true);
        juce::Graphics g(image);
        g.fillAll(juce::Colours::white);
        for (int i = 0; i < desktop.getNumComponents(); ++i) {
            auto* part = desktop.getComponent(i);
            const auto place = part->getScreenPosition() - all.getPosition();
            // Menus are scaled as a whole.
            const float scale = part->getDesktopScaleFactor();
            g.drawImageAt(part->createComponentSnapshot(part->getLocalBounds(), true, scale), place.x, place.y);
        }
        juce::MemoryOutputStream png;
        const bool isWritten =
            juce::PNGImageFormat().writeImageToStream(image, png) &&
            output_.getChildFile(name + ".png").replaceWithData(png.getData(), png.getDataSize());
        isGood_ = isGood_ && isWritten;
        std::cout << name << ".png " << image.getWidth() << " x " << image.getHeight()
                  << (isWritten ? "" : ", cannot be written");
        if (approved_ != juce::File()) compare(name, image);
        std::cout << "\n";
    }

    // Menus are as large as their text and their shadow, which come out otherwise on Windows.
    void compare(const juce::String& name, const juce::Image& image) {
        constexpr double tolerance = 30.0;
#if JUCE_WINDOWS
        if (name.contains("menu") || name.contains("missing")) return;
#endif
        const auto approved = juce::PNGImageFormat::loadFrom(approved_.getChildFile(name + ".png"));
        const bool hasSize = approved.getBounds() == image.getBounds();
        const double distance = approved.isValid() ? pictureDistance(approved, image) : 255.0;
        std::cout << ", differs by " << distance << " of " << tolerance << (hasSize ? "" : ", wrong size");
        isGood_ = isGood_ && hasSize && distance <= tolerance;
    }

    juce::File output_, example_, approved_;
    CLookAndFeel lookAndFeel_;
    SilentProcessor processor_;
    FakeLink link_;
    std::unique_ptr<CZSPGUI> window_;
    std::vector<std::pair<const char*, std::function<void()>>> steps_;
    std::size_t step_ = 0;
    int tries_ = 0; // of all menus
    bool isShown_ = false, isGood_ = true;
};

} // namespace
} // namespace zarno

int main(int count, char** arguments) {
    if (count != 4 && count != 5) {
        std::cerr << "zarno_window_pictures ZOOM OUTPUT_FOLDER EXAMPLE_FOLDER [APPROVED_FOLDER]\n";
        return 2;
    }
    const auto here = juce::File::getCurrentWorkingDirectory();
    const auto output = here.getChildFile(arguments[2]);
    output.createDirectory();
    const juce::ScopedJuceInitialiser_GUI framework;
    zarno::Session session(juce::String(arguments[1]).getIntValue(), output, here.getChildFile(arguments[3]),
                           count == 5 ? here.getChildFile(arguments[4]) : juce::File());
    juce::MessageManager::getInstance()->runDispatchLoop();
    return session.isGood() ? 0 : 1;
}
