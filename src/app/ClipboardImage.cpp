#include "app/ClipboardImage.h"

#include <QBuffer>
#include <QCoro/QCoroFuture>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPromise>
#include <QThreadPool>
#include <QtEndian>

#include <zlib.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

// The layout of a PNG file: the signature, then chunks of length, type, data and checksum.
constexpr QByteArrayView kSignature("\x89PNG\r\n\x1a\n", 8);
constexpr qsizetype kLengthBytes = 4;
constexpr qsizetype kTypeBytes = 4;
constexpr qsizetype kChecksumBytes = 4;
constexpr qsizetype kHeaderDataBytes = 13;

/// In megabytes, for the decoded image: 100 megapixels of 16 bits in four channels are 800.
constexpr int kMostMemory = 1024;

/// From 0, none, to 100. A screenshot takes a quarter of the default's time, for 8 % more bytes.
constexpr int kCompression = 20;

struct Chunk {
    QByteArrayView type;
    qsizetype dataSize = 0;
    qsizetype end = 0; ///< Where the next one begins.
};

/// The chunk that begins at offset, if it is whole.
std::optional<Chunk> chunkAt(const QByteArray &data, qsizetype offset)
{
    if (data.size() - offset < kLengthBytes + kTypeBytes + kChecksumBytes)
        return {};
    const char *const begin = data.constData() + offset;
    const auto size = static_cast<qsizetype>(qFromBigEndian<quint32>(begin));
    const qsizetype end = offset + kLengthBytes + kTypeBytes + size + kChecksumBytes;
    if (end > data.size())
        return {};
    const QByteArrayView covered(begin + kLengthBytes, kTypeBytes + size);
    const auto checksum = qFromBigEndian<quint32>(begin + kLengthBytes + covered.size());
    const auto *const bytes = reinterpret_cast<const Bytef *>(covered.data());
    if (::crc32_z(0, bytes, static_cast<z_size_t>(covered.size())) != checksum)
        return {};
    return Chunk{covered.first(kTypeBytes), size, end};
}

std::optional<QByteArray> encodedAsPng(const QByteArray &data)
{
    QByteArray copy = data;
    QBuffer source(&copy);
    source.open(QIODevice::ReadOnly);
    QImageReader reader(&source);
    reader.setAutoTransform(true); // Photographs tell which side is up.
    const QImage image = reader.read();
    if (image.isNull())
        return {};
    QByteArray png;
    QBuffer target(&png);
    target.open(QIODevice::WriteOnly);
    QImageWriter writer(&target, "png");
    writer.setCompression(kCompression);
    return writer.write(image) ? std::optional(png) : std::nullopt;
}

QFuture<std::optional<QByteArray>> pngBesideTheMainThread(const QByteArray &data)
{
    const auto promise = std::make_shared<QPromise<std::optional<QByteArray>>>();
    QThreadPool::globalInstance()->start([promise, data] {
        promise->start();
        promise->addResult(ClipboardImage::isWholePng(data) ? data : encodedAsPng(data));
        promise->finish();
    });
    return promise->future();
}

} // namespace

bool ClipboardImage::isWholePng(const QByteArray &data)
{
    if (!data.startsWith(kSignature))
        return false;
    std::optional<Chunk> chunk = chunkAt(data, kSignature.size());
    if (!chunk || chunk->type != "IHDR" || chunk->dataSize != kHeaderDataBytes)
        return false;
    bool hasPixels = false;
    while (chunk && chunk->type != "IEND") {
        hasPixels = hasPixels || chunk->type == "IDAT";
        chunk = chunkAt(data, chunk->end);
    }
    return chunk && hasPixels && chunk->end == data.size();
}

QCoro::Task<std::optional<QByteArray>> ClipboardImage::pngData(QByteArray data)
{
    QImageReader::setAllocationLimit(kMostMemory);
    const QFuture<std::optional<QByteArray>> png = pngBesideTheMainThread(data);
    co_return co_await png;
}
