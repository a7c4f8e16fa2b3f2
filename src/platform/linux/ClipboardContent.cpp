#include "platform/linux/ClipboardContent.h"

#include "base/Log.h"
#include "platform/linux/ClipboardFormats.h"

#include <QImageReader>

#include <utility>

using namespace Qt::StringLiterals;

ClipboardContent::ClipboardContent(std::unique_ptr<ClipboardSource> source)
    : m_source(std::move(source))
{
}

QCoro::Task<QList<QUrl>> ClipboardContent::addresses()
{
    const QStringList offered = co_await types();
    const QString type = ClipboardFormats::addressType(offered);
    const QByteArray list = co_await data(type);
    co_return ClipboardFormats::addresses(type, list);
}

QCoro::Task<QString> ClipboardContent::text()
{
    const QStringList offered = co_await types();
    const QString type = ClipboardFormats::textType(offered);
    const QByteArray encoded = co_await data(type);
    co_return ClipboardFormats::text(type, encoded);
}

QCoro::Task<std::optional<QByteArray>> ClipboardContent::image()
{
    const QStringList offered = co_await types();
    const QString type = ClipboardFormats::imageType(offered, QImageReader::supportedMimeTypes());
    const QByteArray encoded = co_await data(type);
    co_return encoded.isEmpty() ? std::nullopt : std::optional(encoded);
}

QCoro::Task<QStringList> ClipboardContent::types()
{
    if (!m_types) {
        m_types = QStringList();
        std::optional<QStringList> offered;
        if (m_source)
            offered = co_await m_source->types();
        if (!offered) {
            m_source.reset();
        } else if (offered->contains(ClipboardFormats::kSecretHint)) {
            const QByteArray hint = co_await data(ClipboardFormats::kSecretHint);
            // A hint that is not to be had may have said so.
            if (!m_source || ClipboardFormats::saysSecret(hint)) {
                Log::line(u"📋 The clipboard holds a secret, leaving it alone"_s);
                m_source.reset();
            }
        }
        if (m_source)
            m_types = offered;
    }
    QStringList copy = *m_types; // QCoro moves even what is no temporary.
    co_return copy;
}

QCoro::Task<QByteArray> ClipboardContent::data(QString type)
{
    if (!m_source || type.isEmpty())
        co_return QByteArray();
    const std::optional<QByteArray> answer = co_await m_source->data(type);
    if (!answer) {
        Log::line(u"⚠️ The program that owns the clipboard does not answer"_s);
        m_source.reset();
    }
    co_return answer.value_or(QByteArray());
}
