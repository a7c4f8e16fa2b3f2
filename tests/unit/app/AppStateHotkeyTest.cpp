#include "AppStateCase.h"
#include "support/CapturedOutput.h"

namespace {

using KeyModifier = UploadSettings::KeyboardShortcut::KeyModifier;

const KeyPress kDefaultPress{32, {.command = true, .shift = true}};
const QString kTriggered = u"📋 Upload clipboard triggered"_s;

} // namespace

class AppStateHotkeyTest : public AppStateCase {
    Q_OBJECT

private Q_SLOTS:
    void startRegistersTheShortcutOfTheSettings()
    {
        CapturedOutput output;
        makeState();
        QVERIFY(output.lines().contains(u"✅ Global hotkey registered: ⌘⇧U"_s));
        QCOMPARE(taps().installed, 1);
        QCOMPARE(taps().asked.back(), kDefaultPress);
    }

    void permissionToNotifyIsAskedBeforeTheShortcutIsRegistered()
    {
        CapturedOutput output;
        makeState();
        const QStringList lines = output.lines();
        QVERIFY(lines.indexOf(u"✅ Notification permission granted"_s) >= 0);
        QVERIFY(lines.indexOf(u"✅ Notification permission granted"_s)
                < lines.indexOf(u"✅ Global hotkey registered: ⌘⇧U"_s));
    }

    void refusalIsLoggedAndTheRestWorks()
    {
        taps().isRefused = true;
        CapturedOutput output;
        makeState(validSettings());
        QVERIFY(output.lines().contains(
            u"❌ Failed to create event tap. Grant Accessibility permission in System Settings."_s));
        QVERIFY(!output.lines().join(u'\n').contains(u"registered"_s));
        m_platform->fakePasteboard->text = u"x"_s;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: clipboard text"_s);
    }

    void nothingIsSaidBeforeTheDesktopHasDecided()
    {
        taps().isSlow = true;
        CapturedOutput output;
        makeState();
        QVERIFY(!output.lines().join(u'\n').contains(u"hotkey"_s));
        taps().decide(true);
        QCOMPARE(output.lines().count(u"✅ Global hotkey registered: ⌘⇧U"_s), 1);
        QCOMPARE(taps().press(kDefaultPress), true);
    }

    void lateRefusalIsLoggedAndLeavesNoTap()
    {
        taps().isSlow = true;
        makeState();
        CapturedOutput output;
        taps().decide(false);
        QCOMPARE(
            output.lines(),
            QStringList{
                u"❌ Failed to create event tap. Grant Accessibility permission in System Settings."_s});
        QCOMPARE(taps().installed, 0);
    }

    void lateDecisionNamesTheShortcutThatItIsAbout()
    {
        taps().isSlow = true;
        makeState();
        UploadSettings settings;
        settings.uploadClipboardShortcut = {u"s"_s, {KeyModifier::control}};
        m_state->setSettings(settings); // Stored and registered a moment later.
        CapturedOutput output;
        taps().decide(true);
        QCOMPARE(output.lines(), QStringList{u"✅ Global hotkey registered: ⌘⇧U"_s});
    }

    void nextSetupTriesAgainAfterARefusal()
    {
        taps().isRefused = true;
        makeState();
        taps().isRefused = false;
        CapturedOutput output;
        m_state->setupGlobalHotkey();
        QCOMPARE(output.lines(), QStringList{u"✅ Global hotkey registered: ⌘⇧U"_s});
        QCOMPARE(taps().installed, 1);
    }

    void refusalLeavesNoTapOfTheFormerShortcut()
    {
        makeState();
        taps().isRefused = true;
        m_state->setupGlobalHotkey();
        QCOMPARE(taps().installed, 0);
        QCOMPARE(taps().press(kDefaultPress), false);
    }

    void setupTwiceLeavesOneTapAndNeverHasTwo()
    {
        makeState();
        m_state->setupGlobalHotkey();
        m_state->setupGlobalHotkey();
        QCOMPARE(taps().installed, 1);
        QCOMPARE(taps().living, std::vector<int>({0, 0, 0}));
    }

    void tapGoesWithTheState()
    {
        makeState();
        m_state.reset();
        QCOMPARE(taps().installed, 0);
    }

    void pressStartsTheUploadOnceTheTapHasItsAnswer()
    {
        makeState();
        CapturedOutput output;
        QCOMPARE(taps().press(kDefaultPress), true);
        QCOMPARE(output.lines(), QStringList());
        QTRY_VERIFY(output.lines().contains(kTriggered));
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(output.lines().count(kTriggered), 1);
    }

    void everyRepeatOfAHeldKeyStartsAnUpload()
    {
        makeState();
        CapturedOutput output;
        for (int i = 0; i < 3; ++i)
            QCOMPARE(taps().press(kDefaultPress), true);
        QTRY_COMPARE(output.lines().count(kTriggered), 3);
    }

    void otherPressPassesOnAndStartsNothing()
    {
        makeState();
        CapturedOutput output;
        QCOMPARE(taps().press({32, {.command = true}}), false);
        QCOMPARE(taps().press({31, {.command = true, .shift = true}}), false);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(output.lines(), QStringList());
    }

    void changedShortcutIsUsedEvenBeforeItIsRegistered()
    {
        makeState();
        UploadSettings settings;
        settings.uploadClipboardShortcut = {u"S"_s, {KeyModifier::control, KeyModifier::option}};
        m_state->setSettings(settings);
        QCOMPARE(taps().press(kDefaultPress), false);
        QCOMPARE(taps().press({1, {.option = true, .control = true}}), true);

        CapturedOutput output;
        m_state->setupGlobalHotkey();
        QCOMPARE(output.lines(), QStringList{u"✅ Global hotkey registered: ⌃⌥S"_s});
        QCOMPARE(taps().asked.back(), (KeyPress{1, {.option = true, .control = true}}));
    }

    void shortcutWhoseKeyIsNotInTheTableIsRegisteredAndNeverFires()
    {
        UploadSettings settings;
        settings.uploadClipboardShortcut = {u" "_s, {KeyModifier::command}};
        makeState(settings);
        CapturedOutput output;
        m_state->setupGlobalHotkey();
        QCOMPARE(output.lines(), QStringList{u"✅ Global hotkey registered: ⌘ "_s});
        QCOMPARE(taps().asked.back(), std::nullopt);
        QCOMPARE(taps().press({49, {.command = true}}), false);
    }

private:
    FakeEventTaps &taps() { return m_platform->fakeEventTaps; }
};

TESSERY_TEST_MAIN(QCoreApplication, AppStateHotkeyTest)
#include "AppStateHotkeyTest.moc"
