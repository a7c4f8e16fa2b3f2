#include "ui/settings/ShortcutCapture.h"

#include "support/FakeKeyboardLayout.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QTest>

using namespace Qt::StringLiterals;
using Shortcut = UploadSettings::KeyboardShortcut;
using KeyModifier = Shortcut::KeyModifier;

Q_DECLARE_METATYPE(std::vector<KeyModifier>)

namespace {

std::optional<Shortcut> captured(const FakeKeyboardLayout &layout, int key,
                                 Qt::KeyboardModifiers modifiers, const QString &text = {})
{
    return shortcutOf(QKeyEvent(QEvent::KeyPress, key, modifiers, text), layout);
}

} // namespace

class ShortcutCaptureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void modifiersComeInTheirOrder_data();
    void modifiersComeInTheirOrder();
    void eventIsAllThereIsWithoutALayout_data();
    void eventIsAllThereIsWithoutALayout();
    void layoutSaysWhatTheKeyTypes_data();
    void layoutSaysWhatTheKeyTypes();
    void keyAloneIsNoShortcut();
    void keyThatTypesNothingIsNoShortcut_data();
    void keyThatTypesNothingIsNoShortcut();
};

void ShortcutCaptureTest::modifiersComeInTheirOrder_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("held");
    QTest::addColumn<std::vector<KeyModifier>>("modifiers");
    using Modifiers = std::vector<KeyModifier>;
    const auto row = [](const char *name, Qt::KeyboardModifiers held, const Modifiers &modifiers) {
        QTest::newRow(name) << held << modifiers;
    };
    row("none", Qt::NoModifier, {});
    row("Super", Qt::MetaModifier, {KeyModifier::command});
    row("Shift", Qt::ShiftModifier, {KeyModifier::shift});
    row("Alt", Qt::AltModifier, {KeyModifier::option});
    row("Ctrl", Qt::ControlModifier, {KeyModifier::control});
    row("all", Qt::MetaModifier | Qt::ShiftModifier | Qt::AltModifier | Qt::ControlModifier,
        {KeyModifier::command, KeyModifier::shift, KeyModifier::option, KeyModifier::control});
    row("keypad and AltGr", Qt::KeypadModifier | Qt::GroupSwitchModifier, {});
}

void ShortcutCaptureTest::modifiersComeInTheirOrder()
{
    QFETCH(const Qt::KeyboardModifiers, held);
    QFETCH(const std::vector<KeyModifier>, modifiers);
    QCOMPARE(keyModifiers(held), modifiers);
}

void ShortcutCaptureTest::eventIsAllThereIsWithoutALayout_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("held");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("recorded");
    const auto row = [](const char *name, int key, Qt::KeyboardModifiers held, const QString &text,
                        const QString &recorded) {
        QTest::newRow(name) << key << held << text << recorded;
    };
    row("letter", Qt::Key_K, Qt::MetaModifier | Qt::ShiftModifier, u"K"_s, u"k"_s);
    row("control character", Qt::Key_U, Qt::ControlModifier, u"\x15"_s, u"u"_s);
    row("composed character", Qt::Key_E, Qt::AltModifier, u"€"_s, u"e"_s);
    row("no text", Qt::Key_X, Qt::MetaModifier, {}, u"x"_s);
    row("digit", Qt::Key_2, Qt::ControlModifier, u"2"_s, u"2"_s);
    row("not ASCII", Qt::Key_Odiaeresis, Qt::AltModifier, u"ö"_s, u"ö"_s);
    row("Cyrillic", 0x0413, Qt::AltModifier, u"г"_s, u"г"_s);
    row("Space", Qt::Key_Space, Qt::MetaModifier, u" "_s, u" "_s);
    row("Tab", Qt::Key_Tab, Qt::ControlModifier, u"\t"_s, u"\t"_s);
    row("Shift and Tab", Qt::Key_Backtab, Qt::ShiftModifier, {}, u"\t"_s);
    row("Escape", Qt::Key_Escape, Qt::ShiftModifier, u"\x1b"_s, u"\x1b"_s);
    row("Return", Qt::Key_Return, Qt::AltModifier, u"\r"_s, u"\r"_s);
    row("Enter", Qt::Key_Enter, Qt::AltModifier | Qt::KeypadModifier, u"\r"_s, u"\r"_s);
    row("Backspace", Qt::Key_Backspace, Qt::ControlModifier, u"\x7f"_s, u"\b"_s);
    row("Delete", Qt::Key_Delete, Qt::ControlModifier, u"\x7f"_s, u"\x7f"_s);
}

void ShortcutCaptureTest::eventIsAllThereIsWithoutALayout()
{
    QFETCH(const int, key);
    QFETCH(const Qt::KeyboardModifiers, held);
    QFETCH(const QString, text);
    QFETCH(const QString, recorded);
    QCOMPARE(captured({}, key, held, text), std::optional(Shortcut{recorded, keyModifiers(held)}));
}

void ShortcutCaptureTest::layoutSaysWhatTheKeyTypes_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("recorded");
    QTest::newRow("shifted digit") << int(Qt::Key_At) << u"@"_s << u"2"_s << u"2"_s;
    QTest::newRow("French digit") << int(Qt::Key_2) << u"2"_s << u"é"_s << u"é"_s;
    QTest::newRow("upper case") << int(Qt::Key_U) << u"U"_s << u"U"_s << u"u"_s;
    QTest::newRow("beyond 16 bits") << int(Qt::Key_A) << u"a"_s << u"𐐀"_s << u"𐐨"_s;
}

void ShortcutCaptureTest::layoutSaysWhatTheKeyTypes()
{
    QFETCH(const int, key);
    QFETCH(const QString, text);
    QFETCH(const QString, plain);
    QFETCH(const QString, recorded);
    FakeKeyboardLayout layout;
    layout.isThere = true;
    layout.characters = {{key, plain}};
    QCOMPARE(captured(layout, key, Qt::ShiftModifier, text),
             std::optional(Shortcut{recorded, {KeyModifier::shift}}));
}

void ShortcutCaptureTest::keyAloneIsNoShortcut()
{
    QCOMPARE(captured({}, Qt::Key_A, Qt::NoModifier, u"a"_s), std::nullopt);
    QCOMPARE(captured({}, Qt::Key_1, Qt::KeypadModifier, u"1"_s), std::nullopt);
}

void ShortcutCaptureTest::keyThatTypesNothingIsNoShortcut_data()
{
    QTest::addColumn<int>("key");
    for (const auto key :
         {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_AltGr,
          Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_Super_L, Qt::Key_F1, Qt::Key_Up, Qt::Key_Home,
          Qt::Key_PageDown, Qt::Key_Dead_Acute, Qt::Key_VolumeUp, Qt::Key_unknown, Qt::Key(0)})
        QTest::addRow("%s %x", QMetaEnum::fromType<Qt::Key>().valueToKey(key), key) << int(key);
}

void ShortcutCaptureTest::keyThatTypesNothingIsNoShortcut()
{
    QFETCH(const int, key);
    const auto held = Qt::MetaModifier | Qt::ShiftModifier;
    QCOMPARE(captured({}, key, held), std::nullopt);
    FakeKeyboardLayout layout;
    layout.isThere = true;
    QCOMPARE(captured(layout, key, held, u"x"_s), std::nullopt);
}

TESSERY_TEST_MAIN(QGuiApplication, ShortcutCaptureTest)

#include "ShortcutCaptureTest.moc"
