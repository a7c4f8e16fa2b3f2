#include "ui/settings/FilenamePreview.h"

#include "base/SecureRandom.h"
#include "support/FixedClock.h"
#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;

class FilenamePreviewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void originalStyleShowsTheSample()
    {
        QCOMPARE(previewOf({}), u"Screenshot 2025-12-01 at 21.31.56.png"_s);
    }

    void dateIsAdded()
    {
        UploadSettings settings;
        settings.addDateToFilename = true;
        QCOMPARE(previewOf(settings), u"Screenshot 2025-12-01 at 21.31.56_2025-12-01.png"_s);
    }

    void randomStyleDrawsFromThePool()
    {
        UploadSettings settings;
        settings.filenameStyle = UploadSettings::FilenameStyle::random;
        settings.randomFilenameConfig.length = 5;
        QCOMPARE(previewOf(settings), u"aaaaa.png"_s);
    }

    void timestampStyleShowsTheTime()
    {
        UploadSettings settings;
        settings.filenameStyle = UploadSettings::FilenameStyle::timestamp;
        const QString seconds = QString::number(FixedClock().now().toSecsSinceEpoch());
        QCOMPARE(previewOf(settings), QString(seconds + u".png"_s));
    }

    void randomExampleFollowsTheOptions()
    {
        FirstOfPool random;
        UploadSettings::RandomFilenameConfig config;
        config.length = 4;
        config.useLowercase = false;
        QCOMPARE(FilenamePreview::randomExample(config, random), u"0000.png"_s);
    }

    void storedLengthThatCannotBeDrawnIsHarmless_data()
    {
        QTest::addColumn<std::int64_t>("length");
        QTest::addColumn<qsizetype>("shown");
        QTest::newRow("negative") << std::int64_t(-1) << qsizetype(0);
        QTest::newRow("none") << std::int64_t(0) << qsizetype(0);
        QTest::newRow("beyond the slider") << std::int64_t(100) << qsizetype(100);
        QTest::newRow("huge") << std::numeric_limits<std::int64_t>::max() << qsizetype(256);
    }
    void storedLengthThatCannotBeDrawnIsHarmless()
    {
        QFETCH(const std::int64_t, length);
        QFETCH(const qsizetype, shown);
        UploadSettings settings;
        settings.filenameStyle = UploadSettings::FilenameStyle::random;
        settings.randomFilenameConfig.length = length;
        QCOMPARE(previewOf(settings).size(), shown + 4);
        FirstOfPool random;
        QCOMPARE(FilenamePreview::randomExample(settings.randomFilenameConfig, random).size(),
                 shown + 4);
    }

    void poolIsShownUpToFortyCharacters_data()
    {
        QTest::addColumn<QString>("pool");
        QTest::addColumn<QString>("shown");
        const QString forty(40, u'a');
        QTest::newRow("short") << u"abc"_s << u"abc"_s;
        QTest::newRow("39") << forty.left(39) << forty.left(39);
        QTest::newRow("40") << forty << forty;
        QTest::newRow("41") << QString(forty + u'b') << QString(forty + u"..."_s);
        const QString flags = u"🇩🇪"_s.repeated(40);
        QTest::newRow("40 of several code points") << flags << flags;
        QTest::newRow("41 of several code points")
            << QString(flags + u"🇫🇷"_s) << QString(flags + u"..."_s);
    }
    void poolIsShownUpToFortyCharacters()
    {
        QFETCH(const QString, pool);
        QTEST(FilenamePreview::shownPool(pool), "shown");
    }

private:
    /// Draws the first character of any pool.
    struct FirstOfPool final : SecureRandom {
        std::uint64_t next() override { return 1; }
    };

    static QString previewOf(const UploadSettings &settings)
    {
        const FixedClock clock;
        FirstOfPool random;
        return FilenamePreview::name(settings, clock, random);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, FilenamePreviewTest)
#include "FilenamePreviewTest.moc"
