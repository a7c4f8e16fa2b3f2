#include "monitor/ScreenshotName.h"

#include "base/FileName.h"
#include "support/TestMain.h"

#include <QTest>

#include <algorithm>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(ScreenshotName::Kind)

namespace {

const QStringList kPrefixes = {
    u"screen shot"_s,
    u"screenshot"_s,
    u"schermafbeelding"_s,
    u"bildschirmfoto"_s,
    u"capture d'écran"_s,
    u"captura de pantalla"_s,
    u"captura de tela"_s,
    u"captura de ecrã"_s,
    u"schermata"_s,
    u"instantané"_s,
    u"skärmbild"_s,
    u"skærmbillede"_s,
    u"skjermbilde"_s,
    u"näyttökuva"_s,
    u"skjámynd"_s,
    u"снимок экрана"_s,
    u"знімок екрана"_s,
    u"zrzut ekranu"_s,
    u"snímek obrazovky"_s,
    u"snímka obrazovky"_s,
    u"képernyőkép"_s,
    u"captură de ecran"_s,
    u"екранна снимка"_s,
    u"posnetek zaslona"_s,
    u"snimka zaslona"_s,
    u"螢幕截圖"_s,
    u"截屏"_s,
    u"截图"_s,
    u"スクリーンショット"_s,
    u"스크린샷"_s,
    u"화면 캡처"_s,
    u"ảnh chụp màn hình"_s,
    u"tangkapan layar"_s,
    u"ภาพหน้าจอ"_s,
    u"สกรีนช็อต"_s,
    u"צילום מסך"_s,
    u"لقطة شاشة"_s,
    u"تصویر صفحه"_s,
    u"ekran görüntüsü"_s,
    u"στιγμιότυπο οθόνης"_s,
    u"kuvakaappaus"_s,
    u"ekraanipilt"_s,
    u"ekrānuzņēmums"_s,
};

using Kind = ScreenshotName::Kind;

Kind kindOf(const QString &name)
{
    return ScreenshotName::kindOf(name.toStdString());
}

QString composed(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C);
}

QString decomposed(const QString &text)
{
    return text.normalized(QString::NormalizationForm_D);
}

} // namespace

class ScreenshotNameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void everyPrefixIsKnownInEveryForm_data();
    void everyPrefixIsKnownInEveryForm();
    void kindOfName_data();
    void kindOfName();
    void noOtherCharacterBeginsAPrefix();
    void extensionIsWhatFileNameSays_data();
    void extensionIsWhatFileNameSays();
    void keysAreEqualForEquivalentNamesOnly();
    void asciiIsTold();
};

void ScreenshotNameTest::everyPrefixIsKnownInEveryForm_data()
{
    QTest::addColumn<QString>("prefix");
    QCOMPARE(kPrefixes.size(), 43);
    for (const QString &prefix : kPrefixes) {
        const QString capitalised = prefix.left(1).toUpper() + prefix.mid(1);
        QTest::addRow("%s, lower case", qUtf8Printable(prefix)) << prefix;
        QTest::addRow("%s, capitalised", qUtf8Printable(prefix)) << capitalised;
        QTest::addRow("%s, upper case", qUtf8Printable(prefix)) << prefix.toUpper();
    }
}

void ScreenshotNameTest::everyPrefixIsKnownInEveryForm()
{
    QFETCH(QString, prefix);
    for (const QString &form : {composed(prefix), decomposed(prefix)}) {
        QCOMPARE(kindOf(form), Kind::Screenshot);
        QCOMPARE(kindOf(form + u" 2025-12-01 10.00.00.png"), Kind::Screenshot);
        QCOMPARE(kindOf(form + u" – 文書 é.png"), Kind::Screenshot);
        QCOMPARE(kindOf(u' ' + form), Kind::Other);
        QCOMPARE(kindOf(u'x' + form + u".png"), Kind::OtherImage);
        // The last character, with whatever marks it has, must be there.
        QString shorter = composed(form);
        shorter.chop(1);
        QCOMPARE(kindOf(shorter), Kind::Other);
        QCOMPARE(kindOf(decomposed(shorter) + u" 1.png"), Kind::OtherImage);
        // A further mark makes the last character another one.
        QCOMPARE(kindOf(form + u"\u0301 1"), Kind::Other);
    }
}

void ScreenshotNameTest::kindOfName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Kind>("kind");
    const auto row = [](const QString &name, Kind kind) {
        QTest::addRow("%s", name.toUtf8().toPercentEncoding(" '()").constData()) << name << kind;
    };
    row(u"Screenshot 2025-12-01 at 21.31.56.png"_s, Kind::Screenshot);
    row(u"Bildschirmfoto 2025-12-01 um 10.00.00.png"_s, Kind::Screenshot);
    row(u"screenshot-list.txt"_s, Kind::Screenshot);
    row(u"Screenshot notes.txt"_s, Kind::Screenshot);
    row(u"Screenshots"_s, Kind::Screenshot);
    row(u"Screen shots"_s, Kind::Screenshot);
    row(u"screenshot"_s, Kind::Screenshot);
    row(u"SCREENSHOT.PNG"_s, Kind::Screenshot);
    row(u"screensho"_s, Kind::Other);
    row(u"Screen  shot.png"_s, Kind::OtherImage);
    row(u" Screenshot.png"_s, Kind::OtherImage);
    row(u".Screenshot.png"_s, Kind::OtherImage);
    row(u"my Screenshot.png"_s, Kind::OtherImage);
    row(u"photo.png"_s, Kind::OtherImage);
    row(u"s"_s, Kind::Other);
    row(u"s\u0301"_s, Kind::Other);
    row(u"スクリーンショッ.png"_s, Kind::OtherImage);

    // Letters whose lower case is ASCII: the Kelvin sign, but not the dotted capital I.
    row(u"\u212Aépernyőkép.png"_s, Kind::Screenshot);
    row(u"\u212Auva\u212Aaappaus.png"_s, Kind::Screenshot);
    row(u"İnstantané.png"_s, Kind::OtherImage);
    row(u"I\u0307nstantané.png"_s, Kind::OtherImage);
    row(u"SCREENSHOT\u0307.png"_s, Kind::OtherImage);
    row(u"BİLDSCHIRMFOTO.png"_s, Kind::OtherImage);
    row(u"ıNSTANTANÉ.png"_s, Kind::OtherImage);

    // Greek: a sigma at the end of a word has a lower case of its own.
    row(u"ΣΤΙΓΜΙΌΤΥΠΟ ΟΘΌΝΗΣ"_s, Kind::Screenshot);
    row(u"ΣΤΙΓΜΙΌΤΥΠΟ ΟΘΌΝΗΣ 1.png"_s, Kind::Screenshot);
    row(u"ΣΤΙΓΜΙΌΤΥΠΟ ΟΘΌΝΗΣ.png"_s, Kind::OtherImage);
    row(u"ΣΤΙΓΜΙΌΤΥΠΟ ΟΘΌΝΗΣΑ.png"_s, Kind::OtherImage);
    row(u"στιγμιότυπο οθόνησ.png"_s, Kind::OtherImage);
    row(u"στιγμι\u1F79τυπο οθ\u1F79νης.png"_s, Kind::Screenshot);

    // Canonical equivalents of single characters and compatibility look-alikes.
    row(u"螢幕截\U0002F84B.png"_s, Kind::Screenshot);
    row(u"ｓｃｒｅｅｎｓｈｏｔ.png"_s, Kind::OtherImage);
    row(u"ｽｸﾘｰﾝｼｮｯﾄ.png"_s, Kind::OtherImage);
    row(u"snimek obrazovky.png"_s, Kind::OtherImage);
    row(u"sníḿek obrazovky.png"_s, Kind::OtherImage);
    row(u"capture d’écran.png"_s, Kind::OtherImage);

    // What belongs to the prefix's last character makes it another one.
    row(u"screenshot\u0301.png"_s, Kind::OtherImage);
    row(u"screenshot\u200D.png"_s, Kind::OtherImage);
    row(u"screenshot\uFE0F.png"_s, Kind::OtherImage);
    row(u"screenshot\u0020\u0301.png"_s, Kind::Screenshot);
    row(u"screenshot\u00E9.png"_s, Kind::Screenshot);
    row(u"screenshot\u202F1.png"_s, Kind::Screenshot);
    row(u"เ"_s + u"ภาพหน้าจอ"_s, Kind::Other);
    row(u"ภาพหน้าจอ\u0E33"_s, Kind::Other);
    row(u"스크린샷\u11A8.png"_s, Kind::OtherImage);
    row(u"화면 캡처\u11A8.png"_s, Kind::OtherImage);

    for (const QString &extension : {u"png"_s, u"jpg"_s, u"jpeg"_s, u"gif"_s, u"tiff"_s, u"heic"_s})
        row(u"photo."_s + extension, Kind::OtherImage);
    row(u"ФОТО.JPeG"_s, Kind::OtherImage);
    row(u"a.b.png"_s, Kind::OtherImage);
    row(u".png"_s, Kind::Other);
    row(u"png"_s, Kind::Other);
    row(u"photo.png "_s, Kind::Other);
    row(u"photo.png."_s, Kind::Other);
    row(u"photo.pngg"_s, Kind::Other);
    row(u"photo.webp"_s, Kind::Other);
    row(u"photo.tif"_s, Kind::Other);
    row(u"photo.TİFF"_s, Kind::Other);
    row(u"photo.png.txt"_s, Kind::Other);
    row(u"photo.p\u0301ng"_s, Kind::Other);
}

void ScreenshotNameTest::kindOfName()
{
    QFETCH(QString, name);
    QFETCH(Kind, kind);
    QCOMPARE(kindOf(name), kind);
}

void ScreenshotNameTest::noOtherCharacterBeginsAPrefix()
{
    struct Prefix {
        QString first;
        std::string rest;
    };
    std::vector<Prefix> prefixes;
    // One prefix for each first character, which is one UTF-16 unit in all of them.
    for (const QString &prefix : kPrefixes) {
        const QString first = decomposed(prefix.left(1));
        if (std::ranges::find(prefixes, first, &Prefix::first) == prefixes.end())
            prefixes.push_back({first, prefix.mid(1).toStdString()});
    }

    for (char32_t character = 1; character <= QChar::LastValidCodePoint; ++character) {
        if (QChar::category(character) == QChar::Other_NotAssigned || QChar::isSurrogate(character))
            continue;
        const QString first = QString::fromUcs4(&character, 1);
        const QString lower = decomposed(first.toLower());
        const std::string utf8 = first.toStdString();
        for (const Prefix &prefix : prefixes) {
            const Kind kind = ScreenshotName::kindOf(utf8 + prefix.rest);
            if ((kind == Kind::Screenshot) != (lower == prefix.first))
                QFAIL(qPrintable(u"U+%1 before %2"_s.arg(uint(character), 4, 16)
                                     .arg(QString::fromStdString(prefix.rest))));
        }
    }
}

void ScreenshotNameTest::extensionIsWhatFileNameSays_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {".png", "..png", "a..png", "a.", ".a.png", "png", "a.png"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void ScreenshotNameTest::extensionIsWhatFileNameSays()
{
    QFETCH(QString, name);
    QCOMPARE(kindOf(name) == Kind::OtherImage, FileName::pathExtension(name) == u"png");
}

void ScreenshotNameTest::keysAreEqualForEquivalentNamesOnly()
{
    const auto key = [](const QString &name) {
        return ScreenshotName::canonicalKey(name.toStdString());
    };
    QCOMPARE(key(u"Screenshot 1.png"_s), std::string("Screenshot 1.png"));
    QCOMPARE(key(u"Ke\u0301p"_s), key(u"Kép"_s));
    QCOMPARE(key(u"\u212Aép"_s), key(u"Kép"_s));
    QCOMPARE(key(u"ㅎ"_s) == key(u"\u1112"_s), false);
    QCOMPARE(key(u"kép"_s) == key(u"Kép"_s), false);
    QCOMPARE(key(u"Kep"_s) == key(u"Kép"_s), false);
}

void ScreenshotNameTest::asciiIsTold()
{
    for (int length = 0; length < 40; ++length) {
        const std::string ascii(static_cast<std::size_t>(length), '\x7F');
        QVERIFY(ScreenshotName::isAscii(ascii));
        for (std::size_t i = 0; i < ascii.size(); ++i) {
            std::string other = ascii;
            other[i] = '\x80';
            QVERIFY(!ScreenshotName::isAscii(other));
        }
    }
}

TESSERY_TEST_MAIN(QCoreApplication, ScreenshotNameTest)
#include "ScreenshotNameTest.moc"
