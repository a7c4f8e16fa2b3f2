#include "gui/SettingsWindow.h"
#include "support/TestMain.h"
#include "ui/settings/ElidedLabel.h"
#include "ui/settings/FilenameExampleRow.h"
#include "ui/settings/SettingsCard.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QObject>
#include <QRegularExpression>
#include <QSlider>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using FilenameStyle = UploadSettings::FilenameStyle;
using RandomFilenameConfig = UploadSettings::RandomFilenameConfig;

class FilenameSettingsContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_window = std::make_unique<SettingsWindow>();
    }

    void cleanup() { m_window.reset(); }

    void stylesAreNamedAndChosen()
    {
        open({});
        QCOMPARE(button(u"style.original"_s)->text(), u"Keep Original Name"_s);
        QCOMPARE(button(u"style.random"_s)->text(), u"Random String"_s);
        QCOMPARE(button(u"style.timestamp"_s)->text(), u"Timestamp"_s);
        QVERIFY(button(u"style.original"_s)->isChecked());
        m_window->click(u"style.timestamp"_s);
        QCOMPARE(saved().filenameStyle, FilenameStyle::timestamp);
    }

    void randomOptionsAreShownForTheRandomStyleOnly()
    {
        open({});
        const QStringList without = {u"Naming Style"_s, u"Preview"_s, u"Examples"_s};
        QCOMPARE(visibleCards(), without);
        m_window->click(u"style.random"_s);
        QCOMPARE(
            visibleCards(),
            QStringList({u"Naming Style"_s, u"Random Options"_s, u"Preview"_s, u"Examples"_s}));
        m_window->click(u"style.timestamp"_s);
        QCOMPARE(visibleCards(), without);
    }

    void hidingTheRandomOptionsKeepsTheirValues()
    {
        RandomFilenameConfig config;
        config.length = 12;
        config.useUppercase = true;
        open(config);
        m_window->click(u"style.original"_s);
        m_window->click(u"style.random"_s);
        QCOMPARE(saved().randomFilenameConfig, config);
        QCOMPARE(lengthText(), u"12 characters"_s);
    }

    void dateIsAddedForEveryStyle()
    {
        open({});
        for (const QString &style :
             {u"style.original"_s, u"style.random"_s, u"style.timestamp"_s}) {
            m_window->click(style);
            QVERIFY(m_window->find(u"addDateToFilename"_s)->isVisible());
        }
        m_window->click(u"style.original"_s);
        m_window->click(u"addDateToFilename"_s);
        const QRegularExpression dated(
            u"^Screenshot 2025-12-01 at 21\\.31\\.56_\\d{4}-\\d\\d-\\d\\d\\.png$"_s);
        QVERIFY2(dated.match(preview()).hasMatch(), qPrintable(preview()));
        QCOMPARE(saved().addDateToFilename, true);
    }

    void sliderChoosesTheLength()
    {
        openRandom({});
        auto *const slider = m_window->find<QSlider>(u"length"_s);
        QCOMPARE(slider->minimum(), 4);
        QCOMPARE(slider->maximum(), 32);
        QCOMPARE(lengthText(), u"8 characters"_s);
        slider->setFocus();
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(lengthText(), u"9 characters"_s);
        QCOMPARE(saved().randomFilenameConfig.length, 9);
        QCOMPARE(preview().size(), 9 + 4);
        QTest::keyClick(slider, Qt::Key_Home);
        QTest::keyClick(slider, Qt::Key_Left);
        QCOMPARE(saved().randomFilenameConfig.length, 4);
        QTest::keyClick(slider, Qt::Key_End);
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(saved().randomFilenameConfig.length, 32);
    }

    void storedLengthBeyondTheSliderIsShownAndStays_data()
    {
        QTest::addColumn<std::int64_t>("length");
        QTest::addColumn<int>("position");
        QTest::newRow("short") << std::int64_t(2) << 4;
        QTest::newRow("negative") << std::int64_t(-7) << 4;
        QTest::newRow("long") << std::int64_t(1234567) << 32;
    }
    void storedLengthBeyondTheSliderIsShownAndStays()
    {
        QFETCH(const std::int64_t, length);
        RandomFilenameConfig config;
        config.length = length;
        openRandom(config);
        QCOMPARE(lengthText(), u"%1 characters"_s.arg(length));
        QTEST(m_window->find<QSlider>(u"length"_s)->value(), "position");
        m_window->click(u"useUppercase"_s);
        QCOMPARE(saved().randomFilenameConfig.length, length);
    }

    void wheelOverTheSliderChangesNothing()
    {
        openRandom({});
        auto *const slider = m_window->find<QSlider>(u"length"_s);
        const QPointF middle = QRectF(slider->rect()).center();
        QWheelEvent turn(middle, slider->mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(slider, &turn);
        QCOMPARE(saved().randomFilenameConfig.length, 8);
    }

    void togglesChooseTheCharacters()
    {
        openRandom({});
        QCOMPARE(button(u"useLowercase"_s)->text(), u"abc"_s);
        QCOMPARE(button(u"useUppercase"_s)->text(), u"ABC"_s);
        QCOMPARE(button(u"useNumbers"_s)->text(), u"123"_s);
        QCOMPARE(button(u"useSymbols"_s)->text(), u"#@$"_s);
        m_window->click(u"useLowercase"_s);
        QCOMPARE(pool(), u"0123456789"_s);
        m_window->click(u"useUppercase"_s);
        QCOMPARE(pool(), u"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"_s);
        m_window->click(u"useNumbers"_s);
        m_window->click(u"useSymbols"_s);
        QCOMPARE(pool(), u"ABCDEFGHIJKLMNOPQRSTUVWXYZ-_"_s);
        button(u"useSymbols"_s)->setFocus();
        QTest::keyClick(button(u"useSymbols"_s), Qt::Key_Space);
        QCOMPARE(pool(), u"ABCDEFGHIJKLMNOPQRSTUVWXYZ"_s);
    }

    void allClassesOffShowsWhatNamesAreDrawnFrom()
    {
        openRandom({});
        m_window->click(u"useLowercase"_s);
        m_window->click(u"useNumbers"_s);
        QCOMPARE(pool(), u"abcdefghijklmnopqrstuvwxyz"_s);
    }

    void customSymbolsAreShownWhileSymbolsAreOn()
    {
        openRandom({});
        QVERIFY(!m_window->find(u"customSymbols"_s)->isVisible());
        m_window->click(u"useSymbols"_s);
        QVERIFY(m_window->find(u"customSymbols"_s)->isVisible());
        QVERIFY(visibleTexts().contains(u"Characters to include when symbols are enabled"_s));
        m_window->retype(u"customSymbols"_s, u"+="_s);
        QCOMPARE(saved().randomFilenameConfig.customSymbols, u"+="_s);
        m_window->click(u"useSymbols"_s);
        QVERIFY(!m_window->find(u"customSymbols"_s)->isVisible());
        m_window->click(u"useSymbols"_s);
        QCOMPARE(m_window->find<QLineEdit>(u"customSymbols"_s)->text(), u"+="_s);
    }

    void poolOfFortyIsShownWholeAndOfFortyOneIsNot()
    {
        RandomFilenameConfig config;
        config.useSymbols = true;
        config.customSymbols = u"+-=_"_s;
        openRandom(config);
        const QString whole = u"abcdefghijklmnopqrstuvwxyz0123456789+-=_"_s;
        QCOMPARE(pool(), whole);
        QTest::keyClicks(m_window->find(u"customSymbols"_s), u"!"_s);
        QCOMPARE(pool(), QString(whole + u"..."_s));
    }

    void randomPreviewChangesWithAnySetting()
    {
        openRandom({});
        const QString before = preview();
        m_window->click(u"addDateToFilename"_s);
        m_window->click(u"addDateToFilename"_s);
        QVERIFY(preview() != before);
        QCOMPARE(preview().size(), before.size());
    }

    void examplesAreShown()
    {
        openRandom({});
        QCOMPARE(example(u"example.original"_s), u"Screenshot 2025-12-01.png"_s);
        QCOMPARE(example(u"example.timestamp"_s), u"1733085116.png"_s);
        const QRegularExpression random(u"^[a-z0-9]{8}\\.png$"_s);
        const QString before = example(u"example.random"_s);
        QVERIFY2(random.match(before).hasMatch(), qPrintable(before));
        m_window->click(u"addDateToFilename"_s);
        QVERIFY(example(u"example.random"_s) != before);
    }

    void longPreviewIsShortenedAndWholeInTheToolTip()
    {
        RandomFilenameConfig config;
        config.length = 200;
        openRandom(config);
        const auto *const label = m_window->find<ElidedLabel>(u"preview"_s);
        QCOMPARE(label->text().size(), 204);
        QCOMPARE(label->toolTip(), label->text());
        QVERIFY(label->width() < 480);
    }

private:
    void open(const RandomFilenameConfig &config)
    {
        UploadSettings settings;
        settings.randomFilenameConfig = config;
        m_window->state->setSettings(settings);
        m_window->open();
        m_window->click(u"tab.filenames"_s);
    }
    void openRandom(const RandomFilenameConfig &config)
    {
        open(config);
        m_window->click(u"style.random"_s);
    }

    QAbstractButton *button(const QString &name) const
    {
        return m_window->find<QAbstractButton>(name);
    }
    QString preview() const { return m_window->find<ElidedLabel>(u"preview"_s)->text(); }
    QString pool() const { return m_window->find<ElidedLabel>(u"characterPool"_s)->text(); }
    QString lengthText() const { return m_window->find<QLabel>(u"lengthText"_s)->text(); }
    QString example(const QString &name) const
    {
        return m_window->find<FilenameExampleRow>(name)->example();
    }

    QStringList visibleCards() const
    {
        QStringList titles;
        for (const SettingsCard *card : m_window->view->findChildren<SettingsCard *>()) {
            if (card->isVisible())
                titles << card->accessibleName();
        }
        return titles;
    }
    QStringList visibleTexts() const
    {
        QStringList texts;
        for (const QLabel *label : m_window->view->findChildren<QLabel *>()) {
            if (label->isVisible())
                texts << label->text();
        }
        return texts;
    }

    /// The settings in force after the Save button was pressed.
    UploadSettings saved() const
    {
        m_window->click(u"save"_s);
        return m_window->state->settings();
    }

    std::unique_ptr<SettingsWindow> m_window;
};

TESSERY_TEST_MAIN(QApplication, FilenameSettingsContentTest)
#include "FilenameSettingsContentTest.moc"
