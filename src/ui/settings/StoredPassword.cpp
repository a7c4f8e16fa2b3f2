#include "ui/settings/StoredPassword.h"

#include "settings/KeychainHelper.h"

#include <utility>

StoredPassword::StoredPassword()
{
    m_gathering.setSingleShot(true);
    connect(&m_gathering, &QTimer::timeout, this, &StoredPassword::flush);
}

StoredPassword::~StoredPassword()
{
    blockSignals(true);
    storeGathered();
}

bool StoredPassword::isFilledIn() const
{
    return !(m_state == State::Gathering ? m_text : m_inKeychain).isEmpty();
}

void StoredPassword::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_state = State::Gathering;
    // Not started anew by every keystroke as long as all is well: typing on delays nothing.
    if (m_wasRefused)
        m_gathering.start(kPauseAfterRefusal);
    else if (!m_gathering.isActive())
        m_gathering.start(kGatheringTime);
    Q_EMIT changed();
}

void StoredPassword::storeGathered()
{
    if (m_state == State::Gathering)
        flush();
}

bool StoredPassword::flush()
{
    m_gathering.stop();
    if (m_state == State::Stored)
        return true;
    const bool stored = KeychainHelper::savePassword(m_text);
    m_wasRefused = !stored;
    m_state = stored ? State::Stored : State::Refused;
    if (stored) {
        m_inKeychain = m_text;
        m_isLocked = false;
    }
    Q_EMIT changed();
    return stored;
}

void StoredPassword::refresh()
{
    if (m_state == State::Gathering)
        return;
    const std::optional<QString> found = KeychainHelper::loadPassword();
    const QString inKeychain = found.value_or(QString());
    const bool wasLocked = std::exchange(m_isLocked, !found && KeychainHelper::isLocked());
    if (m_state == State::Refused && found && inKeychain != m_text) {
        // It answers again, but what it holds is older than what was typed.
        m_inKeychain = inKeychain;
        flush();
        return;
    }
    if (inKeychain == m_inKeychain && m_state == State::Stored && m_isLocked == wasLocked)
        return;
    m_inKeychain = inKeychain;
    if (m_state == State::Stored) {
        m_text = inKeychain;
    } else if (found) {
        m_state = State::Stored;
        m_wasRefused = false;
    }
    Q_EMIT changed();
}
