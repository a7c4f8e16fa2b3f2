#include "platform/linux/wayland/ClipboardClaim.h"

#include "base/OneShot.h"

#include <QTimer>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How long the compositor may take to put what was written on the clipboard.
constexpr auto kPatienceWithCompositor = 5s;

} // namespace

ClipboardClaim::ClipboardClaim(std::unique_ptr<DataControlDevice> device)
    : m_device(std::move(device))
    , m_ownType(u"application/x-tessery-"_s + QUuid::createUuid().toString(QUuid::Id128))
{
}

QCoro::Task<ClipboardClaim::Outcome> ClipboardClaim::take(QStringList types,
                                                          DataControlSource::OnSend onSend)
{
    const bool isTold = co_await m_device->begin();
    if (!isTold)
        co_return Outcome::NoAccess;
    OneShot ended;
    QTimer patience;
    patience.setSingleShot(true);
    patience.callOnTimeout(&patience, [&ended] { ended.fire(); });
    patience.start(kPatienceWithCompositor);
    // From here on to the end of the wait a change is the answer, or the end of all hope.
    m_onChange = [this, &ended] {
        if (m_hasComeBack || m_source->isCancelled() || !m_device->isUsable())
            ended.fire();
    };
    types << m_ownType;
    m_source = m_device->claim(types, std::move(onSend));
    m_source->setCancelledHandler([this] { changed(); });
    m_device->setChangeHandler([this] { changed(); });
    m_device->flush();
    co_await ended;
    m_onChange = nullptr;
    if (isHeld())
        co_return Outcome::Held;
    co_return m_hasComeBack || m_source->isCancelled() ? Outcome::TakenOver : Outcome::NotConfirmed;
}

bool ClipboardClaim::isHeld() const
{
    const DataControlOffer *const selection = m_device->selection();
    return selection && selection->types().contains(m_ownType) && !m_source->isCancelled();
}

void ClipboardClaim::changed()
{
    m_hasComeBack = m_hasComeBack || isHeld();
    if (m_onChange)
        m_onChange();
}
