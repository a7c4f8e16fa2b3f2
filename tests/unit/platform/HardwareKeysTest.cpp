#include "platform/linux/HardwareKeys.h"

#include "support/TestMain.h"

#include <QTest>

#include <linux/input-event-codes.h>

#include <limits>
#include <optional>
#include <set>

using namespace Qt::StringLiterals;

class HardwareKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void keyHasItsPlaceOnAUsKeyboard_data();
    void keyHasItsPlaceOnAUsKeyboard();
    void thereAreFortySixKeys();
    void otherPositionsHaveNoKeyCode_data();
    void otherPositionsHaveNoKeyCode();
    void otherKeyCodesHaveNoPosition_data();
    void otherKeyCodesHaveNoPosition();
};

namespace {

struct Key {
    char character;
    std::int64_t keyCode;
};

/// A run of neighbouring keys of a US keyboard, from left to right.
struct Run {
    std::uint32_t firstPosition;
    QList<Key> keys;
};

const QList<Run> &runs()
{
    static const QList<Run> runs{
        {KEY_1,
         {{'1', 18},
          {'2', 19},
          {'3', 20},
          {'4', 21},
          {'5', 23},
          {'6', 22},
          {'7', 26},
          {'8', 28},
          {'9', 25},
          {'0', 29},
          {'-', 27},
          {'=', 24}}},
        {KEY_Q,
         {{'q', 12},
          {'w', 13},
          {'e', 14},
          {'r', 15},
          {'t', 17},
          {'y', 16},
          {'u', 32},
          {'i', 34},
          {'o', 31},
          {'p', 35},
          {'[', 33},
          {']', 30}}},
        {KEY_A,
         {{'a', 0},
          {'s', 1},
          {'d', 2},
          {'f', 3},
          {'g', 5},
          {'h', 4},
          {'j', 38},
          {'k', 40},
          {'l', 37},
          {';', 41},
          {'\'', 39}}},
        {KEY_BACKSLASH,
         {{'\\', 42},
          {'z', 6},
          {'x', 7},
          {'c', 8},
          {'v', 9},
          {'b', 11},
          {'n', 45},
          {'m', 46},
          {',', 43},
          {'.', 47},
          {'/', 44}}},
    };
    return runs;
}

} // namespace

void HardwareKeysTest::keyHasItsPlaceOnAUsKeyboard_data()
{
    QTest::addColumn<quint32>("position");
    QTest::addColumn<qint64>("keyCode");
    QTest::addColumn<char>("symbol");
    for (const Run &run : runs()) {
        quint32 position = run.firstPosition;
        for (const Key &key : run.keys)
            QTest::addRow("%c", key.character)
                << position++ << qint64{key.keyCode} << key.character;
    }
}

void HardwareKeysTest::keyHasItsPlaceOnAUsKeyboard()
{
    QFETCH(const quint32, position);
    QFETCH(const qint64, keyCode);
    QFETCH(const char, symbol);
    QCOMPARE(HardwareKeys::symbol(keyCode), std::optional(symbol));
    QCOMPARE(HardwareKeys::keyCode(position), std::optional<std::int64_t>(keyCode));
    QCOMPARE(HardwareKeys::position(keyCode), std::optional<std::uint32_t>(position));
}

void HardwareKeysTest::thereAreFortySixKeys()
{
    std::set<std::int64_t> keyCodes;
    int positions = 0;
    for (std::uint32_t position = 0; position <= 0xffff; ++position) {
        if (const auto keyCode = HardwareKeys::keyCode(position)) {
            ++positions;
            keyCodes.insert(*keyCode);
        }
    }
    QCOMPARE(positions, 46);
    QCOMPARE(keyCodes.size(), 46U);
    int withPosition = 0;
    for (std::int64_t keyCode = -0x10000; keyCode <= 0x10000; ++keyCode)
        withPosition += HardwareKeys::position(keyCode) ? 1 : 0;
    QCOMPARE(withPosition, 46);
}

void HardwareKeysTest::otherPositionsHaveNoKeyCode_data()
{
    QTest::addColumn<quint32>("position");
    QTest::newRow("none") << quint32{KEY_RESERVED};
    QTest::newRow("return") << quint32{KEY_ENTER};
    QTest::newRow("space") << quint32{KEY_SPACE};
    QTest::newRow("tab") << quint32{KEY_TAB};
    QTest::newRow("escape") << quint32{KEY_ESC};
    QTest::newRow("backspace") << quint32{KEY_BACKSPACE};
    QTest::newRow("grave") << quint32{KEY_GRAVE};
    QTest::newRow("the key of ISO keyboards") << quint32{KEY_102ND};
    QTest::newRow("function key") << quint32{KEY_F1};
    QTest::newRow("arrow") << quint32{KEY_LEFT};
    QTest::newRow("keypad digit") << quint32{KEY_KP1};
    QTest::newRow("keypad minus") << quint32{KEY_KPMINUS};
    QTest::newRow("shift") << quint32{KEY_LEFTSHIFT};
    QTest::newRow("largest") << quint32{0xffffffff};
}

void HardwareKeysTest::otherPositionsHaveNoKeyCode()
{
    QFETCH(const quint32, position);
    QCOMPARE(HardwareKeys::keyCode(position), std::nullopt);
}

void HardwareKeysTest::otherKeyCodesHaveNoPosition_data()
{
    QTest::addColumn<qint64>("keyCode");
    for (const qint64 keyCode :
         {std::numeric_limits<qint64>::min(), qint64{-1}, qint64{10}, qint64{36}, qint64{48},
          qint64{49}, qint64{50}, qint64{53}, std::numeric_limits<qint64>::max()})
        QTest::addRow("%lld", keyCode) << keyCode;
}

void HardwareKeysTest::otherKeyCodesHaveNoPosition()
{
    QFETCH(const qint64, keyCode);
    QCOMPARE(HardwareKeys::position(keyCode), std::nullopt);
    QCOMPARE(HardwareKeys::symbol(keyCode), std::nullopt);
}

TESSERY_TEST_MAIN(QCoreApplication, HardwareKeysTest)
#include "HardwareKeysTest.moc"
