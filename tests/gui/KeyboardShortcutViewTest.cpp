#include "ui/settings/KeyboardShortcutView.h"

#include "support/TestMain.h"
#include "ui/settings/KeyCap.h"
#include "ui/settings/KeyNames.h"
#include "ui/settings/ShortcutSuggestion.h"

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using Shortcut = UploadSettings::KeyboardShortcut;
using KeyModifier = Shortcut::KeyModifier;

Q_DECLARE_METATYPE(std::vector<KeyModifier>)

namespace {

/// The caps from left to right.
QList<KeyCap *> caps(QWidget &view)
{
    view.ensurePolished();
    view.adjustSize();
    QList<KeyCap *> found = view.findChildren<KeyCap *>();
    std::sort(found.begin(), found.end(), [](KeyCap *a, KeyCap *b) { return a->x() < b->x(); });
    return found;
}

QStringList texts(QWidget &view)
{
    QStringList all;
    for (const KeyCap *cap : caps(view))
        all << cap->text();
    return all;
}

} // namespace

class KeyboardShortcutViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void capsAreSortedByCodePointAndTheKeyIsLast_data();
    void capsAreSortedByCodePointAndTheKeyIsLast();
    void anotherShortcutTakesThePlace();
    void highlightIsGreen();
    void capsSayWhichKeyTheyAre_data();
    void capsSayWhichKeyTheyAre();
    void viewSaysTheWholeShortcut();
    void capHasItsLeastWidthAndGrowsWithItsText();
    void suggestionRunsItsAction();
    void suggestionSaysItsKeys();
    void screenReadersSeeAButtonAndTexts();
};

void KeyboardShortcutViewTest::capsAreSortedByCodePointAndTheKeyIsLast_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<std::vector<KeyModifier>>("modifiers");
    QTest::addColumn<QStringList>("caps");
    using Modifiers = std::vector<KeyModifier>;
    QTest::newRow("default") << u"u"_s << Shortcut().modifiers
                             << QStringList{u"⇧"_s, u"⌘"_s, u"U"_s};
    QTest::newRow("all") << u"s"_s
                         << Modifiers{KeyModifier::command, KeyModifier::option, KeyModifier::shift,
                                      KeyModifier::control}
                         << QStringList{u"⇧"_s, u"⌃"_s, u"⌘"_s, u"⌥"_s, u"S"_s};
    QTest::newRow("none") << u"1"_s << Modifiers{} << QStringList{u"1"_s};
    QTest::newRow("long in upper case")
        << u"ß"_s << Modifiers{KeyModifier::option} << QStringList{u"⌥"_s, u"SS"_s};
}

void KeyboardShortcutViewTest::capsAreSortedByCodePointAndTheKeyIsLast()
{
    QFETCH(const QString, key);
    QFETCH(const std::vector<KeyModifier>, modifiers);
    QFETCH(const QStringList, caps);
    KeyboardShortcutView view({key, modifiers});
    QCOMPARE(texts(view), caps);
}

void KeyboardShortcutViewTest::anotherShortcutTakesThePlace()
{
    KeyboardShortcutView view({});
    QVERIFY(!view.isHighlighted());
    view.setShortcut({u"k"_s, {KeyModifier::control}}, true);
    QCOMPARE(texts(view), QStringList({u"⌃"_s, u"K"_s}));
    QVERIFY(view.isHighlighted());
    view.setShortcut({u"k"_s, {KeyModifier::control}});
    QVERIFY(!view.isHighlighted());
}

void KeyboardShortcutViewTest::highlightIsGreen()
{
    KeyboardShortcutView view({});
    view.adjustSize();
    const QImage clear = view.grab().toImage();
    view.setShortcut({}, true);
    const QImage highlighted = view.grab().toImage();
    const QPoint outline(view.width() / 2, 0);
    const QPoint inside(2, view.height() / 2);
    for (const QPoint &point : {outline, inside}) {
        const QColor before = clear.pixelColor(point);
        const QColor after = highlighted.pixelColor(point);
        QCOMPARE(before, view.palette().color(QPalette::Window));
        QVERIFY(after.green() > after.red() && after.green() > after.blue());
    }
}

void KeyboardShortcutViewTest::capsSayWhichKeyTheyAre_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("command") << u"⌘"_s << u"⌘"_s << u"Super"_s << u"⌘ Super"_s;
    QTest::newRow("shift") << u"⇧"_s << u"⇧"_s << u"Shift"_s << u"⇧ Shift"_s;
    QTest::newRow("option") << u"⌥"_s << u"⌥"_s << u"Alt"_s << u"⌥ Alt"_s;
    QTest::newRow("control") << u"⌃"_s << u"⌃"_s << u"Ctrl"_s << u"⌃ Ctrl"_s;
    QTest::newRow("letter") << u"u"_s << u"U"_s << u"U"_s << QString();
    QTest::newRow("space") << u" "_s << u"␣"_s << u"Space"_s << QString();
    QTest::newRow("tab") << u"\t"_s << u"⇥"_s << u"Tab"_s << QString();
    QTest::newRow("return") << u"\r"_s << u"↩"_s << u"Return"_s << QString();
    QTest::newRow("escape") << u"\x1b"_s << u"⎋"_s << u"Escape"_s << QString();
    QTest::newRow("backspace") << u"\b"_s << u"⌫"_s << u"Backspace"_s << QString();
    QTest::newRow("delete") << u"\x7f"_s << u"⌦"_s << u"Delete"_s << QString();
    QTest::newRow("markup") << u"<"_s << u"<"_s << u"<"_s << QString();
}

void KeyboardShortcutViewTest::capsSayWhichKeyTheyAre()
{
    QFETCH(const QString, key);
    QFETCH(const QString, text);
    QFETCH(const QString, name);
    QFETCH(const QString, toolTip);
    const KeyCap cap(key);
    QCOMPARE(cap.text(), text);
    QCOMPARE(cap.textFormat(), Qt::PlainText);
    QCOMPARE(cap.accessibleName(), name);
    QCOMPARE(cap.toolTip(), toolTip);
}

void KeyboardShortcutViewTest::viewSaysTheWholeShortcut()
{
    KeyboardShortcutView view({});
    QCOMPARE(view.accessibleName(), u"Shift+Super+U"_s);
    view.setShortcut({u"k"_s, {KeyModifier::option}});
    QCOMPARE(view.accessibleName(), u"Alt+K"_s);
}

void KeyboardShortcutViewTest::capHasItsLeastWidthAndGrowsWithItsText()
{
    QVERIFY(KeyCap(u"i"_s).sizeHint().width() <= 22);
    QCOMPARE(KeyCap(u"i"_s).minimumWidth(), 22);
    QVERIFY(KeyCap(u"WWWW"_s).sizeHint().width() > 40);
}

void KeyboardShortcutViewTest::suggestionRunsItsAction()
{
    int runs = 0;
    ShortcutSuggestion suggestion(u"⌘⌥U"_s, [&] { ++runs; });
    suggestion.show();
    QTest::mouseClick(&suggestion, Qt::LeftButton);
    QCOMPARE(runs, 1);
    suggestion.setFocus();
    QTest::keyClick(&suggestion, Qt::Key_Space);
    QCOMPARE(runs, 2);
}

void KeyboardShortcutViewTest::suggestionSaysItsKeys()
{
    const ShortcutSuggestion suggestion(u"⌘⌥U"_s, [] {});
    QCOMPARE(suggestion.text(), u"⌘⌥U"_s);
    QCOMPARE(suggestion.accessibleName(), u"Super+Alt+U"_s);
    QCOMPARE(suggestion.toolTip(), u"⌘ Super, ⌥ Alt"_s);
    QVERIFY(suggestion.focusPolicy() & Qt::TabFocus);
}

void KeyboardShortcutViewTest::screenReadersSeeAButtonAndTexts()
{
    ShortcutSuggestion suggestion(u"⌃⇧U"_s, [] {});
    QAccessibleInterface *const button = QAccessible::queryAccessibleInterface(&suggestion);
    QCOMPARE(button->role(), QAccessible::Button);
    QCOMPARE(button->text(QAccessible::Name), u"Ctrl+Shift+U"_s);
    KeyCap cap(u"⌘"_s);
    QAccessibleInterface *const text = QAccessible::queryAccessibleInterface(&cap);
    QCOMPARE(text->role(), QAccessible::StaticText);
    QCOMPARE(text->text(QAccessible::Name), u"Super"_s);
}

TESSERY_TEST_MAIN(QApplication, KeyboardShortcutViewTest)

#include "KeyboardShortcutViewTest.moc"
