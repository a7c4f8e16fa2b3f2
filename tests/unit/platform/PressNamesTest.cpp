#include "platform/linux/dbus/PressNames.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QList<KeyPress> kPresses{
    {.keyCode = 32, .modifiers = {.command = true, .shift = true}}, // u
    {.keyCode = 0, .modifiers = {.shift = true, .option = true, .control = true}}, // a
    {.keyCode = 18, .modifiers = {.control = true}}, // 1
    {.keyCode = 18, .modifiers = {.command = true, .shift = true}},
    {.keyCode = 33, .modifiers = {}}, // [
};

} // namespace

class PressNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kdeGoesByQtsNumbers_data()
    {
        QTest::addColumn<int>("press");
        QTest::addColumn<QString>("shifted");
        QTest::addColumn<QList<int>>("keys");
        const auto row = [](int press, const QString &shifted, const QList<QKeyCombination> &keys) {
            QList<int> numbers;
            for (const QKeyCombination key : keys)
                numbers << key.toCombined();
            QTest::addRow("%d %s", press, qPrintable(shifted)) << press << shifted << numbers;
        };
        row(0, {}, {Qt::META | Qt::SHIFT | Qt::Key_U});
        row(0, u"U"_s, {Qt::META | Qt::SHIFT | Qt::Key_U});
        row(1, {}, {Qt::SHIFT | Qt::ALT | Qt::CTRL | Qt::Key_A});
        row(2, u"!"_s, {Qt::CTRL | Qt::Key_1});
        row(3, {}, {Qt::META | Qt::SHIFT | Qt::Key_1});
        row(3, u"!"_s, {Qt::META | Qt::SHIFT | Qt::Key_1, Qt::META | Qt::Key_Exclam});
        row(3, u"!\""_s,
            {Qt::META | Qt::SHIFT | Qt::Key_1, Qt::META | Qt::Key_Exclam,
             Qt::META | Qt::Key_QuoteDbl});
        row(4, u"{"_s, {QKeyCombination(Qt::Key_BracketLeft)});
    }

    void kdeGoesByQtsNumbers()
    {
        QFETCH(const int, press);
        QFETCH(const QString, shifted);
        QFETCH(const QList<int>, keys);
        QCOMPARE(PressNames::kdeKeys(kPresses[press], shifted), keys);
        QCOMPARE(PressNames::needsShifted(kPresses[press]), press == 3);
    }

    void portalGoesByNamesOfSymbols()
    {
        const QStringList triggers{u"LOGO+SHIFT+u"_s, u"SHIFT+ALT+CTRL+a"_s, u"CTRL+1"_s,
                                   u"LOGO+SHIFT+1"_s, u"bracketleft"_s};
        for (qsizetype i = 0; i < triggers.size(); ++i)
            QCOMPARE(PressNames::portalTrigger(kPresses[i]), triggers[i]);
    }

    void everySymbolHasAName()
    {
        const QList<std::pair<int, QString>> names{
            {27, u"minus"_s},     {24, u"equal"_s},      {30, u"bracketright"_s},
            {41, u"semicolon"_s}, {39, u"apostrophe"_s}, {42, u"backslash"_s},
            {43, u"comma"_s},     {47, u"period"_s},     {44, u"slash"_s},
        };
        for (const auto &[keyCode, name] : names)
            QCOMPARE(PressNames::portalTrigger({.keyCode = keyCode, .modifiers = {}}), name);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, PressNamesTest)
#include "PressNamesTest.moc"
