#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>

#include <optional>

/// Images from the clipboard as PNG, without loss.
namespace ClipboardImage {

/// Whether data is a PNG image from its first byte to its last, by its chunks and their checksums.
/// Its pixels are not decoded.
bool isWholePng(const QByteArray &data);

/// The image that data encodes, in any format that the toolkit reads, as PNG; absent if it is
/// none. PNG comes back byte for byte. The work is done beside the main thread.
[[nodiscard]] QCoro::Task<std::optional<QByteArray>> pngData(QByteArray data);

} // namespace ClipboardImage
