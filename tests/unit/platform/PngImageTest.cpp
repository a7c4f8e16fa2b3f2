#include "platform/linux/PngImage.h"

#include "support/TestMain.h"

#include <QColorSpace>
#include <QImage>
#include <QImageReader>
#include <QBuffer>

using namespace Qt::StringLiterals;

/// What is written here, the toolkit reads.
class PngImageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void isReadBackAsItWas_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("one pixel") << QSize(1, 1);
        QTest::newRow("symbol") << QSize(16, 16);
        QTest::newRow("wide") << QSize(300, 2);
        QTest::newRow("high") << QSize(3, 257);
    }
    void isReadBackAsItWas()
    {
        QFETCH(QSize, size);
        QImage image(size, QImage::Format_ARGB32);
        image.setColorSpace(QColorSpace::SRgb); // As the file says.
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, qRgba(x & 255, y & 255, (x * 7 + y) & 255, (x + y * 5) & 255));
        }
        const QImage read = readBack(PngImage::encode(image));
        QCOMPARE(read.convertToFormat(QImage::Format_ARGB32), image);
    }

    void premultipliedColoursBecomePlain()
    {
        QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
        image.fill(QColor(255, 0, 0, 128));
        QCOMPARE(readBack(PngImage::encode(image)).pixelColor(15, 15), QColor(255, 0, 0, 128));
    }

    void nothingIsTransparentBlackByAccident()
    {
        QImage image(16, 16, QImage::Format_RGB32);
        image.fill(Qt::black);
        QCOMPARE(readBack(PngImage::encode(image)).pixelColor(0, 0), QColor(Qt::black));
    }

private:
    /// Null where the reader finds the smallest fault.
    static QImage readBack(QByteArray png)
    {
        QBuffer buffer(&png);
        QImageReader reader(&buffer, "png");
        const QImage image = reader.read();
        return reader.error() == QImageReader::UnknownError && buffer.atEnd() ? image : QImage();
    }
};

TESSERY_TEST_MAIN(QCoreApplication, PngImageTest)
#include "PngImageTest.moc"
