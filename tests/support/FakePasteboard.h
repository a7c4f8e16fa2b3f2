#pragma once

#include "base/OneShot.h"
#include "platform/Pasteboard.h"

/// A clipboard that can hold one content of each kind at once.
class FakePasteboard final : public Pasteboard {
public:
    std::unique_ptr<PasteboardContent> content() override
    {
        ++timesRead;
        return std::make_unique<Content>(*this);
    }

    QCoro::Task<bool> writeText(QString newText) override
    {
        if (!isWritable)
            co_return false;
        addresses.clear();
        text = newText;
        image.reset();
        if (writingEnds)
            co_await *writingEnds;
        co_return true;
    }

    QCoro::Task<> handOver() override
    {
        ++timesHandedOver;
        co_return;
    }

    QList<QUrl> addresses;
    QString text;
    std::optional<QByteArray> image;
    bool isWritable = true;
    OneShot *writingEnds = nullptr; ///< If set, it is not told before that whether text is there.
    int timesRead = 0;
    int timesHandedOver = 0;
    QStringList asked; ///< The kinds that were asked for, in order.

private:
    class Content final : public PasteboardContent {
    public:
        explicit Content(FakePasteboard &of) : m_of(of) { }
        QCoro::Task<QList<QUrl>> addresses() override
        {
            m_of.asked << QStringLiteral("addresses");
            QList<QUrl> copy = m_of.addresses; // QCoro moves even what is no temporary.
            co_return copy;
        }
        QCoro::Task<QString> text() override
        {
            m_of.asked << QStringLiteral("text");
            QString copy = m_of.text;
            co_return copy;
        }
        QCoro::Task<std::optional<QByteArray>> image() override
        {
            m_of.asked << QStringLiteral("image");
            std::optional<QByteArray> copy = m_of.image;
            co_return copy;
        }

    private:
        FakePasteboard &m_of;
    };
};
