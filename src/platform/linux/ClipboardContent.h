#pragma once

#include "platform/Pasteboard.h"
#include "platform/linux/ClipboardSource.h"

#include <memory>

/// The clipboard's content, made out of the forms in which its owner offers it.
class ClipboardContent final : public PasteboardContent {
public:
    /// Without a source, or with one that has nothing, the content is empty.
    explicit ClipboardContent(std::unique_ptr<ClipboardSource> source);

    QCoro::Task<QList<QUrl>> addresses() override;
    QCoro::Task<QString> text() override;
    QCoro::Task<std::optional<QByteArray>> image() override;

private:
    /// The types on offer, fetched once; none if the content is a secret.
    [[nodiscard]] QCoro::Task<QStringList> types();
    /// The content as type; empty if it is not to be had.
    [[nodiscard]] QCoro::Task<QByteArray> data(QString type);

    std::unique_ptr<ClipboardSource> m_source; ///< Null once nothing more is to be had.
    std::optional<QStringList> m_types;
};
