#include "app/AppState.h"

#include "monitor/ScreenshotMonitor.h"
#include "platform/Platform.h"

#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

UploadService::Environment stoppedBy(std::stop_token stop, UploadService::Environment environment)
{
    environment.stop = std::move(stop);
    return environment;
}

} // namespace

AppState::AppState(Platform &platform, UploadService::Environment environment, const Clock &clock,
                   SecureRandom &random)
    : m_platform(platform)
    , m_clock(clock)
    , m_random(random)
    , m_lastUploadStatus(u"Ready"_s)
    , m_settings(UploadSettings::load())
    , m_temporaryFolder(environment.temporaryFolder)
    , m_uploadService(stoppedBy(m_tasks.stopToken(), std::move(environment)))
{
    setupNotifications();
    setupGlobalHotkey();
    // A keyring that is unlocked later makes the settings valid, which the menu shows.
    m_platform.secrets->unlock([self = QPointer(this)] {
        if (self)
            Q_EMIT self->objectWillChange();
    });
}

AppState::~AppState()
{
    Q_ASSERT(m_tasks.running() == 0);
    cleanupEventTap();
    m_platform.notifications->setDelegate(nullptr);
}

void AppState::setSettings(const UploadSettings &settings)
{
    Q_EMIT objectWillChange();
    m_settings = settings;
    m_uploadService.forgetServers(); // They may have been set up anew, too.
}

void AppState::setLastUploadStatus(const QString &status)
{
    Q_EMIT objectWillChange();
    m_lastUploadStatus = status;
}

void AppState::setIsMonitoring(bool isMonitoring)
{
    Q_EMIT objectWillChange();
    m_isMonitoring = isMonitoring;
}

QString AppState::generateRemoteFilename(const QUrl &fileURL) const
{
    return remoteFilename(m_settings, fileURL, m_clock, m_random);
}
