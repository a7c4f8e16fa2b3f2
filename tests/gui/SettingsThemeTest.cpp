#include "ui/settings/SettingsTheme.h"

#include "support/TestMain.h"

#include <QApplication>
#include <QObject>

using SettingsTheme::Tint;

class SettingsThemeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void contrastOfKnownColours()
    {
        QCOMPARE(SettingsTheme::contrast(Qt::white, Qt::black), 21.0);
        QCOMPARE(SettingsTheme::contrast(Qt::red, Qt::red), 1.0);
        QVERIFY(qAbs(SettingsTheme::contrast(QColor(0x77, 0x77, 0x77), Qt::white) - 4.48) < 0.01);
    }

    void everyTextIsLegible_data()
    {
        QTest::addColumn<QPalette>("desktop");
        QTest::newRow("light") << QPalette(QColor(0xef, 0xef, 0xef));
        QTest::newRow("white") << QPalette(Qt::white);
        QTest::newRow("dark") << QPalette(QColor(0x2b, 0x2d, 0x30));
        QTest::newRow("black") << QPalette(Qt::black);
        QPalette pale(QColor(0xef, 0xef, 0xef));
        pale.setColor(QPalette::Highlight, Qt::yellow);
        QTest::newRow("pale accent") << pale;
        QPalette night(QColor(0x20, 0x20, 0x20));
        night.setColor(QPalette::Highlight, QColor(0x10, 0x20, 0x60));
        QTest::newRow("dark accent on dark") << night;
    }
    void everyTextIsLegible()
    {
        QFETCH(const QPalette, desktop);
        const QPalette palette = SettingsTheme::palette(desktop);
        const QColor card = SettingsTheme::cardBackground(palette);
        const QColor window = palette.color(QPalette::Window);
        for (const Tint tint :
             {Tint::Text, Tint::Secondary, Tint::Accent, Tint::Green, Tint::Red, Tint::Orange})
            QVERIFY2(SettingsTheme::contrast(SettingsTheme::color(tint, palette), card) >= 4.5,
                     qPrintable(QString::number(static_cast<int>(tint))));
        QVERIFY(SettingsTheme::contrast(SettingsTheme::color(Tint::Secondary, palette), window)
                >= 4.5);
        QVERIFY(SettingsTheme::contrast(palette.color(QPalette::PlaceholderText), card) >= 4.5);
        QVERIFY(SettingsTheme::contrast(Qt::white, SettingsTheme::accent(palette)) >= 4.5);
        QVERIFY(SettingsTheme::contrast(palette.color(QPalette::HighlightedText),
                                        palette.color(QPalette::Highlight))
                >= 4.5);
        QVERIFY(SettingsTheme::contrast(palette.color(QPalette::Text),
                                        SettingsTheme::inputBackground(palette))
                >= 4.5);
    }

    void largerFontOfTheDesktopIsFollowedWithinLimits()
    {
        const QFont before = QApplication::font();
        QFont desktop = before;
        desktop.setPixelSize(13);
        QApplication::setFont(desktop);
        QCOMPARE(SettingsTheme::font(11).pixelSize(), 11);
        desktop.setPixelSize(9);
        QApplication::setFont(desktop);
        QCOMPARE(SettingsTheme::font(11).pixelSize(), 11);
        desktop.setPixelSize(40);
        QApplication::setFont(desktop);
        QCOMPARE(SettingsTheme::font(11).pixelSize(), 13);
        QApplication::setFont(before);
    }
};

TESSERY_TEST_MAIN(QApplication, SettingsThemeTest)
#include "SettingsThemeTest.moc"
