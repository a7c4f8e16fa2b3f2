#include "base/SecureRandom.h"
#include "support/ScriptedRandom.h"
#include "support/TestMain.h"

#include <array>
#include <limits>
#include <set>

namespace {

constexpr std::uint64_t kHighest = std::numeric_limits<std::uint64_t>::max();

} // namespace

class SecureRandomTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void boundedSpansTheWholeRange()
    {
        ScriptedRandom random;
        random.numbers = {1, kHighest, kHighest / 2};
        QCOMPARE(random.bounded(36), std::uint64_t(0));
        QCOMPARE(random.bounded(36), std::uint64_t(35));
        QCOMPARE(random.bounded(36), std::uint64_t(17));
    }

    void drawsThatWouldFavourSomeResultsAreRepeated()
    {
        // 2^64 leaves 1 over when divided by 3, so exactly one draw is refused: 0.
        ScriptedRandom random;
        random.numbers = {0, 1};
        QCOMPARE(random.bounded(3), std::uint64_t(0));
        QCOMPARE(random.drawn, std::size_t(2));
    }

    void powersOfTwoRefuseNoDraw()
    {
        ScriptedRandom random;
        random.numbers = {0};
        QCOMPARE(random.bounded(64), std::uint64_t(0));
        QCOMPARE(random.drawn, std::size_t(1));
    }

    void boundOfOneGivesNothingElse()
    {
        ScriptedRandom random;
        random.numbers = {kHighest};
        QCOMPARE(random.bounded(1), std::uint64_t(0));
    }

    void highestBoundWorks()
    {
        ScriptedRandom random;
        random.numbers = {kHighest};
        QCOMPARE(random.bounded(kHighest), kHighest - 1);
    }

    void systemNumbersDiffer()
    {
        std::set<std::uint64_t> numbers;
        for (int i = 0; i < 1000; ++i)
            numbers.insert(SecureRandom::system().next());
        QCOMPARE(numbers.size(), std::size_t(1000));
    }

    void systemNumbersAreEven()
    {
        // Chi-squared with nine degrees of freedom exceeds 50 once in ten million runs.
        constexpr int kDraws = 100000;
        std::array<int, 10> counts = {};
        for (int i = 0; i < kDraws; ++i)
            ++counts.at(SecureRandom::system().bounded(10));
        double chiSquared = 0;
        for (const int count : counts) {
            const double difference = count - kDraws / 10.0;
            chiSquared += difference * difference / (kDraws / 10.0);
        }
        QVERIFY2(chiSquared < 50, QByteArray::number(chiSquared).constData());
    }
};

TESSERY_TEST_MAIN(QCoreApplication, SecureRandomTest)
#include "SecureRandomTest.moc"
