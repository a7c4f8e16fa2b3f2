#include "ui/settings/SettingsDraft.h"

#include <QUrl>

using namespace Qt::StringLiterals;

void SettingsDraft::begin(const UploadSettings &saved)
{
    m_hasManuallyEditedPort = saved.port != UploadSettings().port;
    m_settings = saved;
    m_settings.hostname = cleanedHostname(saved.hostname);
    Q_EMIT changed();
}

void SettingsDraft::edit(const std::function<void(UploadSettings &settings)> &change)
{
    const UploadSettings before = m_settings;
    change(m_settings);
    if (m_settings.hostname != before.hostname)
        m_settings.hostname = cleanedHostname(m_settings.hostname);
    const bool portChanged = m_settings.port != before.port;
    if (m_settings.serverType != before.serverType && !portChanged && !m_hasManuallyEditedPort)
        m_settings.port = defaultPort(m_settings.serverType);
    // The port that came with the protocol counts as well: later protocols keep it.
    if (m_settings.port != before.port)
        m_hasManuallyEditedPort = true;
    if (m_settings != before)
        Q_EMIT changed();
}

std::int64_t defaultPort(UploadSettings::ServerType type)
{
    switch (type) {
    case UploadSettings::ServerType::ftp:
        return 21;
    case UploadSettings::ServerType::ftps:
        return 990;
    case UploadSettings::ServerType::sftp:
        return 22;
    }
    Q_UNREACHABLE();
}

QString cleanedHostname(const QString &text)
{
    if (!text.contains("://"_L1))
        return text;
    const QString host = QUrl(text.trimmed()).host();
    return host.isEmpty() ? text : host;
}
