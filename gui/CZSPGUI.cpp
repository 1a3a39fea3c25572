// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CZSPGUI.h"

#include "engine/ZInstrument.h"
#include "gui/CPlayerKeyboard.h"
#include "gui/DefaultLayout.h"
#include "gui/PanelEdits.h"
#include "gui/Theme.h"
#include "gui/WindowMenus.h"
#include "platform/ThreadRole.h"
#include "platform/Utf8.h"
#if JUCE_WINDOWS
#include "platform/MessageBox_win32.h"
#endif

namespace zarno {
namespace {

constexpr int refreshHz = 30;
constexpr const char* zoomKey = "zoom";
constexpr const char* lastFileKey = "load instrument";

juce::String fromEngine(const std::string& text) {
    return juce::String::fromUTF8(toUtf8(text).c_str());
}

juce::File fileOf(const juce::String& path) {
    return juce::File::isAbsolutePath(path) ? juce::File(path) : juce::File();
}

juce::String fileNameWithoutExtension(const juce::String& path) {
    const auto name = path.substring(path.lastIndexOfAnyOf("/\\") + 1);
    return name.containsChar('.') ? name.upToLastOccurrenceOf(".", false, false) : name;
}

bool isInstrumentFile(const juce::String& path) {
    return path.endsWithIgnoreCase(".zse") || path.endsWithIgnoreCase(".zs2");
}

} // namespace

CZSPGUI::CZSPGUI(juce::AudioProcessor& processor, EditorLink& link)
    : AudioProcessorEditor(processor)
    , link_(link)
    , panel_({this, this, this}, &link.keyboardRoute(),
             [this](const juce::String& caption, const juce::String& text) { showPanelProblem(caption, text); })
    , list_(link.instrumentList(), [this] { return link_.instrumentTitles(); }) {
    setSize(600, 250);
    setWantsKeyboardFocus(true);
    addAndMakeVisible(content_);
    content_.addAndMakeVisible(panel_);
    content_.addAndMakeVisible(bar_);
    content_.addChildComponent(list_);
    content_.addChildComponent(overlay_);
    list_.onPick = [this](int row) { link_.selectInstrument(row, {}); };
    list_.onClose = [this] { list_.setVisible(false); };
    connectBar();
    zoomPercent_ = zoomFromSetting(link_.setting(zoomKey));
    rebuildPlayer();
    startTimerHz(refreshHz);
}

CZSPGUI::~CZSPGUI() {
    stopTimer();
    releaseDraggedKnob();
    if (isAttached_) link_.setWindow(nullptr);
}

// Hosts make editors just to ask for their size. The processor shows dialogs when it has a window, so it hears
// of this one only while it is on a screen.
void CZSPGUI::parentHierarchyChanged() {
    followAttachment();
}

void CZSPGUI::followAttachment() {
    const bool isAttached = getPeer() != nullptr;
    if (isAttached == isAttached_) return;
    isAttached_ = isAttached;
    link_.setWindow(isAttached ? this : nullptr);
    if (isAttached && loadSeen_ != link_.loadGeneration()) rebuildPlayer();
}

void CZSPGUI::connectBar() {
    bar_.onLoad = [this](auto&) { openInstrumentFile(); };
    bar_.onInstrumentMenu = [this](auto& source) { showInstrumentMenu(source); };
    bar_.onGroupMenu = [this](auto& source) { showGroupMenu(source); };
    bar_.onList = [this](auto&) { openInstrumentList(); };
    bar_.onMissing = [this](auto& source) { showMissingMenu(source); };
    bar_.onLocate = [this](auto&) { locateInstrument(); };
    bar_.onTryAgain = [this](auto&) { link_.tryAgain(); };
    bar_.onZoom = [this](auto& source) { showZoomMenu(source); };
}

void CZSPGUI::fitToPanel() {
    const int width = std::max(panel_.getWidth(), StatusBar::minWidth);
    panel_.setTopLeftPosition((width - panel_.getWidth()) / 2, 0);
    bar_.setBounds(0, panel_.getHeight(), width, StatusBar::height);
    const juce::Rectangle<int> whole(0, 0, width, panel_.getHeight() + StatusBar::height);
    list_.setBounds(whole.withTrimmedBottom(StatusBar::height));
    overlay_.setBounds(whole);
    const float scale = static_cast<float>(zoomPercent_) / 100.0f;
    content_.setBounds(whole);
    content_.setTransform(juce::AffineTransform::scale(scale));
    setSize(juce::roundToInt(static_cast<float>(whole.getWidth()) * scale),
            juce::roundToInt(static_cast<float>(whole.getHeight()) * scale));
}

void CZSPGUI::setZoom(int percent) {
    zoomPercent_ = zoomFromSetting(juce::String(percent));
    link_.setSetting(zoomKey, juce::String(zoomPercent_));
    fitToPanel();
    refreshBar();
}

void CZSPGUI::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(theme::body));
}

// During a load the built-in panel stands below the overlay; loadingFinished brings the real one.
void CZSPGUI::rebuildPlayer() {
    constexpr int patienceMs = 20; // for a host that takes the window's size right away
    std::string layout = defaultLayout;
    std::vector<std::uint8_t> image;
    releaseDraggedKnob();
    const bool hasContents = access_.read(
        [&] {
            readContents();
            loadSeen_ = link_.loadGeneration();
            const auto& texts = link_.engine().texts();
            layout = texts.layout.value_or(defaultLayout);
            image = texts.panelImage;
        },
        patienceMs);
    rebuildDue_ = !hasContents && !link_.isLoading();
    panel_.rebuild(layout, image);
    refresh_.forget();
    fitToPanel();
    refreshAll();
}

void CZSPGUI::loadingStarted() {
    list_.setVisible(false);
    overlay_.setVisible(true);
    overlay_.toFront(false);
    refreshOverlay();
}

void CZSPGUI::loadingFinished() {
    question_.close();
    rebuildPlayer();
}

void CZSPGUI::loadFailed() {
    showBox("Zarno Sampler Player", "Unable to load this instrument.");
}

void CZSPGUI::askForSampleFolder(const juce::String& sampleName, const juce::File& start,
                                 std::function<void(const juce::File&)> answer) {
    question_.locateSampleFolder(sampleName, start, std::move(answer));
}

void CZSPGUI::timerCallback() {
    refresh();
    repainter_.paintWhatWaits();
}

void CZSPGUI::refresh() {
    const thread::Acts asMessage(thread::message);
    followAttachment(); // JUCE is silent about a peer that goes
    if (rebuildDue_) return rebuildPlayer();
    access_.flush();
    if (link_.groupsGeneration() != groupsSeen_) {
        refreshAll();
        return;
    }
    refreshControls();
    refreshActivity();
}

void CZSPGUI::refreshAll() {
    refreshContents();
    refreshLabels();
    refreshControls();
    refreshKeyboards();
    refreshActivity();
}

bool CZSPGUI::refreshContents() {
    return access_.read([this] { readContents(); });
}

// What the window keeps of the instrument: names, selection, the keys' roles. The caller has the contents.
void CZSPGUI::readContents() {
    groupsSeen_ = link_.groupsGeneration();
    const ZInstrument& engine = link_.engine();
    instrumentName_ = fromEngine(engine.texts().name);
    if (engine.texts().path.empty())
        instrumentName_.clear();
    else if (instrumentName_.trim().isEmpty())
        instrumentName_ = fileNameWithoutExtension(fromEngine(engine.texts().path));
    selection_.follow(engine, link_.loadGeneration());
    roles_ = keyRolesOf(engine);
    groupNames_.clearQuick();
    juce::StringArray active;
    for (const auto& group : engine.groups()) {
        groupNames_.add(fromEngine(group->name));
        if (group->active) active.add(groupNames_[groupNames_.size() - 1]);
    }
    activeGroupNames_ = active.joinIntoString(", ");
    missingText_ = missingText(link_.missingSamples());
    lastLoad_ = link_.lastLoad();
    refresh_.forget();
}

juce::String CZSPGUI::titleText() const {
    if (instrumentName_.isNotEmpty()) return instrumentName_;
    return link_.instrumentTitles().isEmpty() ? "Cannot find any instruments." : "No instrument loaded";
}

void CZSPGUI::refreshLabels() {
    for (auto* label : panel_.controls().labels) {
        const int id = PanelBuilder::idOf(*label);
        if (id == 1) label->setText(titleText(), juce::dontSendNotification);
        if (id == 2) label->setText(activeGroupNames_, juce::dontSendNotification);
    }
}

void CZSPGUI::refreshControls() {
    access_.read([this] {
        const PanelEdits engine(link_.engine(), selection_.indices(link_.loadGeneration()));
        refresh_.refresh(panel_.controls(), engine);
    });
}

void CZSPGUI::refreshKeyboards() {
    for (auto* keyboard : panel_.controls().keyboards)
        keyboard->setRoles(roles_);
}

void CZSPGUI::refreshBar() {
    const ZInstrument& engine = link_.engine();
    StatusBar::State state;
    state.voices = engine.playingVoices();
    state.isStreaming = engine.settings().streaming != 0;
    state.zoomPercent = zoomPercent_;
    if (!link_.isLoading()) {
        state.missing = missingText_;
        state.hasFailed = !link_.lastLoadSucceeded();
        state.problem = lastLoad_.problem;
        state.canLocate = lastLoad_.fileIsMissing;
    }
    bar_.show(state);
}

void CZSPGUI::refreshOverlay() {
    overlay_.setProgress(link_.loadProgress());
    overlay_.setVisible(link_.isLoading());
}

void CZSPGUI::refreshActivity() {
    refreshBar();
    refreshOverlay();
}

void CZSPGUI::sliderValueChanged(juce::Slider* slider) {
    access_.edit([id = PanelBuilder::idOf(*slider), position = slider->getValue()](PanelEdits& edits) {
        edits.knobMoved(id, position);
    });
    if (slider != dragged_) sliderDragEnded(slider); // by keyboard or wheel: a change of its own
}

void CZSPGUI::sliderDragStarted(juce::Slider* slider) {
    dragged_ = slider;
}

// The mouse lets go of a knob whose panel goes: it gets no event any more.
void CZSPGUI::releaseDraggedKnob() {
    const auto* slider = std::exchange(dragged_, nullptr);
    if (slider != nullptr && PanelBuilder::idOf(*slider) == pitchBendKnobId) link_.engine().setPitchBend(0.0f);
}

void CZSPGUI::sliderDragEnded(juce::Slider* slider) {
    dragged_ = nullptr;
    const bool springsBack = PanelBuilder::idOf(*slider) == pitchBendKnobId;
    if (springsBack && slider->getValue() != 0.5) slider->setValue(0.5, juce::sendNotificationSync);
    if (!springsBack) link_.editEnded();
}

void CZSPGUI::comboBoxChanged(juce::ComboBox* combo) {
    access_.edit([id = PanelBuilder::idOf(*combo), item = combo->getSelectedItemIndex()](PanelEdits& edits) {
        edits.comboChosen(id, item);
    });
    link_.editEnded();
}

void CZSPGUI::buttonClicked(juce::Button* button) {
    const ButtonBinding* binding = findButton(PanelBuilder::idOf(*button));
    if (binding == nullptr) return;
    switch (binding->action) {
    case ButtonAction::InstrumentMenu:
        return showInstrumentMenu(*button);
    case ButtonAction::NextInstrument:
        return stepInstrument(+1);
    case ButtonAction::PreviousInstrument:
        return stepInstrument(-1);
    case ButtonAction::NextGroup:
        return pickGroup(link_.engine().currentGroupIndex() + 1, false);
    default:
        break;
    }
    access_.edit([binding, isOn = button->getToggleState()](PanelEdits& edits) {
        edits.buttonClicked(*binding, isOn);
    });
    // A play mode stays on when it is clicked once more, whatever the click has done to the button.
    refresh_.forget(*button);
    if (binding->action == ButtonAction::ResetSettings) refreshAll();
    if (binding->action != ButtonAction::StopVoices) link_.editEnded();
}

// Past either end of the library nothing happens.
void CZSPGUI::stepInstrument(int direction) {
    const int index = link_.currentIndex() + direction;
    if (index >= 0 && index < link_.instrumentTitles().size()) link_.selectInstrument(index, {});
}

void CZSPGUI::pickGroup(int group, bool toggle) {
    const juce::ScopedTryLock contents(link_.contentsLock());
    if (!contents.isLocked() || group < 0 || group >= static_cast<int>(link_.engine().groups().size()))
        return;
    const auto generation = link_.loadGeneration();
    selection_.pick(group, toggle, generation);
    link_.engine().requestActiveGroups(selection_.indices(generation));
    refresh_.forget();
    refreshControls();
    link_.editEnded();
}

void CZSPGUI::showMenu(juce::PopupMenu menu, juce::Component& source, std::function<void(int)> picked) {
    menu.showMenuAsync(juce::PopupMenu::Options().withTargetComponent(source).withDeletionCheck(*this),
                       [safe = juce::Component::SafePointer(this), picked = std::move(picked)](int result) {
                           if (safe != nullptr && result > 0) picked(result);
                       });
}

void CZSPGUI::showInstrumentMenu(juce::Component& source) {
    showMenu(makeInstrumentMenu(link_.instrumentTitles(), link_.currentIndex()), source,
             [this](int id) { link_.selectInstrument(id - 1, {}); });
}

void CZSPGUI::showGroupMenu(juce::Component& source) {
    const auto generation = link_.loadGeneration();
    showMenu(makeGroupMenu(groupNames_, selection_.indices(generation)), source, [this, generation](int id) {
        const auto keys = juce::ModifierKeys::getCurrentModifiers();
        if (generation == link_.loadGeneration())
            pickGroup(id - 1, keys.isCommandDown() || keys.isShiftDown());
    });
}

void CZSPGUI::showMissingMenu(juce::Component& source) {
    showMenu(makeMissingMenu(link_.missingSamples()), source, [this](int) {
        dialogs_.chooseSampleFolder(fileOf(link_.setting("missing folder")),
                                    [this](const juce::File& folder) { link_.locateMissingSamples(folder); });
    });
}

juce::StringArray CZSPGUI::information() const {
    juce::StringArray lines("Zarno Sampler Player " ZARNO_VERSION, titleText(), link_.packTitle(),
                            link_.vendorText());
    lines.removeEmptyStrings();
    return lines;
}

void CZSPGUI::showZoomMenu(juce::Component& source) {
    showMenu(makeZoomMenu(zoomPercent_, information()), source, [this](int percent) { setZoom(percent); });
}

void CZSPGUI::openInstrumentFile() {
    dialogs_.openInstrument(fileOf(link_.setting(lastFileKey)), [this](const juce::File& file) {
        link_.selectInstrument(-1, file.getFullPathName());
        link_.setSetting(lastFileKey, file.getFullPathName());
    });
}

void CZSPGUI::locateInstrument() {
    dialogs_.openInstrument(fileOf(link_.setting(lastFileKey)),
                            [this](const juce::File& file) { link_.locateInstrument(file); });
}

void CZSPGUI::openInstrumentList() {
    if (list_.isVisible())
        list_.setVisible(false);
    else
        list_.open(link_.currentIndex());
}

bool CZSPGUI::isInterestedInFileDrag(const juce::StringArray& files) {
    return std::any_of(files.begin(), files.end(), isInstrumentFile);
}

void CZSPGUI::filesDropped(const juce::StringArray& files, int, int) {
    const auto found = std::find_if(files.begin(), files.end(), isInstrumentFile);
    if (found != files.end()) link_.selectInstrument(-1, *found);
}

// Computer keys play wherever the focus is in the window.
bool CZSPGUI::keyStateChanged(bool isKeyDown) {
    const auto& keyboards = panel_.controls().keyboards;
    return !keyboards.empty() && !list_.isVisible() && keyboards.front()->keyStateChanged(isKeyDown);
}

void CZSPGUI::showPanelProblem(const juce::String& caption, const juce::String& text) {
    if (link_.shouldReportPanelError()) showBox(caption, text);
}

// On Windows the system's own box, which outlives the window. Elsewhere one of JUCE's that goes with the window.
void CZSPGUI::showBox(const juce::String& caption, const juce::String& text) {
#if JUCE_WINDOWS
    showMessageBox(caption.toStdString(), text.toStdString());
#else
    box_ = std::make_unique<juce::AlertWindow>(caption, text, juce::MessageBoxIconType::WarningIcon, this);
    box_->addButton("OK", 0, juce::KeyPress(juce::KeyPress::returnKey),
                    juce::KeyPress(juce::KeyPress::escapeKey));
    box_->enterModalState(true, juce::ModalCallbackFunction::create(
                                    [box = juce::Component::SafePointer(box_.get()), this](int) {
                                        if (box != nullptr) box_.reset();
                                    }));
#endif
}

} // namespace zarno
