#include "platform/linux/x11/X11EventTap.h"

#include "platform/linux/HardwareKeys.h"
#include "support/CapturedOutput.h"
#include "support/PrivateDisplay.h"
#include "support/TestMain.h"
#include "support/XClients.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <ctime>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr std::int64_t kKeyU = 32;
constexpr KeyModifierFlags kCommandShift{.command = true, .shift = true};
constexpr KeyPress kWanted{.keyCode = kKeyU, .modifiers = kCommandShift};
// Super is Mod4; Caps Lock and Num Lock are on or off.
const QList<int> kWantedStates{0x41, 0x43, 0x51, 0x53};
const QList<xcb_keycode_t> kHeld{XKey::kLeftSuper, XKey::kLeftShift};

QList<xcb_keycode_t> leftKeys(const KeyModifierFlags &flags)
{
    QList<xcb_keycode_t> keys;
    for (const auto &[isHeld, key] :
         {std::pair{flags.command, XKey::kLeftSuper}, std::pair{flags.shift, XKey::kLeftShift},
          std::pair{flags.option, XKey::kLeftAlt}, std::pair{flags.control, XKey::kLeftControl}}) {
        if (isHeld)
            keys << key;
    }
    return keys;
}

KeyModifierFlags subset(unsigned bits)
{
    return {.command = (bits & 1U) != 0,
            .shift = (bits & 2U) != 0,
            .option = (bits & 4U) != 0,
            .control = (bits & 8U) != 0};
}

} // namespace

class X11EventTapTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void everyKeyIsHeard_data();
    void everyKeyIsHeard();
    void onlyTheWantedModifiersAreHeard_data();
    void onlyTheWantedModifiersAreHeard();
    void rightHandModifiersAreTheSame();
    void locksDoNotMatter();
    void frontWindowSeesNeitherPressNorRelease();
    void otherKeysReachTheFrontWindow();
    void heldKeyIsHeardAgainAndAgain();
    void everyScreenIsHeard();
    void exactlyFourStatesAreGrabbed();
    void newTapCanFollowAtOnce();
    void secondTapIsRefused();
    void refusalGivesEverythingBack_data();
    void refusalGivesEverythingBack();
    void absentPressGrabsNothing();
    void keyThatNoShortcutHasGrabsNothing();
    void handlerMayDestroyTheTap();
    void withoutADisplayThereIsNone();
    void lostDisplayCostsNothing();

private:
    void makeTap(const std::optional<KeyPress> &wanted);

    std::optional<PrivateDisplay> m_display;
    std::unique_ptr<EventTap> m_tap;
    QList<KeyPress> m_heard;
};

void X11EventTapTest::init()
{
    TestSurroundings::failOnWarnings();
    if (!m_display)
        m_display.emplace();
    m_heard.clear();
}

void X11EventTapTest::cleanup()
{
    m_tap.reset();
    // A failed test may have left keys down.
    if (QTest::currentTestFailed())
        m_display.reset();
}

void X11EventTapTest::makeTap(const std::optional<KeyPress> &wanted)
{
    m_tap.reset();
    m_tap = X11EventTap::make(wanted, [this](const KeyPress &press) {
        m_heard << press;
        return true;
    });
}

void X11EventTapTest::everyKeyIsHeard_data()
{
    QTest::addColumn<qint64>("keyCode");
    for (qint64 keyCode = 0; keyCode < 48; ++keyCode) {
        if (HardwareKeys::position(keyCode))
            QTest::addRow("%lld", keyCode) << keyCode;
    }
}

void X11EventTapTest::everyKeyIsHeard()
{
    QFETCH(const qint64, keyCode);
    const KeyPress wanted{.keyCode = keyCode, .modifiers = {.control = true}};
    makeTap(wanted);
    QVERIFY(m_tap);
    XKeyboard keyboard;
    for (xcb_keycode_t key = XKey::kDigit1; key <= XKey::kSlash; ++key)
        keyboard.tap(key, {XKey::kLeftControl});
    QTRY_COMPARE(m_heard, QList{wanted});
}

void X11EventTapTest::onlyTheWantedModifiersAreHeard_data()
{
    QTest::addColumn<unsigned>("wanted");
    for (unsigned wanted = 0; wanted < 16; ++wanted)
        QTest::addRow("%u", wanted) << wanted;
}

void X11EventTapTest::onlyTheWantedModifiersAreHeard()
{
    QFETCH(const unsigned, wanted);
    const KeyPress press{.keyCode = kKeyU, .modifiers = subset(wanted)};
    makeTap(press);
    QVERIFY(m_tap);
    XWindow window;
    XKeyboard keyboard;
    for (unsigned held = 0; held < 16; ++held)
        keyboard.tap(XKey::kU, leftKeys(subset(held)));
    QTRY_COMPARE(window.keys.count({.isPress = true, .key = XKey::kU}), 15);
    QTRY_COMPARE(m_heard, QList{press});
}

void X11EventTapTest::rightHandModifiersAreTheSame()
{
    const KeyPress all{.keyCode = kKeyU, .modifiers = subset(15)};
    makeTap(all);
    XKeyboard keyboard;
    keyboard.tap(XKey::kU,
                 {XKey::kRightSuper, XKey::kRightShift, XKey::kRightAlt, XKey::kRightControl});
    QTRY_COMPARE(m_heard, QList{all});
    keyboard.tap(
        XKey::kU,
        leftKeys(all.modifiers)
            + QList{XKey::kRightSuper, XKey::kRightShift, XKey::kRightAlt, XKey::kRightControl});
    QTRY_COMPARE(m_heard, (QList{all, all}));
}

void X11EventTapTest::locksDoNotMatter()
{
    makeTap(kWanted);
    XWindow window;
    XKeyboard keyboard;
    int count = 0;
    const QList<std::pair<xcb_keycode_t, int>> turns{
        {0, 0}, // No lock is on yet.
        {XKey::kCapsLock, XCB_MOD_MASK_LOCK},
        {XKey::kNumLock, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2},
        {XKey::kCapsLock, XCB_MOD_MASK_2},
    };
    for (const auto &[lock, state] : turns) {
        ++count;
        if (lock)
            keyboard.tap(lock);
        keyboard.tap(XKey::kSpace);
        QTRY_COMPARE(window.keys.count({.isPress = false, .key = XKey::kSpace}), count);
        QCOMPARE(int{window.lastState}, state);
        keyboard.tap(XKey::kU, kHeld);
        QTRY_COMPARE(m_heard, QList<KeyPress>(count, kWanted));
    }
    keyboard.tap(XKey::kNumLock);
}

void X11EventTapTest::frontWindowSeesNeitherPressNorRelease()
{
    makeTap(kWanted);
    XWindow window;
    XKeyboard keyboard;
    keyboard.tap(XKey::kU, kHeld);
    keyboard.tap(XKey::kSpace);
    QTRY_VERIFY(window.keys.contains({.isPress = false, .key = XKey::kSpace}));
    QCOMPARE(m_heard, QList{kWanted});
    QVERIFY(!window.keys.contains({.isPress = true, .key = XKey::kU}));
    QVERIFY(!window.keys.contains({.isPress = false, .key = XKey::kU}));

    m_tap.reset();
    keyboard.tap(XKey::kU, kHeld);
    QTRY_VERIFY(window.keys.contains({.isPress = false, .key = XKey::kU}));
    QVERIFY(window.keys.contains({.isPress = true, .key = XKey::kU}));
    QCOMPARE(m_heard, QList{kWanted});
}

void X11EventTapTest::otherKeysReachTheFrontWindow()
{
    makeTap(kWanted);
    XWindow window;
    XKeyboard keyboard;
    QList<XWindow::Key> expected;
    for (const xcb_keycode_t key : {XKey::kDigit1, XKey::kQ, XKey::kA, XKey::kSlash, XKey::kU}) {
        keyboard.tap(key);
        expected << XWindow::Key{.isPress = true, .key = key}
                 << XWindow::Key{.isPress = false, .key = key};
    }
    QTRY_COMPARE(window.keys, expected);
    QVERIFY(m_heard.isEmpty());
}

void X11EventTapTest::heldKeyIsHeardAgainAndAgain()
{
    makeTap(kWanted);
    XWindow window;
    XKeyboard keyboard;
    for (const xcb_keycode_t key : kHeld)
        keyboard.press(key);
    keyboard.press(XKey::kU);
    QTRY_VERIFY(m_heard.size() >= 10);
    keyboard.release(XKey::kU);
    keyboard.tap(XKey::kSpace);
    QTRY_VERIFY(window.keys.contains({.isPress = false, .key = XKey::kSpace}));
    QCOMPARE(m_heard, QList<KeyPress>(m_heard.size(), kWanted));
    QCOMPARE(window.keys.count({.isPress = true, .key = XKey::kU}), 0);
    QCOMPARE(window.keys.count({.isPress = false, .key = XKey::kU}), 0);
}

void X11EventTapTest::everyScreenIsHeard()
{
    m_display.reset();
    m_display.emplace(
        QStringList{u"-screen"_s, u"0"_s, u"640x480x24"_s, u"-screen"_s, u"1"_s, u"640x480x24"_s});
    makeTap(kWanted);
    QCOMPARE(takenStates(XKey::kU, 0), kWantedStates);
    QCOMPARE(takenStates(XKey::kU, 1), kWantedStates);
    XKeyboard keyboard;
    for (const std::size_t screen : {0U, 1U}) {
        const XWindow window(screen);
        keyboard.tap(XKey::kU, kHeld);
        QTRY_COMPARE(m_heard, QList<KeyPress>(static_cast<qsizetype>(screen) + 1, kWanted));
        QVERIFY(!window.keys.contains({.isPress = true, .key = XKey::kU}));
    }
    m_display.reset();
}

void X11EventTapTest::exactlyFourStatesAreGrabbed()
{
    makeTap(kWanted);
    QCOMPARE(takenStates(XKey::kU), kWantedStates);
    QCOMPARE(takenStates(XKey::kA), QList<int>());
    m_tap.reset();
    QCOMPARE(takenStates(XKey::kU), QList<int>());
}

void X11EventTapTest::newTapCanFollowAtOnce()
{
    for (int turn = 0; turn < 200; ++turn) {
        makeTap(kWanted);
        QVERIFY(m_tap);
    }
    QCOMPARE(takenStates(XKey::kU), kWantedStates);
    XKeyboard keyboard;
    keyboard.tap(XKey::kU, kHeld);
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(m_heard, (QList{kWanted, kWanted}));
}

void X11EventTapTest::secondTapIsRefused()
{
    makeTap(kWanted);
    const auto second = X11EventTap::make(kWanted, [](const KeyPress &) { return true; });
    QVERIFY(!second);
    XKeyboard keyboard;
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(m_heard, QList{kWanted});
}

void X11EventTapTest::refusalGivesEverythingBack_data()
{
    QTest::addColumn<int>("state");
    for (const int state : kWantedStates)
        QTest::addRow("%#x", static_cast<unsigned>(state)) << state;
    QTest::newRow("any") << int{XCB_MOD_MASK_ANY};
}

void X11EventTapTest::refusalGivesEverythingBack()
{
    QFETCH(const int, state);
    {
        XGrabber other;
        QVERIFY(other.grab(XKey::kU, static_cast<std::uint16_t>(state)));
        const CapturedOutput log;
        makeTap(kWanted);
        QVERIFY(!m_tap);
        QCOMPARE(log.lines(),
                 QStringList{u"⚠️ Global hotkey: another program has grabbed the key"_s});
        if (state != XCB_MOD_MASK_ANY)
            QCOMPARE(takenStates(XKey::kU), QList{state});
    }
    makeTap(kWanted);
    QVERIFY(m_tap);
}

void X11EventTapTest::absentPressGrabsNothing()
{
    makeTap(std::nullopt);
    QVERIFY(m_tap);
    XGrabber other;
    QVERIFY(other.grab(XCB_GRAB_ANY, XCB_MOD_MASK_ANY));
}

void X11EventTapTest::keyThatNoShortcutHasGrabsNothing()
{
    makeTap(KeyPress{.keyCode = 36, .modifiers = kCommandShift});
    QVERIFY(m_tap);
    XGrabber other;
    QVERIFY(other.grab(XCB_GRAB_ANY, XCB_MOD_MASK_ANY));
}

void X11EventTapTest::handlerMayDestroyTheTap()
{
    int count = 0;
    m_tap = X11EventTap::make(kWanted, [this, &count](const KeyPress &) {
        m_tap.reset();
        ++count;
        return true;
    });
    XKeyboard keyboard;
    keyboard.tap(XKey::kU, kHeld);
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(count, 1);
    QCOMPARE(takenStates(XKey::kU), QList<int>());
}

void X11EventTapTest::withoutADisplayThereIsNone()
{
    m_display.reset();
    for (const std::optional<KeyPress> &wanted :
         {std::optional(kWanted), std::optional<KeyPress>()}) {
        makeTap(wanted);
        QVERIFY(!m_tap);
    }
}

void X11EventTapTest::lostDisplayCostsNothing()
{
    makeTap(kWanted);
    QVERIFY(m_tap);
    m_display.reset();
    // An event loop at rest; looking at the closed connection again and again would take all of the
    // time.
    QTimer timer;
    QSignalSpy end(&timer, &QTimer::timeout);
    timer.start(500);
    const std::clock_t before = std::clock();
    QVERIFY(end.wait());
    QVERIFY(std::clock() - before < CLOCKS_PER_SEC / 10);
    QVERIFY(m_heard.isEmpty());
}

TESSERY_TEST_MAIN(QCoreApplication, X11EventTapTest)
#include "X11EventTapTest.moc"
