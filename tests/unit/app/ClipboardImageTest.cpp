#include "app/ClipboardImage.h"
#include "support/TestMain.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImage>
#include <QImageReader>
#include <QThread>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// Every pixel differs from its neighbours, in alpha as well where the format has it.
QImage picture(QImage::Format format)
{
    QImage image(17, 9, format);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y,
                                QColor::fromRgba64(QRgba64::fromRgba64(
                                    static_cast<quint16>(x * 3801), static_cast<quint16>(y * 7013),
                                    12345, static_cast<quint16>(65535 - x * 2000))));
    }
    return image;
}

QByteArray encoded(const QImage &image, const char *format, int quality = -1)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format, quality))
        qFatal("cannot encode %s", format);
    return data;
}

std::optional<QByteArray> converted(const QByteArray &data)
{
    return QCoro::waitFor(ClipboardImage::pngData(data));
}

} // namespace

class ClipboardImageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void pngComesBackByteForByte_data()
    {
        QTest::addColumn<QByteArray>("png");
        QTest::newRow("alpha") << encoded(picture(QImage::Format_ARGB32), "png");
        QTest::newRow("16 bit") << encoded(picture(QImage::Format_RGBA64), "png");
        QTest::newRow("not compressed") << encoded(picture(QImage::Format_RGB32), "png", 100);
        QTest::newRow("palette") << encoded(
            picture(QImage::Format_RGB32).convertToFormat(QImage::Format_Indexed8), "png");
    }
    void pngComesBackByteForByte()
    {
        QFETCH(QByteArray, png);
        QVERIFY(ClipboardImage::isWholePng(png));
        QCOMPARE(converted(png), png);
    }

    void otherFormatsBecomePngWithoutLoss_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<QImage::Format>("pixels");
        QTest::newRow("bmp") << QByteArray("bmp") << QImage::Format_RGB32;
        QTest::newRow("ppm") << QByteArray("ppm") << QImage::Format_RGB32;
        QTest::newRow("tiff") << QByteArray("tiff") << QImage::Format_RGB32;
        QTest::newRow("tiff with alpha") << QByteArray("tiff") << QImage::Format_ARGB32;
        QTest::newRow("tiff with 16 bit") << QByteArray("tiff") << QImage::Format_RGBA64;
        QTest::newRow("jpeg") << QByteArray("jpeg") << QImage::Format_RGB32;
        QTest::newRow("webp") << QByteArray("webp") << QImage::Format_ARGB32;
    }
    void otherFormatsBecomePngWithoutLoss()
    {
        QFETCH(QByteArray, format);
        QFETCH(QImage::Format, pixels);
        const QByteArray source = encoded(picture(pixels), format.constData(), 100);
        const QImage expected = QImage::fromData(source);
        QVERIFY(!expected.isNull());

        const std::optional<QByteArray> png = converted(source);
        QVERIFY(png);
        QVERIFY(ClipboardImage::isWholePng(*png));
        const QImage image = QImage::fromData(*png, "png");
        QCOMPARE(image.size(), expected.size());
        QCOMPARE(image.hasAlphaChannel(), expected.hasAlphaChannel());
        QCOMPARE(image.depth() == 64, expected.depth() == 64);
        const QImage::Format compared =
            expected.depth() == 64 ? QImage::Format_RGBA64 : QImage::Format_ARGB32;
        QCOMPARE(image.convertToFormat(compared), expected.convertToFormat(compared));
    }

    void photographIsTurnedTheWayItWasTaken()
    {
        // A JPEG file begins with two bytes; what follows here says "turn right".
        const QByteArray turned = QByteArray::fromHex("ffe10022457869660000"
                                                      "4d4d002a00000008"
                                                      "0001011200030000000100060000"
                                                      "00000000");
        QByteArray jpeg = encoded(picture(QImage::Format_RGB32), "jpeg");
        jpeg.insert(2, turned);
        const std::optional<QByteArray> png = converted(jpeg);
        QVERIFY(png);
        QCOMPARE(QImage::fromData(*png).size(), QSize(9, 17));
    }

    void brokenDataIsNoImage_data()
    {
        QTest::addColumn<QByteArray>("data");
        const QByteArray png = encoded(picture(QImage::Format_RGB32), "png");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("not an image");
        QTest::newRow("signature") << png.first(8);
        QTest::newRow("header") << png.first(33);
        QTest::newRow("half") << png.first(png.size() / 2);
        QByteArray flipped = png;
        flipped[60] = static_cast<char>(~flipped.at(60));
        QTest::newRow("one byte wrong") << flipped;
    }
    void brokenDataIsNoImage()
    {
        QFETCH(QByteArray, data);
        // What the decoder has to say about it is of no interest.
        const QtMessageHandler handler = qInstallMessageHandler(nullptr);
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        const std::optional<QByteArray> png = converted(data);
        qInstallMessageHandler(handler);
        QVERIFY(!ClipboardImage::isWholePng(data));
        QCOMPARE(png, std::nullopt);
    }

    void everyPngCutShortIsNotWhole()
    {
        const QByteArray png = encoded(picture(QImage::Format_RGB32), "png");
        for (qsizetype size = 0; size < png.size(); ++size)
            QVERIFY(!ClipboardImage::isWholePng(png.first(size)));
        QVERIFY(!ClipboardImage::isWholePng(png + 'x'));
    }

    void everyPngWithAByteChangedIsNotWhole()
    {
        QByteArray png = encoded(picture(QImage::Format_RGB32), "png");
        for (char &byte : png) {
            byte = static_cast<char>(byte ^ 1);
            QVERIFY(!ClipboardImage::isWholePng(png));
            byte = static_cast<char>(byte ^ 1);
        }
        QVERIFY(ClipboardImage::isWholePng(png));
    }

    void largeImageIsConvertedBesideTheMainThread()
    {
        // A bitmap of 100 megapixels, all of one colour but for its last pixel, which is the first
        // in the file.
        QImage image(10000, 10000, QImage::Format_RGB888);
        image.fill(Qt::darkCyan);
        const QByteArray bitmap = encoded(image, "bmp");
        image = {};

        int turns = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&turns] { ++turns; });
        timer.start(1);
        const std::optional<QByteArray> png = converted(bitmap);
        QVERIFY(png);
        QVERIFY2(turns >= 100, qPrintable(QString::number(turns)));
        QBuffer buffer;
        buffer.setData(*png);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        QCOMPARE(QImageReader(&buffer, "png").size(), QSize(10000, 10000));
    }
};

TESSERY_TEST_MAIN(QGuiApplication, ClipboardImageTest)
#include "ClipboardImageTest.moc"
