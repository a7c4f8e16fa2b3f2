// Renders a drawing as a square PNG file, while the program is built:
//
//   icon_renderer DRAWING.svg SIZE PICTURE.png
#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

int main(int argc, char *argv[])
{
    if (argc != 4) {
        std::fputs("icon_renderer DRAWING.svg SIZE PICTURE.png\n", stderr);
        return EXIT_FAILURE;
    }
    const QString picture = QString::fromLocal8Bit(argv[3]);
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    const int size = std::atoi(argv[2]);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    if (!drawing.isValid() || image.isNull()) {
        std::fprintf(stderr, "%s: cannot be drawn at %s pixels\n", argv[1], argv[2]);
        return EXIT_FAILURE;
    }
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    if (!image.convertToFormat(QImage::Format_ARGB32).save(picture, "PNG")) {
        std::fprintf(stderr, "%s: cannot be written\n", argv[3]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
