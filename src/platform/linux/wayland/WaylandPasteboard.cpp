#include "platform/linux/wayland/WaylandPasteboard.h"

#include "base/Log.h"
#include "platform/linux/ClipboardContent.h"
#include "platform/linux/wayland/WaylandClipboardSource.h"

#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How long programs that are just reading the text hold up the end of this one.
constexpr auto kPatienceAtTheEnd = 1s;

/// Why the text is not on the clipboard; empty if it is, and if that has been logged already.
QString failureText(ClipboardClaim::Outcome outcome)
{
    switch (outcome) {
    case ClipboardClaim::Outcome::Held:
    case ClipboardClaim::Outcome::NoAccess:
        break;
    case ClipboardClaim::Outcome::NotConfirmed:
        return u"⚠️ The compositor has not put the text on the clipboard"_s;
    case ClipboardClaim::Outcome::TakenOver:
        return u"⚠️ Another program has taken the clipboard over"_s;
    }
    return {};
}

} // namespace

std::unique_ptr<PasteboardContent> WaylandPasteboard::content()
{
    std::unique_ptr<DataControlDevice> device = DataControlDevice::open();
    return std::make_unique<ClipboardContent>(
        device ? std::make_unique<WaylandClipboardSource>(std::move(device)) : nullptr);
}

QCoro::Task<bool> WaylandPasteboard::writeText(QString text)
{
    // One after the other, so that the last one is the one that stays.
    const auto ended = std::make_shared<OneShot>();
    const std::shared_ptr<OneShot> before = std::exchange(m_lastWrite, ended);
    if (before)
        co_await *before;
    const bool isWritten = co_await claimWith(text);
    ended->fire();
    co_return isWritten;
}

QCoro::Task<bool> WaylandPasteboard::claimWith(QString text)
{
    ClipboardClaim::Outcome outcome = ClipboardClaim::Outcome::NoAccess;
    if (std::unique_ptr<DataControlDevice> device = DataControlDevice::open()) {
        auto claim = std::make_unique<ClipboardClaim>(std::move(device));
        // The names under which programs look for text.
        const QStringList types = {u"text/plain;charset=utf-8"_s, u"text/plain"_s, u"UTF8_STRING"_s,
                                   u"STRING"_s, u"TEXT"_s};
        DataControlSource::OnSend onSend = sender(text.toUtf8());
        outcome = co_await claim->take(types, std::move(onSend));
        if (outcome == ClipboardClaim::Outcome::Held) {
            claim->setChangeHandler([this] { forgetLostClaimLater(); });
            m_claim = std::move(claim);
        }
    }
    if (const QString failure = failureText(outcome); !failure.isEmpty())
        Log::line(failure);
    co_return outcome == ClipboardClaim::Outcome::Held;
}

DataControlSource::OnSend WaylandPasteboard::sender(const QByteArray &text)
{
    return [this, text](UniqueFd reader) {
        serve(std::move(reader), text);
    };
}

void WaylandPasteboard::serve(UniqueFd reader, const QByteArray &text)
{
    m_writers.push_back(
        std::make_unique<PipeWriter>(std::move(reader), text, m_patienceWithReader, [this] {
            std::erase_if(m_writers, [](const auto &writer) { return writer->hasEnded(); });
            if (m_writers.empty() && m_allServed)
                m_allServed->fire();
        }));
}

void WaylandPasteboard::forgetLostClaimLater()
{
    QMetaObject::invokeMethod(
        &m_context,
        [this] {
            if (m_claim && !m_claim->isHeld())
                m_claim.reset();
        },
        Qt::QueuedConnection);
}

QCoro::Task<> WaylandPasteboard::handOver()
{
    if (m_writers.empty())
        co_return;
    OneShot ended;
    m_allServed = &ended;
    QTimer::singleShot(kPatienceAtTheEnd, &m_context, [this] {
        if (m_allServed)
            m_allServed->fire();
    });
    co_await ended;
    m_allServed = nullptr;
}
