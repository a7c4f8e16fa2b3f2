#include "settings/UploadSettings.h"

#include "support/FixedClock.h"
#include "support/ScriptedRandom.h"
#include "support/TestMain.h"

#include <QLocale>
#include <QObject>
#include <QTimeZone>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using FilenameStyle = UploadSettings::FilenameStyle;
using RandomConfig = UploadSettings::RandomFilenameConfig;

namespace {

const QString kLowercase = u"abcdefghijklmnopqrstuvwxyz"_s;
const QString kUppercase = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ"_s;
const QString kDigits = u"0123456789"_s;

/// The number that makes a draw below bound give index.
std::uint64_t drawing(std::uint64_t index, std::uint64_t bound)
{
    return (UINT64_MAX / bound) * index + UINT64_MAX / bound / 2;
}

} // namespace

class RemoteNamingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_config = {};
        m_clock.time = FixedClock().time;
        m_random.drawn = 0;
    }

    void originalNameIsKept_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::newRow("blanks and upper case")
            << u"/home/me/Desktop/My File (1).PNG"_s << u"My File (1).PNG"_s;
        QTest::newRow("screenshot") << u"/d/Screenshot 2025-12-01 at 21.31.56.png"_s
                                    << u"Screenshot 2025-12-01 at 21.31.56.png"_s;
        QTest::newRow("no extension") << u"/d/README"_s << u"README"_s;
        QTest::newRow("address characters") << u"/d/100%25 #1?&.png"_s << u"100%25 #1?&.png"_s;
        QTest::newRow("non-ASCII")
            << u"/d/スクリーンショット é.png"_s << u"スクリーンショット é.png"_s;
    }

    void originalNameIsKept()
    {
        QFETCH(const QString, path);
        QTEST(name(FilenameStyle::original, path), "name");
    }

    void randomNameKeepsTheExtension_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("extension");
        QTest::newRow("png") << u"/d/a b.png"_s << u".png"_s;
        QTest::newRow("upper case") << u"/d/a.PNG"_s << u".PNG"_s;
        QTest::newRow("two dots") << u"/d/archive.tar.gz"_s << u".gz"_s;
        QTest::newRow("none") << u"/d/README"_s << QString();
    }

    void randomNameKeepsTheExtension()
    {
        QFETCH(const QString, path);
        QFETCH(const QString, extension);
        m_random.numbers = {drawing(0, 36), drawing(25, 36), drawing(35, 36)};
        QCOMPARE(name(FilenameStyle::random, path), u"az9az9az"_s + extension);
    }

    void randomNameOfLengthZeroIsTheExtensionAlone()
    {
        m_config.length = 0;
        QCOMPARE(name(FilenameStyle::random, u"/d/shot.png"_s), u".png"_s);
        QCOMPARE(addDate(u".png"_s, m_clock), u"_2025-12-01.png"_s);
        QCOMPARE(name(FilenameStyle::random, u"/d/shot"_s), QString());
        QCOMPARE(m_random.drawn, 0U);
    }

    void timestampIsWholeSecondsRoundedToTheNearest_data()
    {
        QTest::addColumn<qint64>("milliseconds");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::newRow("below") << qint64(1764624716499) << u"/d/a.png"_s << u"1764624716.png"_s;
        QTest::newRow("above") << qint64(1764624716501) << u"/d/a.png"_s << u"1764624717.png"_s;
        QTest::newRow("text") << qint64(1764624716000) << u"/d/note.txt"_s << u"1764624716.txt"_s;
        QTest::newRow("no extension") << qint64(1764624716000) << u"/d/note"_s << u"1764624716"_s;
    }

    void timestampIsWholeSecondsRoundedToTheNearest()
    {
        QFETCH(const qint64, milliseconds);
        QFETCH(const QString, path);
        m_clock.time = QDateTime::fromMSecsSinceEpoch(milliseconds);
        QTEST(name(FilenameStyle::timestamp, path), "name");
    }

    void dateGoesBeforeTheLastExtension_data()
    {
        QTest::addColumn<QString>("original");
        QTest::addColumn<QString>("dated");
        QTest::newRow("screenshot") << u"Screenshot 2025-12-01 at 21.31.56.png"_s
                                    << u"Screenshot 2025-12-01 at 21.31.56_2025-12-01.png"_s;
        QTest::newRow("random") << u"k3x9a0qm.png"_s << u"k3x9a0qm_2025-12-01.png"_s;
        QTest::newRow("two dots") << u"archive.tar.gz"_s << u"archive.tar_2025-12-01.gz"_s;
        QTest::newRow("no extension") << u"README"_s << u"README_2025-12-01"_s;
        QTest::newRow("dot at the end") << u"a."_s << u"a._2025-12-01"_s;
        QTest::newRow("dot before a slash") << u"a.b/c"_s << u"a.b/c_2025-12-01"_s;
        QTest::newRow("empty") << QString() << u"_2025-12-01"_s;
    }

    void dateGoesBeforeTheLastExtension()
    {
        QFETCH(const QString, original);
        QTEST(addDate(original, m_clock), "dated");
    }

    void dateIsTheLocalOne()
    {
        const QTimeZone east(9 * 60 * 60);
        m_clock.time = QDateTime(QDate(2026, 1, 1), QTime(0, 0, 30), east);
        QCOMPARE(m_clock.now().toUTC().date(), QDate(2025, 12, 31));
        QCOMPARE(addDate(u"a.png"_s, m_clock), u"a_2026-01-01.png"_s);
    }

    void dateIsPaddedWithZeros()
    {
        m_clock.time = QDateTime(QDate(987, 3, 4), QTime(12, 0));
        QCOMPARE(addDate(u"a"_s, m_clock), u"a_0987-03-04"_s);
    }

    void dateHasTheDigitsOfTheLocale()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
        const QString dated = addDate(u"a.png"_s, m_clock);
        QLocale::setDefault(before);
        QCOMPARE(dated, u"a_٢٠٢٥-١٢-٠١.png"_s);
    }

    void characterPoolJoinsTheClassesInOrder_data()
    {
        QTest::addColumn<bool>("lowercase");
        QTest::addColumn<bool>("uppercase");
        QTest::addColumn<bool>("numbers");
        QTest::addColumn<bool>("symbols");
        QTest::addColumn<QString>("customSymbols");
        QTest::addColumn<QString>("pool");
        QTest::newRow("all") << true << true << true << true << u"-_"_s
                             << QString(kLowercase + kUppercase + kDigits + u"-_");
        QTest::newRow("default") << true << false << true << false << u"-_"_s
                                 << QString(kLowercase + kDigits);
        QTest::newRow("upper case") << false << true << false << false << u"-"_s << kUppercase;
        QTest::newRow("symbols as entered")
            << false << false << false << true << u"a/ a"_s << u"a/ a"_s;
        QTest::newRow("nothing") << false << false << false << false << u"-_"_s << kLowercase;
        QTest::newRow("symbols but none")
            << false << false << false << true << QString() << kLowercase;
    }

    void characterPoolJoinsTheClassesInOrder()
    {
        QFETCH(const bool, lowercase);
        QFETCH(const bool, uppercase);
        QFETCH(const bool, numbers);
        QFETCH(const bool, symbols);
        QFETCH(const QString, customSymbols);
        const RandomConfig config{8, lowercase, uppercase, numbers, symbols, customSymbols};
        QTEST(config.characterPool(), "pool");
    }

    void withEveryClassOffOnlyLowerCaseLettersAreDrawn()
    {
        const RandomConfig config{500, false, false, false, false, {}};
        const QString text = config.generateRandomString(SecureRandom::system());
        QCOMPARE(text.size(), 500);
        for (const QChar character : text)
            QVERIFY2(kLowercase.contains(character), qPrintable(text));
    }

    void symbolOfSeveralCodePointsCountsAsOne()
    {
        const QString family = u"👨‍👩‍👧"_s;
        const QString accented = u"e\u0301"_s;
        const QString flag = u"🇩🇪"_s;
        const RandomConfig config{4, false, false, false, true, family + accented + flag + u'x'};
        m_random.numbers = {drawing(0, 4), drawing(1, 4), drawing(2, 4), drawing(3, 4)};
        QCOMPARE(config.generateRandomString(m_random), config.customSymbols);
        QCOMPARE(m_random.drawn, 4U);
    }

    void repeatedSymbolIsAsManyTimesLikelier()
    {
        const RandomConfig config{3, false, false, false, true, u"aab"_s};
        m_random.numbers = {drawing(0, 3), drawing(1, 3), drawing(2, 3)};
        QCOMPARE(config.generateRandomString(m_random), u"aab"_s);
    }

    void systemRandomNamesAreDifferent()
    {
        RandomConfig config;
        config.length = 32;
        QVERIFY(config.generateRandomString(SecureRandom::system())
                != config.generateRandomString(SecureRandom::system()));
    }

    void negativeLengthStopsTheProgram()
    {
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(STDERR_FILENO);
            qInstallMessageHandler(nullptr); // The test framework's would report a failure,
            std::signal(SIGABRT, SIG_DFL); // and print a stack.
            RandomConfig config;
            config.length = -1;
            [[maybe_unused]] const QString never =
                config.generateRandomString(SecureRandom::system());
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), SIGABRT);
    }

private:
    QString name(FilenameStyle style, const QString &path)
    {
        return generateFilename(style, QUrl::fromLocalFile(path), m_config, m_clock, m_random);
    }

    FixedClock m_clock;
    ScriptedRandom m_random;
    RandomConfig m_config;
};

TESSERY_TEST_MAIN(QCoreApplication, RemoteNamingTest)

#include "RemoteNamingTest.moc"
