#pragma once

#include <QByteArray>

class QImage;

/// PNG files for the bus. QImage::save() loads every image plugin of the system to find out whether
/// one of them writes PNG, which costs each start of the program time and memory.
namespace PngImage {

/// The image as a PNG file; empty if image is null.
QByteArray encode(const QImage &image);

} // namespace PngImage
