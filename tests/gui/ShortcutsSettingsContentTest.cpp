#include "ui/settings/ShortcutsSettingsContent.h"

#include "gui/SettingsWindow.h"
#include "support/FakeKeyboardLayout.h"
#include "support/TestMain.h"
#include "ui/settings/KeyCap.h"
#include "ui/settings/KeyboardShortcutView.h"
#include "ui/settings/SettingsDraft.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;
using Shortcut = UploadSettings::KeyboardShortcut;
using KeyModifier = Shortcut::KeyModifier;

namespace {

constexpr auto kCommandShift = Qt::MetaModifier | Qt::ShiftModifier;

/// The page in a window that has a field and a shortcut besides.
class Window : public QWidget {
public:
    Window(SettingsDraft &draft, const KeyboardLayout &layout)
    {
        auto *column = new QVBoxLayout(this);
        field = new QLineEdit(this);
        page = new ShortcutsSettingsContent(draft, layout, this);
        column->addWidget(field);
        column->addWidget(page);
        for (const auto &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W),
                                 QKeySequence(Qt::CTRL | Qt::Key_Tab)})
            connect(new QShortcut(keys, this), &QShortcut::activated, this,
                    [this] { ++shortcutsFired; });
        show();
    }

    template <typename Widget>
    Widget *find(const QString &name) const
    {
        return page->findChild<Widget *>(name);
    }
    QPushButton *button(const QString &name) const { return find<QPushButton>(name); }
    void press(const QString &name) const
    {
        QTest::mouseClick(find<QAbstractButton>(name), Qt::LeftButton);
    }
    void type(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(windowHandle(), static_cast<Qt::Key>(key), modifiers);
    }

    QString caption() const { return find<QLabel>(u"shortcutCaption"_s)->text(); }
    /// The caps shown, with blanks between; empty when none are.
    QString caps() const
    {
        auto *view = find<KeyboardShortcutView>(u"shortcut"_s);
        if (!view->isVisible())
            return {};
        view->layout()->activate();
        QList<KeyCap *> all = view->findChildren<KeyCap *>();
        std::sort(all.begin(), all.end(), [](KeyCap *a, KeyCap *b) { return a->x() < b->x(); });
        QStringList texts;
        for (const KeyCap *cap : all)
            texts << cap->text();
        return texts.join(u' ');
    }
    bool isHighlighted() const
    {
        return find<KeyboardShortcutView>(u"shortcut"_s)->isHighlighted();
    }
    bool isShown(const QString &name) const { return find<QWidget>(name)->isVisible(); }

    QLineEdit *field;
    ShortcutsSettingsContent *page;
    int shortcutsFired = 0;
};

} // namespace

class ShortcutsSettingsContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void textsAreAllThere();
    void currentShortcutIsShown();
    void pageFollowsTheDraft();
    void recordingWaitsForKeys();
    void keyAloneChangesNothingAndReachesNoField();
    void combinationIsRecorded();
    void optionWithALetterRecordsThePlainLetter();
    void layoutDecidesWhatTheKeyTypes();
    void modifiersAloneRecordNothing();
    void eachCombinationReplacesTheOneBefore();
    void keyHeldDownRecordsOneShortcut();
    void everyKeyPressIsSwallowed_data();
    void everyKeyPressIsSwallowed();
    void otherWindowsOfTheApplicationGetNoKeysEither();
    void applyIsDisabledUntilSomethingIsCaptured();
    void applyChangesTheDraftAndEndsRecording();
    void cancelChangesNothing();
    void recordingBeginsAnewEachTime();
    void keysWorkAgainAfterwards_data();
    void keysWorkAgainAfterwards();
    void focusStaysWithTheButtons();
    void recordingIsStartedByTheKeyboardToo();
    void suggestionIsTaken_data();
    void suggestionIsTaken();
    void suggestionWhileRecordingIsTakenAndRecordingGoesOn();
    void hidingThePageEndsRecording();
    void destroyingThePageEndsSwallowing();
    void renderingEditsNothing();
    void tabKeyGoesThroughThePageToTheFooter();
    void settingsWindowIsNotDrivenByKeysWhileRecording();
    void tabThatIsShownAgainIsNotRecording();
    void closingTheWindowEndsRecording();
    void savingTakesTheRecordedShortcut();

private:
    Shortcut shortcut() const { return m_draft->settings().uploadClipboardShortcut; }

    std::unique_ptr<SettingsDraft> m_draft;
    std::unique_ptr<FakeKeyboardLayout> m_layout;
    std::unique_ptr<QSignalSpy> m_changes;
    std::unique_ptr<Window> m_window;
};

void ShortcutsSettingsContentTest::init()
{
    TestSurroundings::failOnWarnings();
    m_draft = std::make_unique<SettingsDraft>();
    m_layout = std::make_unique<FakeKeyboardLayout>();
    m_changes = std::make_unique<QSignalSpy>(m_draft.get(), &SettingsDraft::changed);
    m_window = std::make_unique<Window>(*m_draft, *m_layout);
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_window->field->setFocus();
}

void ShortcutsSettingsContentTest::cleanup()
{
    m_window.reset();
    m_changes.reset();
    m_draft.reset();
}

void ShortcutsSettingsContentTest::textsAreAllThere()
{
    m_window->press(u"record"_s);
    QStringList texts;
    for (const QLabel *label : m_window->page->findChildren<QLabel *>()) {
        if (!qobject_cast<const KeyCap *>(label))
            texts << label->text();
    }
    texts.sort();
    QStringList expected = {u"Upload Shortcut"_s,
                            u"Trigger upload from clipboard anywhere in macOS"_s,
                            u"New"_s,
                            u"Press keys..."_s,
                            u"Press your desired key combination"_s,
                            u"Quick Select"_s,
                            u"Tips"_s,
                            u"Include at least one modifier key"_s,
                            u"Avoid system shortcuts (⌘Q, ⌘W)"_s,
                            u"Enable Accessibility in System Settings"_s};
    expected.sort();
    QCOMPARE(texts, expected);
    QCOMPARE(m_window->button(u"record"_s)->text(), u"Record"_s);
    QCOMPARE(m_window->button(u"cancel"_s)->text(), u"Cancel"_s);
    QCOMPARE(m_window->button(u"apply"_s)->text(), u"Apply"_s);
}

void ShortcutsSettingsContentTest::currentShortcutIsShown()
{
    QCOMPARE(m_window->caption(), u"Current"_s);
    QCOMPARE(m_window->caps(), u"⇧ ⌘ U"_s);
    QVERIFY(!m_window->isHighlighted());
    QVERIFY(m_window->isShown(u"record"_s));
    for (const QString &name :
         {u"cancel"_s, u"apply"_s, u"shortcutPlaceholder"_s, u"recordingInformation"_s})
        QVERIFY2(!m_window->isShown(name), qPrintable(name));
}

void ShortcutsSettingsContentTest::pageFollowsTheDraft()
{
    m_draft->edit([](UploadSettings &settings) {
        settings.uploadClipboardShortcut = {u"j"_s, {KeyModifier::option}};
    });
    QCOMPARE(m_window->caps(), u"⌥ J"_s);
}

void ShortcutsSettingsContentTest::recordingWaitsForKeys()
{
    m_window->press(u"record"_s);
    QCOMPARE(m_window->caption(), u"New"_s);
    QCOMPARE(m_window->caps(), QString());
    QVERIFY(!m_window->isShown(u"record"_s));
    for (const QString &name :
         {u"cancel"_s, u"apply"_s, u"shortcutPlaceholder"_s, u"recordingInformation"_s})
        QVERIFY2(m_window->isShown(name), qPrintable(name));
}

void ShortcutsSettingsContentTest::keyAloneChangesNothingAndReachesNoField()
{
    m_window->type(Qt::Key_A);
    QCOMPARE(m_window->field->text(), u"a"_s);
    m_window->press(u"record"_s);
    m_window->field->setFocus();
    m_window->type(Qt::Key_B);
    QCOMPARE(m_window->field->text(), u"a"_s);
    QVERIFY(m_window->isShown(u"shortcutPlaceholder"_s));
    QVERIFY(!m_window->button(u"apply"_s)->isEnabled());
    QCOMPARE(m_changes->size(), 0);
}

void ShortcutsSettingsContentTest::combinationIsRecorded()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    QCOMPARE(m_window->caps(), u"⇧ ⌘ K"_s);
    QVERIFY(m_window->isHighlighted());
    QVERIFY(!m_window->isShown(u"shortcutPlaceholder"_s));
    QCOMPARE(m_window->caption(), u"New"_s);
    QVERIFY(m_window->isShown(u"recordingInformation"_s));
    QCOMPARE(m_changes->size(), 0);
    m_window->press(u"apply"_s);
    QCOMPARE(shortcut(), Shortcut({u"k"_s, {KeyModifier::command, KeyModifier::shift}}));
}

void ShortcutsSettingsContentTest::optionWithALetterRecordsThePlainLetter()
{
    m_window->press(u"record"_s);
    QTest::sendKeyEvent(QTest::Click, m_window->windowHandle(), Qt::Key_E, u"€"_s, Qt::AltModifier);
    m_window->press(u"apply"_s);
    QCOMPARE(shortcut(), Shortcut({u"e"_s, {KeyModifier::option}}));
}

void ShortcutsSettingsContentTest::layoutDecidesWhatTheKeyTypes()
{
    m_layout->isThere = true;
    m_layout->characters = {{Qt::Key_At, u"2"_s}};
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_At, Qt::ShiftModifier);
    QCOMPARE(m_window->caps(), u"⇧ 2"_s);
}

void ShortcutsSettingsContentTest::modifiersAloneRecordNothing()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_Meta);
    m_window->type(Qt::Key_Shift, Qt::MetaModifier);
    m_window->type(Qt::Key_Control, kCommandShift);
    QVERIFY(m_window->isShown(u"shortcutPlaceholder"_s));
    QVERIFY(!m_window->button(u"apply"_s)->isEnabled());
}

void ShortcutsSettingsContentTest::eachCombinationReplacesTheOneBefore()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    m_window->type(Qt::Key_J, Qt::ControlModifier);
    QCOMPARE(m_window->caps(), u"⌃ J"_s);
    m_window->type(Qt::Key_A);
    QCOMPARE(m_window->caps(), u"⌃ J"_s);
    m_window->press(u"apply"_s);
    QCOMPARE(shortcut(), Shortcut({u"j"_s, {KeyModifier::control}}));
}

void ShortcutsSettingsContentTest::keyHeldDownRecordsOneShortcut()
{
    m_window->press(u"record"_s);
    m_window->field->setFocus();
    for (int i = 0; i < 3; ++i) {
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_K, Qt::AltModifier, u"k"_s, true);
        QCoreApplication::sendEvent(m_window->field, &repeat);
    }
    QCOMPARE(m_window->caps(), u"⌥ K"_s);
    QCOMPARE(m_window->field->text(), QString());
}

void ShortcutsSettingsContentTest::everyKeyPressIsSwallowed_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    const auto row = [](const char *name, int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::newRow(name) << key << modifiers;
    };
    row("Tab", Qt::Key_Tab);
    row("Shift+Tab", Qt::Key_Backtab, Qt::ShiftModifier);
    row("Ctrl+Tab", Qt::Key_Tab, Qt::ControlModifier);
    row("Escape", Qt::Key_Escape);
    row("Return", Qt::Key_Return);
    row("Enter", Qt::Key_Enter, Qt::KeypadModifier);
    row("Space", Qt::Key_Space);
    row("Left", Qt::Key_Left);
    row("Down", Qt::Key_Down);
    row("Page Down", Qt::Key_PageDown);
    row("Ctrl+W", Qt::Key_W, Qt::ControlModifier);
    row("Ctrl+V", Qt::Key_V, Qt::ControlModifier);
    row("Alt+F4", Qt::Key_F4, Qt::AltModifier);
    row("F1", Qt::Key_F1);
    row("Menu", Qt::Key_Menu);
    row("Backspace", Qt::Key_Backspace);
    row("volume", Qt::Key_VolumeUp);
}

void ShortcutsSettingsContentTest::everyKeyPressIsSwallowed()
{
    QFETCH(const int, key);
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    m_window->field->setText(u"text"_s);
    m_window->field->setCursorPosition(2);
    m_window->press(u"record"_s);
    for (QWidget *focus :
         {static_cast<QWidget *>(m_window->field), m_window->find<QWidget>(u"cancel"_s)}) {
        focus->setFocus();
        m_window->type(key, modifiers);
        QCOMPARE(QApplication::focusWidget(), focus);
    }
    QCOMPARE(m_window->field->text(), u"text"_s);
    QCOMPARE(m_window->field->cursorPosition(), 2);
    QCOMPARE(m_window->shortcutsFired, 0);
    QVERIFY(m_window->isVisible());
    QCOMPARE(m_window->caption(), u"New"_s); // No button was pressed: it goes on recording.
    QCOMPARE(m_changes->size(), 0);
}

void ShortcutsSettingsContentTest::otherWindowsOfTheApplicationGetNoKeysEither()
{
    m_window->press(u"record"_s);
    QLineEdit other;
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QTest::keyClick(other.windowHandle(), Qt::Key_A);
    QCOMPARE(other.text(), QString());
    QTest::keyClick(other.windowHandle(), Qt::Key_K, Qt::AltModifier);
    QCOMPARE(m_window->caps(), u"⌥ K"_s);
}

void ShortcutsSettingsContentTest::applyIsDisabledUntilSomethingIsCaptured()
{
    m_window->press(u"record"_s);
    QVERIFY(!m_window->button(u"apply"_s)->isEnabled());
    m_window->press(u"apply"_s);
    QCOMPARE(m_window->caption(), u"New"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    QVERIFY(m_window->button(u"apply"_s)->isEnabled());
}

void ShortcutsSettingsContentTest::applyChangesTheDraftAndEndsRecording()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_2, Qt::ControlModifier | Qt::AltModifier);
    m_window->press(u"apply"_s);
    QCOMPARE(shortcut(), Shortcut({u"2"_s, {KeyModifier::option, KeyModifier::control}}));
    QCOMPARE(m_changes->size(), 1);
    QCOMPARE(m_window->caption(), u"Current"_s);
    QCOMPARE(m_window->caps(), u"⌃ ⌥ 2"_s);
    QVERIFY(!m_window->isHighlighted());
    QVERIFY(!m_window->isShown(u"recordingInformation"_s));
}

void ShortcutsSettingsContentTest::cancelChangesNothing()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    m_window->press(u"cancel"_s);
    QCOMPARE(m_changes->size(), 0);
    QCOMPARE(m_window->caption(), u"Current"_s);
    QCOMPARE(m_window->caps(), u"⇧ ⌘ U"_s);
}

void ShortcutsSettingsContentTest::recordingBeginsAnewEachTime()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    m_window->press(u"cancel"_s);
    m_window->press(u"record"_s);
    QVERIFY(m_window->isShown(u"shortcutPlaceholder"_s));
    QVERIFY(!m_window->button(u"apply"_s)->isEnabled());
}

void ShortcutsSettingsContentTest::keysWorkAgainAfterwards_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("Apply") << u"apply"_s;
    QTest::newRow("Cancel") << u"cancel"_s;
}

void ShortcutsSettingsContentTest::keysWorkAgainAfterwards()
{
    QFETCH(const QString, button);
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    m_window->press(button);
    m_window->field->setFocus();
    m_window->type(Qt::Key_A);
    QCOMPARE(m_window->field->text(), u"a"_s);
    m_window->type(Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(m_window->shortcutsFired, 1);
}

void ShortcutsSettingsContentTest::focusStaysWithTheButtons()
{
    m_window->button(u"record"_s)->setFocus();
    m_window->press(u"record"_s);
    QVERIFY(m_window->button(u"cancel"_s)->hasFocus());
    m_window->press(u"cancel"_s);
    QVERIFY(m_window->button(u"record"_s)->hasFocus());
}

void ShortcutsSettingsContentTest::recordingIsStartedByTheKeyboardToo()
{
    m_window->button(u"record"_s)->setFocus();
    m_window->type(Qt::Key_Space);
    QCOMPARE(m_window->caption(), u"New"_s);
    // The same key let go and pressed again is a key like any other.
    m_window->type(Qt::Key_Space);
    QCOMPARE(m_window->caption(), u"New"_s);
}

void ShortcutsSettingsContentTest::suggestionIsTaken_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<KeyModifier>("first");
    QTest::addColumn<KeyModifier>("second");
    QTest::addColumn<QString>("caps");
    QTest::newRow("command, shift")
        << u"⌘⇧U"_s << KeyModifier::command << KeyModifier::shift << u"⇧ ⌘ U"_s;
    QTest::newRow("command, option")
        << u"⌘⌥U"_s << KeyModifier::command << KeyModifier::option << u"⌘ ⌥ U"_s;
    QTest::newRow("control, shift")
        << u"⌃⇧U"_s << KeyModifier::control << KeyModifier::shift << u"⇧ ⌃ U"_s;
}

void ShortcutsSettingsContentTest::suggestionIsTaken()
{
    QFETCH(const QString, keys);
    QFETCH(const KeyModifier, first);
    QFETCH(const KeyModifier, second);
    QFETCH(const QString, caps);
    m_draft->edit([](UploadSettings &settings) {
        settings.uploadClipboardShortcut = {u"x"_s, {KeyModifier::control}};
    });
    const QString name = u"suggestion."_s + keys;
    QCOMPARE(m_window->find<QAbstractButton>(name)->text(), keys);
    m_window->press(name);
    QCOMPARE(shortcut(), Shortcut({u"u"_s, {first, second}}));
    QCOMPARE(m_window->caps(), caps);
    QCOMPARE(m_window->caption(), u"Current"_s);
}

void ShortcutsSettingsContentTest::suggestionWhileRecordingIsTakenAndRecordingGoesOn()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    m_window->press(u"suggestion.⌘⌥U"_s);
    QCOMPARE(shortcut(), Shortcut({u"u"_s, {KeyModifier::command, KeyModifier::option}}));
    QCOMPARE(m_window->caption(), u"New"_s);
    QCOMPARE(m_window->caps(), u"⇧ ⌘ K"_s);
    QVERIFY(m_window->isHighlighted());
    m_window->press(u"apply"_s);
    QCOMPARE(shortcut(), Shortcut({u"k"_s, {KeyModifier::command, KeyModifier::shift}}));
}

void ShortcutsSettingsContentTest::hidingThePageEndsRecording()
{
    m_window->press(u"record"_s);
    m_window->type(Qt::Key_K, kCommandShift);
    m_window->page->hide();
    m_window->field->setFocus();
    m_window->type(Qt::Key_A);
    QCOMPARE(m_window->field->text(), u"a"_s);
    m_window->page->show();
    QCOMPARE(m_window->caption(), u"Current"_s);
}

void ShortcutsSettingsContentTest::destroyingThePageEndsSwallowing()
{
    m_window->press(u"record"_s);
    delete m_window->page;
    m_window->field->setFocus();
    m_window->type(Qt::Key_A);
    QCOMPARE(m_window->field->text(), u"a"_s);
}

void ShortcutsSettingsContentTest::renderingEditsNothing()
{
    UploadSettings saved;
    saved.uploadClipboardShortcut = {u"J"_s, {KeyModifier::shift, KeyModifier::shift}};
    m_draft->begin(saved);
    m_draft->begin(saved);
    QCOMPARE(shortcut(), saved.uploadClipboardShortcut);
    QCOMPARE(m_window->caps(), u"⇧ ⇧ J"_s);
}

void ShortcutsSettingsContentTest::tabKeyGoesThroughThePageToTheFooter()
{
    SettingsWindow window;
    window.open();
    window.click(u"tab.shortcuts"_s);
    window.find(u"tab.shortcuts"_s)->setFocus();
    for (const QString &name :
         {u"record"_s, u"suggestion.⌘⇧U"_s, u"suggestion.⌘⌥U"_s, u"suggestion.⌃⇧U"_s, u"save"_s}) {
        QTest::keyClick(window.view->windowHandle(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), window.find(name));
    }
}

void ShortcutsSettingsContentTest::settingsWindowIsNotDrivenByKeysWhileRecording()
{
    SettingsWindow window;
    window.open();
    window.click(u"tab.shortcuts"_s);
    window.click(u"record"_s);
    QWindow *const handle = window.view->windowHandle();
    QTest::keyClick(handle, Qt::Key_Escape);
    QTest::keyClick(handle, Qt::Key_W, Qt::ControlModifier);
    QTest::keyClick(handle, Qt::Key_Tab, Qt::ControlModifier);
    QTest::keyClick(handle, Qt::Key_PageDown, Qt::ControlModifier);
    QVERIFY(window.view->isVisible());
    QCOMPARE(window.view->selectedTab(), 2);
    window.click(u"cancel"_s);
    QTest::keyClick(handle, Qt::Key_Escape);
    QVERIFY(!window.view->isVisible());
}

void ShortcutsSettingsContentTest::tabThatIsShownAgainIsNotRecording()
{
    SettingsWindow window;
    window.open();
    window.click(u"tab.shortcuts"_s);
    window.click(u"record"_s);
    QTest::keyClick(window.view->windowHandle(), Qt::Key_K, kCommandShift);
    window.click(u"tab.server"_s);
    window.find(u"hostname"_s)->setFocus();
    QTest::keyClick(window.view->windowHandle(), Qt::Key_A);
    QCOMPARE(window.find<QLineEdit>(u"hostname"_s)->text(), u"a"_s);
    window.click(u"tab.shortcuts"_s);
    QCOMPARE(window.find<QLabel>(u"shortcutCaption"_s)->text(), u"Current"_s);
    QVERIFY(window.find(u"record"_s)->isVisible());
}

void ShortcutsSettingsContentTest::closingTheWindowEndsRecording()
{
    SettingsWindow window;
    window.open();
    window.click(u"tab.shortcuts"_s);
    window.click(u"record"_s);
    window.view->close();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_window->type(Qt::Key_A);
    QCOMPARE(m_window->field->text(), u"a"_s);
    window.view.reset();
    m_window->type(Qt::Key_B);
    QCOMPARE(m_window->field->text(), u"ab"_s);
}

void ShortcutsSettingsContentTest::savingTakesTheRecordedShortcut()
{
    SettingsWindow window;
    window.open();
    window.click(u"tab.shortcuts"_s);
    window.click(u"record"_s);
    QTest::keyClick(window.view->windowHandle(), Qt::Key_K, kCommandShift);
    window.click(u"apply"_s);
    QCOMPARE(window.state->settings().uploadClipboardShortcut, Shortcut());
    window.click(u"save"_s);
    QCOMPARE(window.state->settings().uploadClipboardShortcut,
             Shortcut({u"k"_s, {KeyModifier::command, KeyModifier::shift}}));
}

TESSERY_TEST_MAIN(QApplication, ShortcutsSettingsContentTest)

#include "ShortcutsSettingsContentTest.moc"
