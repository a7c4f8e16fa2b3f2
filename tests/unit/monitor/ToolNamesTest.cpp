#include "monitor/ScreenshotName.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(ScreenshotName::Kind)

/// The names that the screenshot tools of Debian 12 and 13 give their files by default, in the
/// languages in which a screenshot's name can begin. Put together from the formats in the tools and
/// their catalogues of translations. What does not match is told in docs/desktops.md.
class ToolNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void defaultName_data();
    void defaultName();
};

void ToolNamesTest::defaultName_data()
{
    using Kind = ScreenshotName::Kind;
    QTest::addColumn<QString>("name");
    QTest::addColumn<Kind>("kind");
    const auto row = [](const char *tool, const QString &name, Kind kind) {
        QTest::newRow(tool) << name << kind;
    };

    row("GNOME Shell 43, en nb ro ja th ar et; 48, ja",
        u"Screenshot from 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 48, en it is hr ar el et", u"Screenshot From 2026-11-21 10-10-10.png"_s,
        Kind::Screenshot);
    row("GNOME Shell, nl", u"Schermafdruk van 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell, de", u"Bildschirmfoto vom 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, fr", u"Capture d’écran du 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell, es", u"Captura desde 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell, pt_BR", u"Captura de tela de 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, pt", u"Captura de ecrã de 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 43, it", u"Schermata del 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, sv", u"Skärmbild från 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, da", u"Skærmbillede fra 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 48, nb", u"Skjermbilde fra 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, fi", u"Kuvakaappaus - 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 43, is", u"Skjámynd frá 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, ru", u"Снимок экрана от 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, uk", u"Знімок екрана з 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, pl", u"Zrzut ekranu z 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, cs", u"Snímek obrazovky z 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 43, sk", u"Snímka obrazovky zo dňa 2026-11-21 10-10-10.png"_s,
        Kind::Screenshot);
    row("GNOME Shell 48, sk", u"Snímka obrazovky z dňa 2026-11-21 10-10-10.png"_s,
        Kind::Screenshot);
    row("GNOME Shell 43, hu", u"Képernyőkép ekkor: 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 48, hu", u"Képernyőkép 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 48, ro", u"Instantaneu din 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell, bg", u"Снимка на екрана на 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell 43, sl", u"Zaslonska slika 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell 48, sl", u"Zaslonski posnetek 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell 43, hr", u"Slika zaslona 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell, zh_TW", u"螢幕快照 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell, zh_CN", u"截图 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, ko", u"스크린샷 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, vi", u"Chụp màn hình từ 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell 43, id", u"Cuplikan layar dari 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell 48, id", u"Cuplikan Layar Dari 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell 48, th", u"ภาพหน้าจอจาก 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 43, he", u"צילום מסך מ־2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 48, he", u"צילום מסך מתאריך 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell, fa", u"نماگرفت از 2026-11-21 10-10-10.png"_s, Kind::OtherImage);
    row("GNOME Shell 43, tr", u"Ekran Görüntüsü - 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 48, tr", u"Ekran Görüntüsü 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("GNOME Shell 43, el", u"Στιγμιότυπο οθόνης από 2026-11-21 10-10-10.png"_s,
        Kind::Screenshot);
    row("GNOME Shell, lv", u"Ekrānattēls no 2026-11-21 10-10-10.png"_s, Kind::OtherImage);

    row("Spectacle 22, all; 6, en pt da nb hr vi th fa el et", u"Screenshot_20261121_101010.png"_s,
        Kind::Screenshot);
    row("Spectacle 6, nl", u"Schermafdruk_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, de", u"Bildschirmfoto_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, fr", u"Copie d'écran_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, es", u"Captura de pantalla_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, pt_BR", u"Captura de imagem_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, it", u"Schermata_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, sv", u"Skärmbild_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, fi", u"Kuvakaappaus_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, is", u"Skjámynd_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, ru", u"Снимок экрана_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, uk", u"Знімок_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, pl", u"Zrzut ekranu_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, cs", u"Snímek obrazovky_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, sk", u"Snímka obrazovky_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, hu", u"Képernyőkép_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, ro", u"Captură de ecran_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, bg", u"Снимка на екрана_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, sl", u"Zaslonska slika_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, zh_TW", u"螢幕截圖_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, zh_CN", u"屏幕截图_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, ja", u"スクリーンショット_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, ko", u"스크린샷_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, id", u"Jepretan layar_20261121_101010.png"_s, Kind::OtherImage);
    row("Spectacle 6, he", u"צילום מסך_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, ar", u"لقطة شاشة_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, tr", u"Ekran Görüntüsü_20261121_101010.png"_s, Kind::Screenshot);
    row("Spectacle 6, lv", u"Ekrānattēls_20261121_101010.png"_s, Kind::OtherImage);

    row("xfce4-screenshooter, en", u"Screenshot_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, nl", u"Schermafdruk_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, de", u"Bildschirmfoto_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, fr", u"Capture d’écran_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, es", u"Captura de pantalla_2026-11-21_10-10-10.png"_s,
        Kind::Screenshot);
    row("xfce4-screenshooter, pt_BR", u"Captura de tela_2026-11-21_10-10-10.png"_s,
        Kind::Screenshot);
    row("xfce4-screenshooter, pt", u"Captura de ecrã_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, it", u"Istantanea_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, sv", u"Skärmbild_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, da", u"Skærmbillede_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, nb", u"Skjermbilde_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, fi", u"Kuvakaappaus_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, is", u"Skjámynd_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, ru", u"Снимок экрана_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, uk", u"Знімок екрану_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, pl", u"Przechwycenie obrazu ekranu_2026-11-21_10-10-10.png"_s,
        Kind::OtherImage);
    row("xfce4-screenshooter, cs", u"Snímek obrazovky_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, sk", u"Snímka obrazovky_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, hu", u"Képernyőkép_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, ro", u"Captură de ecran_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, bg", u"Снимка на екрана_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, sl", u"Zaslonska slika_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, hr", u" Screenshot_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, zh_TW", u"螢幕快照_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, zh_CN", u"截图_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, ja", u"スクリーンショット_2026-11-21_10-10-10.png"_s,
        Kind::Screenshot);
    row("xfce4-screenshooter, ko", u"스크린샷_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, vi", u"Ảnh chụp màn hình_2026-11-21_10-10-10.png"_s,
        Kind::Screenshot);
    row("xfce4-screenshooter, id", u"Cuplikan Layar_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, th", u"ภาพหน้าจอ_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, he", u"צילום מסך_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, ar", u"لقطة الشاشة_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, fa", u"اسکرین‌شات_2026-11-21_10-10-10.png"_s,
        Kind::OtherImage);
    row("xfce4-screenshooter, tr", u"Ekran görüntüsü_2026-11-21_10-10-10.png"_s, Kind::Screenshot);
    row("xfce4-screenshooter, el", u"Στιγμιότυπο οθόνης_2026-11-21_10-10-10.png"_s,
        Kind::Screenshot);
    row("xfce4-screenshooter, et", u"Kuvatõmmis_2026-11-21_10-10-10.png"_s, Kind::OtherImage);
    row("xfce4-screenshooter, lv", u"Ekrānkopija_2026-11-21_10-10-10.png"_s, Kind::OtherImage);

    row("gnome-screenshot", u"Screenshot from 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("mate-screenshot", u"Screenshot at 2026-11-21 10-10-10.png"_s, Kind::Screenshot);
    row("grim", u"20261121_10h10m10s_grim.png"_s, Kind::OtherImage);
    row("grimshot", u"2026-11-21T10:10:10,123456789+00:00.png"_s, Kind::OtherImage);
    row("flameshot", u"2026-11-21_10-10.png"_s, Kind::OtherImage);
    row("ksnip", u"ksnip_20261121-101010.png"_s, Kind::OtherImage);
    row("screengrab", u"screen-2026-11-21-10-10-10.png"_s, Kind::OtherImage);
    row("scrot", u"2026-11-21-101010_1280x800_scrot.png"_s, Kind::OtherImage);
}

void ToolNamesTest::defaultName()
{
    QFETCH(QString, name);
    QFETCH(ScreenshotName::Kind, kind);
    QCOMPARE(ScreenshotName::kindOf(name.toStdString()), kind);
}

TESSERY_TEST_MAIN(QCoreApplication, ToolNamesTest)
#include "ToolNamesTest.moc"
