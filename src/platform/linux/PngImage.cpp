#include "platform/linux/PngImage.h"

#include <QImage>

#include <png.h>

QByteArray PngImage::encode(const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGBA8888);
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(pixels.width());
    header.height = static_cast<png_uint_32>(pixels.height());
    header.format = PNG_FORMAT_RGBA;
    const auto lineLength = static_cast<png_int_32>(pixels.bytesPerLine());

    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(header);
    QByteArray png(static_cast<qsizetype>(size), Qt::Uninitialized);
    const int isWritten = png_image_write_to_memory(&header, png.data(), &size, 0,
                                                    pixels.constBits(), lineLength, nullptr);
    png.resize(isWritten != 0 ? static_cast<qsizetype>(size) : 0);
    return png;
}
