#include "app/Hotkey.h"
#include "support/TestMain.h"

#include <map>
#include <set>

using namespace Qt::StringLiterals;
using Shortcut = UploadSettings::KeyboardShortcut;
using KeyModifier = Shortcut::KeyModifier;

namespace {

/// The modifiers whose bit is set in number, which has four bits.
std::vector<KeyModifier> modifiersOf(unsigned number)
{
    std::vector<KeyModifier> modifiers;
    for (unsigned bit = 0; bit < 4; ++bit) {
        if (number & (1U << bit))
            modifiers.push_back(static_cast<KeyModifier>(bit));
    }
    return modifiers;
}

KeyModifierFlags flagsOf(unsigned number)
{
    const std::vector<KeyModifier> modifiers = modifiersOf(number);
    const auto has = [&modifiers](KeyModifier modifier) {
        return std::ranges::find(modifiers, modifier) != modifiers.end();
    };
    return {has(KeyModifier::command), has(KeyModifier::shift), has(KeyModifier::option),
            has(KeyModifier::control)};
}

} // namespace

class HotkeyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void everyCodeOfTheTableHasItsCharacterAndNoOtherCodeHasOne()
    {
        const std::map<std::int64_t, QString> table = {
            {0, u"a"_s},  {1, u"s"_s},  {2, u"d"_s},  {3, u"f"_s},  {4, u"h"_s},   {5, u"g"_s},
            {6, u"z"_s},  {7, u"x"_s},  {8, u"c"_s},  {9, u"v"_s},  {11, u"b"_s},  {12, u"q"_s},
            {13, u"w"_s}, {14, u"e"_s}, {15, u"r"_s}, {16, u"y"_s}, {17, u"t"_s},  {18, u"1"_s},
            {19, u"2"_s}, {20, u"3"_s}, {21, u"4"_s}, {22, u"6"_s}, {23, u"5"_s},  {24, u"="_s},
            {25, u"9"_s}, {26, u"7"_s}, {27, u"-"_s}, {28, u"8"_s}, {29, u"0"_s},  {30, u"]"_s},
            {31, u"o"_s}, {32, u"u"_s}, {33, u"["_s}, {34, u"i"_s}, {35, u"p"_s},  {37, u"l"_s},
            {38, u"j"_s}, {39, u"'"_s}, {40, u"k"_s}, {41, u";"_s}, {42, u"\\"_s}, {43, u","_s},
            {44, u"/"_s}, {45, u"n"_s}, {46, u"m"_s}, {47, u"."_s},
        };
        QCOMPARE(table.size(), 46U);
        std::map<std::int64_t, QString> found;
        for (std::int64_t code = -300; code <= 70000; ++code) {
            if (const auto character = Hotkey::keyCodeToChar(code))
                found[code] = *character;
        }
        QCOMPARE(found, table);
        for (const std::int64_t code :
             {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(),
              (std::int64_t{1} << 32) + 9})
            QCOMPARE(Hotkey::keyCodeToChar(code), std::nullopt);
    }

    void modifiersMatchOnlyWhenAllFourAreTheSame()
    {
        int matching = 0;
        for (unsigned held = 0; held < 16; ++held) {
            for (unsigned wanted = 0; wanted < 16; ++wanted) {
                const bool matches =
                    Hotkey::matches({9, flagsOf(held)}, {u"v"_s, modifiersOf(wanted)});
                QVERIFY2(matches == (held == wanted),
                         qPrintable(QString::number(held) + u' ' + QString::number(wanted)));
                matching += matches ? 1 : 0;
            }
        }
        QCOMPARE(matching, 16);
    }

    void orderAndRepeatsOfModifiersDoNotMatter()
    {
        const Shortcut shortcut{u"v"_s,
                                {KeyModifier::shift, KeyModifier::command, KeyModifier::shift}};
        QVERIFY(Hotkey::matches({9, {.command = true, .shift = true}}, shortcut));
        QVERIFY(!Hotkey::matches({9, {.command = true}}, shortcut));
    }

    void shortcutOfCommandShiftV_data()
    {
        QTest::addColumn<KeyPress>("press");
        QTest::addColumn<bool>("fires");
        QTest::newRow("command shift v") << KeyPress{9, {.command = true, .shift = true}} << true;
        QTest::newRow("option as well")
            << KeyPress{9, {.command = true, .shift = true, .option = true}} << false;
        QTest::newRow("no shift") << KeyPress{9, {.command = true}} << false;
        QTest::newRow("another key") << KeyPress{8, {.command = true, .shift = true}} << false;
        QTest::newRow("no key of the table")
            << KeyPress{36, {.command = true, .shift = true}} << false;
    }
    void shortcutOfCommandShiftV()
    {
        QFETCH(KeyPress, press);
        QFETCH(bool, fires);
        for (const QString &key : {u"v"_s, u"V"_s}) {
            const Shortcut shortcut{key, {KeyModifier::command, KeyModifier::shift}};
            QCOMPARE(Hotkey::matches(press, shortcut), fires);
        }
    }

    void everyKeyOfTheTableIsFoundAgainAndMatches()
    {
        std::set<std::int64_t> codes;
        for (std::int64_t code = 0; code < 128; ++code) {
            const auto character = Hotkey::keyCodeToChar(code);
            if (!character)
                continue;
            const Shortcut shortcut{character->toUpper(), {KeyModifier::control}};
            const std::optional<KeyPress> press = Hotkey::pressOf(shortcut);
            QVERIFY(press);
            QCOMPARE(*press, (KeyPress{code, {.control = true}}));
            QVERIFY(Hotkey::matches(*press, shortcut));
            codes.insert(code);
        }
        QCOMPARE(codes.size(), 46U);
    }

    void keyThatIsNotInTheTableIsNeverPressed_data()
    {
        QTest::addColumn<QString>("key");
        for (const QString &key :
             {u" "_s, u""_s, u"\t"_s, u"\u001b"_s, u"é"_s, u"uu"_s, u"`"_s, u"\r"_s, u"ß"_s})
            QTest::newRow(qPrintable(u"'%1'"_s.arg(key))) << key;
    }
    void keyThatIsNotInTheTableIsNeverPressed()
    {
        QFETCH(QString, key);
        const Shortcut shortcut{key, {}};
        QCOMPARE(Hotkey::pressOf(shortcut), std::nullopt);
        for (std::int64_t code = -1; code < 256; ++code)
            QVERIFY(!Hotkey::matches({code, {}}, shortcut));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, HotkeyTest)
#include "HotkeyTest.moc"
