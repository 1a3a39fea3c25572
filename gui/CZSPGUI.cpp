// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CZSPGUI.h"

#include "engine/ZInstrument.h"
#include "gui/BarState.h"
#include "gui/CPlayerKeyboard.h"
#include "gui/DefaultLayout.h"
#include "gui/PanelEdits.h"
#include "gui/Theme.h"
#include "gui/WindowMenus.h"
#include "platform/ThreadRole.h"

namespace zarno {
namespace {

constexpr int refreshHz = 30;

} // namespace

CZSPGUI::CZSPGUI(juce::AudioProcessor& processor, EditorLink& link)
    : AudioProcessorEditor(processor)
    , link_(link)
    , panel_({this, this, this, &knobs_}, &link.keyboardRoute(),
             [this](const juce::String& caption, const juce::String& text) {
                 if (link_.shouldReportPanelError()) dialogs_.showBox(caption, text);
             })
    , list_(link.instrumentList(), [this] { return link_.instrumentTitles(); }) {
    setSize(600, 250);
    setWantsKeyboardFocus(true);
    addAndMakeVisible(content_);
    content_.addAndMakeVisible(panel_);
    content_.addAndMakeVisible(bar_);
    for (juce::Component* part :
         std::initializer_list<juce::Component*>{&firstRun_, &list_, &browser_, &about_, &overlay_, &drop_})
        content_.addChildComponent(part);
    connectBar();
    connectPanels();
    lateReadsSeen_ = link_.engine().streamStats().lateRefills;
    rebuildPlayer();
    startTimerHz(refreshHz);
}

CZSPGUI::~CZSPGUI() {
    stopTimer();
    knobs_.release();
    if (isAttached_) link_.setWindow(nullptr);
}

void CZSPGUI::connectBar() {
    bar_.onPrevious = [this](auto&) { stepInstrument(-1); };
    bar_.onNext = [this](auto&) { stepInstrument(+1); };
    bar_.onInstrumentMenu = [this](auto& source) { dialogs_.showInstrumentMenu(source); };
    bar_.onLibrary = [this](auto&) { openBrowser(); };
    bar_.onLoad = [this](auto&) { dialogs_.openInstrument(); };
    bar_.onGroupMenu = [this](auto& source) { showGroupMenu(source); };
    bar_.onAbout = [this](auto&) { openAbout(); };
    bar_.onAudio = [this](auto&) { link_.showAudioSettings(); };
    bar_.onZoom = [this](auto& source) { dialogs_.showZoomMenu(source, zoom_.percent(), zoom_.largest()); };
    bar_.onPanic = [this](auto&) { panic(); };
    bar_.onNotice = [this](auto& source) { followNotice(source); };
}

void CZSPGUI::connectPanels() {
    list_.onPick = [this](int row) { load(row, {}); };
    list_.onClose = [this] { list_.setVisible(false); };
    browser_.onPick = [this](int index) { load(index, {}); };
    browser_.onClose = about_.onClose = [this] { grabKeyboardFocus(); };
    browser_.onRefresh = [this] { link_.refreshLibrary(); };
    browser_.onPlainList = [this] {
        browser_.setVisible(false);
        openInstrumentList();
    };
    firstRun_.onLoad = [this] { dialogs_.openInstrument(); };
    firstRun_.onOpenFolder = [this] { dialogs_.openLibraryFolder(); };
    overlay_.onCancel = [this] { link_.cancelLoad(); };
}

void CZSPGUI::fitToPanel() {
    const int width = std::max(panel_.getWidth(), StatusBar::minWidth);
    const int height = panel_.getHeight() + StatusBar::height;
    const juce::Rectangle<int> whole(0, 0, width, height), above(0, 0, width, panel_.getHeight());
    panel_.setTopLeftPosition((width - panel_.getWidth()) / 2, 0);
    bar_.setBounds(0, panel_.getHeight(), width, StatusBar::height);
    list_.setBounds(above);
    browser_.setBounds(above);
    about_.setBounds(above);
    firstRun_.setBounds(above.withTrimmedTop(std::min(112, above.getHeight() / 2)).reduced(8, 0));
    overlay_.setBounds(whole);
    drop_.setBounds(whole);
    content_.setBounds(whole);
    zoom_.fit(*this, width, height);
    content_.setTransform(juce::AffineTransform::scale(zoom_.scale()));
    setSize(juce::roundToInt(static_cast<float>(width) * zoom_.scale()),
            juce::roundToInt(static_cast<float>(height) * zoom_.scale()));
    repainter_.repaintForAWhile();
}

// A host's window that goes away first makes the wrapper around this one, and so this one, 1 x 1. The host may ask for
// the size next.
void CZSPGUI::resized() {
    if (getWidth() <= 1 || getHeight() <= 1) fitToPanel();
}

void CZSPGUI::setZoom(int percent) {
    zoom_.choose(percent);
    fitToPanel();
    refreshBar();
}

void CZSPGUI::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(theme::body));
}

void CZSPGUI::followAttachment() {
    const bool isAttached = getPeer() != nullptr;
    if (isAttached == isAttached_) return;
    isAttached_ = isAttached;
    // Hosts make editors just to ask for their size. The processor shows dialogs when it has a window, so it hears of
    // this one only while it is on a screen.
    link_.setWindow(isAttached ? this : nullptr);
    if (!isAttached) return;
    if (loadSeen_ != link_.loadGeneration())
        rebuildPlayer();
    else
        fitToPanel(); // to the display that it is on
}

void CZSPGUI::visibilityChanged() {
    if (!isShowing()) juce::PopupMenu::dismissAllActiveMenus();
}

// During a load the built-in panel stands below the overlay; loadingFinished brings the real one.
void CZSPGUI::rebuildPlayer() {
    constexpr int patienceMs = 20; // for a host that takes the window's size right away
    std::string layout = defaultLayout;
    std::vector<std::uint8_t> image;
    knobs_.release();
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
    librarySeen_ = 0;
    refreshLibrary();
    fitToPanel();
    refreshAll();
}

void CZSPGUI::loadingStarted() {
    list_.setVisible(false);
    browser_.setVisible(false);
    about_.setVisible(false);
    advice_.clear();
    overlay_.setVisible(true);
    overlay_.toFront(false);
    refreshOverlay();
}

void CZSPGUI::loadingFinished() {
    dialogs_.closeQuestion();
    rebuildPlayer();
    const auto& path = link_.engine().texts().path;
    if (path.empty() || !link_.lastLoadSucceeded()) return;
    link_.setSetting("recent instruments", withMostRecent(recentPaths(), fromEngine(path)).joinIntoString("\n"));
}

void CZSPGUI::loadFailed() {
    dialogs_.showBox("Zarno Sampler Player", "Unable to load this instrument.");
}

void CZSPGUI::askForSampleFolder(const juce::String& sampleName, const juce::File& start,
                                 std::function<void(const juce::File&)> answer) {
    dialogs_.askForSampleFolder(sampleName, start, std::move(answer));
}

void CZSPGUI::timerCallback() {
    refresh();
    repainter_.paintWhatWaits();
}

void CZSPGUI::refresh() {
    const thread::Acts asMessage(thread::message);
    followAttachment(); // JUCE is silent about a peer that goes
    input_.takeFocus();
    closeMenusOfHiddenWindow();
    refreshLibrary();
    if (rebuildDue_) return rebuildPlayer();
    access_.flush();
    if (link_.groupsGeneration() != groupsSeen_) return refreshAll();
    refreshControls();
    refreshActivity();
}

void CZSPGUI::refreshAll() {
    access_.read([this] { readContents(); });
    refreshLabels();
    refreshControls();
    for (auto* keyboard : panel_.controls().keyboards)
        keyboard->setRoles(view_.roles);
    refreshActivity();
}

// The caller has the contents.
void CZSPGUI::readContents() {
    groupsSeen_ = link_.groupsGeneration();
    selection_.follow(link_.engine(), link_.loadGeneration());
    view_.read(link_);
    refresh_.forget();
}

juce::String CZSPGUI::titleText() const {
    if (view_.name.isNotEmpty()) return view_.name;
    return titles_.isEmpty() ? "Cannot find any instruments." : "No instrument loaded";
}

void CZSPGUI::refreshLabels() {
    for (auto* label : panel_.controls().labels) {
        const int id = PanelBuilder::idOf(*label);
        if (id == 1) label->setText(titleText(), juce::dontSendNotification);
        if (id == 2) label->setText(view_.activeGroups, juce::dontSendNotification);
    }
}

void CZSPGUI::refreshControls() {
    access_.read([this] {
        const PanelEdits engine(link_.engine(), selection_.indices(link_.loadGeneration()));
        refresh_.refresh(panel_.controls(), engine);
    });
}

void CZSPGUI::refreshLibrary() {
    const auto generation = link_.libraryGeneration() + 1; // never 0, which stands for none
    if (std::exchange(librarySeen_, generation) == generation) return;
    titles_ = link_.instrumentTitles();
    if (browser_.isVisible()) fillBrowser();
    firstRun_.setFolder(link_.libraryFolders()[0]);
    const auto problem = link_.libraryProblem();
    if (problem != libraryProblem_) advice_ = libraryProblem_ = problem;
    refreshLabels();
}

void CZSPGUI::fillBrowser() {
    browser_.setLibrary(titles_, link_.instrumentPaths(), link_.libraryFolders(), recentPaths());
}

juce::StringArray CZSPGUI::recentPaths() const {
    return juce::StringArray::fromLines(link_.setting("recent instruments"));
}

void CZSPGUI::refreshBar() {
    bar_.show(barState(link_, {view_.name, advice_, view_.missing, view_.lastLoad, lateReadsSeen_,
                               zoom_.percent(), titles_.size()}));
    firstRun_.setVisible(titles_.isEmpty() && view_.name.isEmpty() && !link_.isLoading() &&
                         link_.lastLoadSucceeded());
}

void CZSPGUI::refreshOverlay() {
    const int index = link_.currentIndex();
    overlay_.setInstrument(juce::isPositiveAndBelow(index, titles_.size()) ? titles_[index] : chosenName_);
    overlay_.setProgress(link_.loadProgress());
    overlay_.setVisible(link_.isLoading());
}

void CZSPGUI::refreshActivity() {
    refreshBar();
    refreshOverlay();
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
        return dialogs_.showInstrumentMenu(*button);
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
    // The click may have turned the button of a play mode off, which stays the play mode.
    refresh_.forget(*button);
    if (binding->action == ButtonAction::ResetSettings) refreshAll();
    if (binding->action != ButtonAction::StopVoices) link_.editEnded();
}

void CZSPGUI::pickGroup(int group, bool toggle) {
    access_.read([&] {
        ZInstrument& engine = link_.engine();
        if (group < 0 || group >= static_cast<int>(engine.groups().size())) return;
        const auto load = link_.loadGeneration();
        selection_.pick(engine, group, toggle, load);
        engine.requestActiveGroups(selection_.indices(load));
        refresh_.forget();
        refreshControls();
        link_.editEnded();
    });
}

void CZSPGUI::load(int index, const juce::String& path) {
    chosenName_ = fileNameWithoutExtension(path);
    advice_.clear();
    link_.selectInstrument(index, path);
}

// Past either end of the library nothing happens.
void CZSPGUI::stepInstrument(int direction) {
    const int index = link_.currentIndex() + direction;
    if (index >= 0 && index < titles_.size()) load(index, {});
}

void CZSPGUI::panic() {
    ZInstrument& engine = link_.engine();
    panel_.releaseAllKeys();
    engine.requestStop();
    for (int channel = 0; channel < 16; ++channel)
        engine.resetControllers(channel);
}

void CZSPGUI::filesDropped(const juce::StringArray& files, int, int) {
    drop_.setVisible(false);
    const auto offer = offerFor(files);
    if (offer.isTaken())
        load(-1, offer.path);
    else
        advice_ = offer.text;
    refreshBar();
}

void CZSPGUI::followNotice(juce::Component& source) {
    switch (bar_.state().notice.action) {
    case Notice::Action::TryAgain:
        return link_.tryAgain();
    case Notice::Action::Locate:
        return dialogs_.locateInstrument();
    case Notice::Action::ShowMissing:
        return dialogs_.showMissingMenu(source);
    case Notice::Action::AudioSettings:
        return link_.showAudioSettings();
    case Notice::Action::Dismiss:
        advice_.clear();
        lateReadsSeen_ = link_.engine().streamStats().lateRefills;
        return refreshBar();
    case Notice::Action::None:
        break;
    }
}

void CZSPGUI::showGroupMenu(juce::Component& source) {
    const auto generation = link_.loadGeneration();
    dialogs_.showGroupMenu(source, makeGroupMenu(view_.groups, selection_.indices(generation)), generation);
}

void CZSPGUI::openInstrumentList() {
    if (list_.isVisible())
        list_.setVisible(false);
    else
        list_.open(link_.currentIndex());
}

void CZSPGUI::openBrowser() {
    if (browser_.isVisible()) return browser_.setVisible(false);
    about_.setVisible(false);
    fillBrowser();
    browser_.open(link_.currentIndex());
}

void CZSPGUI::openAbout() {
    if (about_.isVisible()) return about_.setVisible(false);
    access_.read([this] {
        auto info = infoOf(link_.engine());
        info.facts = {fromEngine(link_.engine().texts().path), link_.packTitle(), link_.vendorText(),
                      "Zarno Sampler Player " ZARNO_VERSION};
        info.facts.removeEmptyStrings();
        browser_.setVisible(false);
        about_.open(std::move(info));
    });
}

std::vector<juce::Rectangle<int>> CZSPGUI::occupiedPlaces() {
    auto places = bar_.occupiedPlaces();
    for (auto& place : places)
        place += bar_.getPosition();
    for (const auto& place : panel_.occupiedPlaces())
        places.push_back(place + panel_.getPosition());
    return places;
}

// A host that hides the window around ours says nothing to us.
void CZSPGUI::closeMenusOfHiddenWindow() {
    const bool isMenuOpen = juce::ModalComponentManager::getInstance()->getNumModalComponents() > 0;
    if (isMenuOpen && isAttached_ && !zoom_.desktop().isViewable(getPeer()->getNativeHandle()))
        juce::PopupMenu::dismissAllActiveMenus();
}

} // namespace zarno
