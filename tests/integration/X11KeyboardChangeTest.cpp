#include "platform/linux/x11/X11EventTap.h"

#include "support/CapturedOutput.h"
#include "support/PrivateDisplay.h"
#include "support/TestMain.h"
#include "support/XClients.h"

#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr KeyPress kWanted{.keyCode = 32, .modifiers = {.command = true, .shift = true}};
const QList<int> kWantedStates{0x41, 0x43, 0x51, 0x53};
const QList<xcb_keycode_t> kHeld{XKey::kLeftSuper, XKey::kLeftShift};

/// An X display in a window of another one, whose keyboard is therefore a real device to it.
struct NestedDisplay {
    /// The keyboard of the outer display.
    std::unique_ptr<XKeyboard> keyboard = std::make_unique<XKeyboard>();
    /// As large as the outer one, so that the keys go to it.
    PrivateDisplay display{{u"-screen"_s, u"1280x1024"_s}, u"Xephyr"_s};
};

} // namespace

/// The tap while the user changes what the keyboard is.
class X11KeyboardChangeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void keyKeepsItsPlaceInEveryLayout_data();
    void keyKeepsItsPlaceInEveryLayout();
    void keyKeepsItsPlaceInTheSecondLayout_data();
    void keyKeepsItsPlaceInTheSecondLayout();
    void modifierMovedToAnotherKeyIsFollowed_data();
    void modifierMovedToAnotherKeyIsFollowed();
    void modifierWithAnotherBitIsFollowed();
    void modifierWithTwoBitsIsHeardWithEither();
    void numLockWithAnotherBitIsFollowed();
    void changeThatMattersNotKeepsTheGrabs();
    void keysOfAnotherKeyboardAreHeard_data();
    void keysOfAnotherKeyboardAreHeard();
    void keyboardWithOtherBitsIsFollowed();
    void missingModifierIsRefused();
    void sharedBitIsRefused();
    void refusedRenewalIsLoggedAndGivesEverythingBack();

private:
    void makeTap(const KeyPress &wanted);
    void setLayout(const QStringList &arguments);
    void changeMap(const QStringList &expressions);

    std::optional<PrivateDisplay> m_display;
    std::unique_ptr<EventTap> m_tap;
    QList<KeyPress> m_heard;
};

void X11KeyboardChangeTest::init()
{
    TestSurroundings::failOnWarnings();
    m_display.emplace();
    m_heard.clear();
}

void X11KeyboardChangeTest::cleanup()
{
    m_tap.reset();
    m_display.reset();
}

void X11KeyboardChangeTest::makeTap(const KeyPress &wanted)
{
    m_tap = X11EventTap::make(wanted, [this](const KeyPress &press) {
        m_heard << press;
        return true;
    });
}

/// In place of what was set before.
void X11KeyboardChangeTest::setLayout(const QStringList &arguments)
{
    QVERIFY(outputOf(u"setxkbmap"_s, QStringList{u"-option"_s, u""_s} + arguments));
}

void X11KeyboardChangeTest::changeMap(const QStringList &expressions)
{
    QStringList arguments;
    for (const QString &expression : expressions)
        arguments << u"-e"_s << expression;
    QVERIFY(outputOf(u"xmodmap"_s, arguments));
}

void X11KeyboardChangeTest::keyKeepsItsPlaceInEveryLayout_data()
{
    QTest::addColumn<QString>("layout");
    for (const char *layout : {"us", "fr", "de", "ru", "us,de", "de,us", "us,ru", "ru,us"})
        QTest::newRow(layout) << QString::fromLatin1(layout);
}

void X11KeyboardChangeTest::keyKeepsItsPlaceInEveryLayout()
{
    QFETCH(const QString, layout);
    for (const bool isSetBefore : {true, false}) {
        m_heard.clear();
        setLayout({isSetBefore ? layout : u"us"_s});
        makeTap(kWanted);
        setLayout({layout});
        XKeyboard keyboard;
        keyboard.tap(XKey::kU, kHeld);
        QTRY_COMPARE(m_heard, QList{kWanted});
        keyboard.tap(XKey::kU, {XKey::kRightSuper, XKey::kRightShift});
        QTRY_COMPARE(m_heard, (QList{kWanted, kWanted}));
        QCOMPARE(takenStates(XKey::kU), kWantedStates);
        m_tap.reset();
    }
}

void X11KeyboardChangeTest::keyKeepsItsPlaceInTheSecondLayout_data()
{
    QTest::addColumn<QString>("layouts");
    QTest::addColumn<bool>("isToggledBefore");
    for (const char *layouts : {"us,de", "us,ru", "de,us", "ru,us", "us,de,ru"}) {
        QTest::addRow("%s, toggled before", layouts) << QString::fromLatin1(layouts) << true;
        QTest::addRow("%s, toggled later", layouts) << QString::fromLatin1(layouts) << false;
    }
}

void X11KeyboardChangeTest::keyKeepsItsPlaceInTheSecondLayout()
{
    QFETCH(const QString, layouts);
    QFETCH(const bool, isToggledBefore);
    setLayout({u"-layout"_s, layouts, u"-option"_s, u"grp:menu_toggle"_s});
    XKeyboard keyboard;
    if (isToggledBefore)
        keyboard.tap(XKey::kMenu);
    makeTap(kWanted);
    if (!isToggledBefore)
        keyboard.tap(XKey::kMenu);
    XWindow window;
    keyboard.tap(XKey::kSpace);
    QTRY_COMPARE(window.keys.size(), 2);
    // To clients that know of no second layout the display shows it as this modifier.
    QCOMPARE(window.lastState, std::uint16_t{XCB_MOD_MASK_5});
    for (const auto &held : {kHeld, {XKey::kRightSuper, XKey::kRightShift}})
        keyboard.tap(XKey::kU, held);
    keyboard.tap(XKey::kCapsLock);
    keyboard.tap(XKey::kU, kHeld);
    keyboard.tap(XKey::kNumLock);
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(m_heard, QList<KeyPress>(4, kWanted));
    QVERIFY(!window.keys.contains({.isPress = true, .key = XKey::kU}));
    QVERIFY(!window.keys.contains({.isPress = false, .key = XKey::kU}));
    keyboard.tap(XKey::kMenu);
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(m_heard, QList<KeyPress>(5, kWanted));
}

void X11KeyboardChangeTest::modifierMovedToAnotherKeyIsFollowed_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<int>("superKey");
    QTest::newRow("both Alt and Super swapped") << u"altwin:swap_alt_win"_s << int{XKey::kLeftAlt};
    QTest::newRow("Super on Caps Lock") << u"caps:super"_s << int{XKey::kCapsLock};
    QTest::newRow("left Alt and Super swapped")
        << u"altwin:swap_lalt_lwin"_s << int{XKey::kLeftAlt};
}

void X11KeyboardChangeTest::modifierMovedToAnotherKeyIsFollowed()
{
    QFETCH(const QString, option);
    QFETCH(const int, superKey);
    const auto key = static_cast<xcb_keycode_t>(superKey);
    makeTap(kWanted);
    XWindow window;
    XKeyboard keyboard;
    keyboard.tap(XKey::kU, {key, XKey::kLeftShift});
    if (key == XKey::kCapsLock)
        keyboard.tap(key);
    QTRY_VERIFY(window.keys.contains({.isPress = false, .key = XKey::kU}));
    QVERIFY(m_heard.isEmpty());
    setLayout({u"-option"_s, option});
    keyboard.tap(XKey::kU, {key, XKey::kLeftShift});
    QTRY_COMPARE(m_heard, QList{kWanted});
    setLayout({u"us"_s});
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(m_heard, (QList{kWanted, kWanted}));
    QCOMPARE(takenStates(XKey::kU), kWantedStates);
}

void X11KeyboardChangeTest::modifierWithAnotherBitIsFollowed()
{
    makeTap(kWanted);
    const QStringList swap{u"clear mod1"_s, u"clear mod4"_s, u"add mod4 = Alt_L Alt_R"_s,
                           u"add mod1 = Super_L Super_R"_s};
    changeMap(swap);
    QTRY_COMPARE(takenStates(XKey::kU), (QList{0x09, 0x0b, 0x19, 0x1b}));
    XKeyboard keyboard;
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(m_heard, QList{kWanted});
    // The keys that the bit now belongs to are another modifier.
    XWindow window;
    keyboard.tap(XKey::kU, {XKey::kLeftAlt, XKey::kLeftShift});
    QTRY_VERIFY(window.keys.contains({.isPress = true, .key = XKey::kU}));
    QCOMPARE(m_heard, QList{kWanted});
    setLayout({u"us"_s});
    QTRY_COMPARE(takenStates(XKey::kU), kWantedStates);
}

void X11KeyboardChangeTest::modifierWithTwoBitsIsHeardWithEither()
{
    changeMap({u"clear mod3"_s, u"remove mod4 = Super_R"_s, u"add mod3 = Super_R"_s});
    makeTap(kWanted);
    XKeyboard keyboard;
    const QList<QList<xcb_keycode_t>> ways{
        {XKey::kLeftSuper, XKey::kLeftShift},
        {XKey::kRightSuper, XKey::kLeftShift},
        {XKey::kLeftSuper, XKey::kRightSuper, XKey::kLeftShift},
    };
    for (const auto &held : ways)
        keyboard.tap(XKey::kU, held);
    QTRY_COMPARE(m_heard, QList<KeyPress>(3, kWanted));
}

void X11KeyboardChangeTest::numLockWithAnotherBitIsFollowed()
{
    makeTap(kWanted);
    changeMap({u"clear mod2"_s, u"clear mod3"_s, u"add mod3 = Num_Lock"_s});
    QTRY_COMPARE(takenStates(XKey::kU), (QList{0x41, 0x43, 0x61, 0x63}));
    changeMap({u"clear mod3"_s});
    QTRY_COMPARE(takenStates(XKey::kU), (QList{0x41, 0x43}));
}

void X11KeyboardChangeTest::changeThatMattersNotKeepsTheGrabs()
{
    makeTap(kWanted);
    XKeyboard keyboard;
    for (int turn = 0; turn < 5; ++turn) {
        setLayout({turn % 2 ? u"de"_s : u"fr"_s});
        changeMap({u"keycode 30 = x X"_s});
        keyboard.tap(XKey::kU, kHeld);
    }
    QTRY_COMPARE(m_heard, QList<KeyPress>(5, kWanted));
    QCOMPARE(takenStates(XKey::kU), kWantedStates);
}

void X11KeyboardChangeTest::keysOfAnotherKeyboardAreHeard_data()
{
    QTest::addColumn<QString>("layouts");
    for (const char *layouts : {"us,de", "us,ru", "ru,us"})
        QTest::newRow(layouts) << QString::fromLatin1(layouts);
}

void X11KeyboardChangeTest::keysOfAnotherKeyboardAreHeard()
{
    QFETCH(const QString, layouts);
    const NestedDisplay nested;
    setLayout({u"-layout"_s, layouts, u"-option"_s, u"grp:menu_toggle"_s});
    XKeyboard first;
    makeTap(kWanted);
    XWindow window;
    // The second layout is toggled on one keyboard only, with its own key.
    nested.keyboard->tap(XKey::kMenu);
    for (int turn = 0; turn < 3; ++turn) {
        nested.keyboard->tap(XKey::kSpace);
        QTRY_VERIFY(window.keys.contains({.isPress = false, .key = XKey::kSpace}));
        QCOMPARE(window.lastState, std::uint16_t{XCB_MOD_MASK_5});
        nested.keyboard->tap(XKey::kU, kHeld);
        QTRY_COMPARE(m_heard, QList<KeyPress>(2 * turn + 1, kWanted));
        first.tap(XKey::kU, kHeld);
        QTRY_COMPARE(m_heard, QList<KeyPress>(2 * turn + 2, kWanted));
        QVERIFY(!window.keys.contains({.isPress = true, .key = XKey::kU}));
        window.keys.clear();
    }
}

void X11KeyboardChangeTest::keyboardWithOtherBitsIsFollowed()
{
    const NestedDisplay nested;
    makeTap(kWanted);
    // Of the first keyboard, the one that XKeyboard presses.
    const QStringList device{u"-w0"_s, u"-i"_s, u"5"_s};
    const QString name = QString::fromLocal8Bit(qgetenv("DISPLAY"));
    auto map = outputOf(u"xkbcomp"_s, device + QStringList{name, u"-"_s});
    QVERIFY(map && map->contains("modifier_map Mod4 "));
    map->replace("modifier_map Mod4 ", "modifier_map Mod3 ");
    QVERIFY(outputOf(u"xkbcomp"_s, device + QStringList{u"-"_s, name}, *map));
    XKeyboard first;
    for (int turn = 0; turn < 2; ++turn) {
        // The first key of a keyboard makes it the one in use.
        nested.keyboard->tap(XKey::kSpace);
        QTRY_COMPARE(takenStates(XKey::kU), kWantedStates);
        nested.keyboard->tap(XKey::kU, kHeld);
        QTRY_COMPARE(m_heard, QList<KeyPress>(2 * turn + 1, kWanted));
        first.tap(XKey::kSpace);
        QTRY_COMPARE(takenStates(XKey::kU), (QList{0x21, 0x23, 0x31, 0x33}));
        first.tap(XKey::kU, kHeld);
        QTRY_COMPARE(m_heard, QList<KeyPress>(2 * turn + 2, kWanted));
    }
}

void X11KeyboardChangeTest::missingModifierIsRefused()
{
    changeMap({u"clear mod4"_s});
    const CapturedOutput log;
    makeTap(kWanted);
    QVERIFY(!m_tap);
    QCOMPARE(
        log.lines(),
        QStringList{
            u"⚠️ Global hotkey: the keyboard has no key of its own for one of the modifiers"_s});
    makeTap({.keyCode = 32, .modifiers = {.option = true}});
    QVERIFY(m_tap);
}

void X11KeyboardChangeTest::sharedBitIsRefused()
{
    changeMap({u"clear mod4"_s, u"add mod1 = Super_L Super_R"_s});
    makeTap(kWanted);
    QVERIFY(!m_tap);
    QCOMPARE(takenStates(XKey::kU), QList<int>());
}

void X11KeyboardChangeTest::refusedRenewalIsLoggedAndGivesEverythingBack()
{
    makeTap(kWanted);
    {
        XGrabber other;
        QVERIFY(other.grab(XKey::kU, XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_3));
        const CapturedOutput log;
        changeMap({u"clear mod4"_s, u"clear mod3"_s, u"add mod3 = Super_L Super_R"_s});
        QTRY_COMPARE(log.lines().value(log.lines().size() - 1),
                     u"⚠️ Global hotkey: another program has grabbed the key"_s);
        QCOMPARE(takenStates(XKey::kU), QList{XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_3});
    }
    setLayout({u"us"_s});
    QTRY_COMPARE(takenStates(XKey::kU), kWantedStates);
    XKeyboard keyboard;
    keyboard.tap(XKey::kU, kHeld);
    QTRY_COMPARE(m_heard, QList{kWanted});
}

TESSERY_TEST_MAIN(QCoreApplication, X11KeyboardChangeTest)
#include "X11KeyboardChangeTest.moc"
