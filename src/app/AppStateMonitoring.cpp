#include "app/AppState.h"

#include "app/PublicAddress.h"
#include "base/FileName.h"
#include "base/Log.h"
#include "base/LoggedName.h"
#include "base/SystemError.h"
#include "monitor/ScreenshotMonitor.h"
#include "platform/Platform.h"
#include "upload/UploadError.h"

#include <QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

void AppState::startMonitoring()
{
    if (m_isMonitoring) {
        Log::line(u"⚠️ Already monitoring, skipping start"_s);
        return;
    }
    Log::line(u"🚀 Starting monitoring..."_s);
    Log::line(u"🚀 Settings valid: "_s + (m_settings.isValid() ? u"true"_s : u"false"_s));
    Log::line(u"🚀 Server: "_s + m_settings.hostname);

    requestDesktopAccess();
    m_screenshotMonitor = std::make_unique<ScreenshotMonitor>(
        *m_platform.folders, m_platform.makeFolderWatcher,
        // The monitor is ours and calls nobody once it is gone.
        [this](const QUrl &fileURL) { screenshotArrived(fileURL); });
    const QStringList failed = m_screenshotMonitor->start();

    setIsMonitoring(true);
    setLastUploadStatus(u"Monitoring for screenshots..."_s);
    if (failed.isEmpty())
        Log::line(u"✅ Monitoring started successfully"_s);
    else
        sendNotification(u"❌ Monitoring Failed"_s,
                         u"Cannot watch for screenshots in: "_s + failed.join(u", "_s), true);
}

void AppState::stopMonitoring()
{
    if (m_screenshotMonitor)
        m_screenshotMonitor->stop();
    m_screenshotMonitor.reset();
    setIsMonitoring(false);
    setLastUploadStatus(u"Monitoring stopped"_s);
}

void AppState::requestDesktopAccess()
{
    // Where the desktop folder has a localised name there is no "Desktop" to ask for.
    QString desktop = m_platform.folders->home() + u"/Desktop"_s;
    if (!QFileInfo::exists(desktop))
        desktop = m_platform.folders->desktop();
    if (QFileInfo(desktop).isReadable())
        return;
    Log::line(u"⚠️ No access to Desktop, requesting permission..."_s);
    m_platform.folderAccessPanel->ask(
        u"Please select your Desktop folder to allow screenshot monitoring"_s, u"Grant Access"_s,
        desktop, [](bool confirmed) {
            Log::line(confirmed ? u"✅ Desktop access granted"_s : u"❌ Desktop access denied"_s);
        });
}

void AppState::screenshotArrived(const QUrl &fileURL)
{
    Log::line(u"📸 Screenshot callback received for: "_s
              + LoggedName::of(FileName::lastPathComponent(fileURL.toLocalFile())));
    m_tasks.start(handleNewScreenshot(fileURL));
}

QCoro::Task<> AppState::handleNewScreenshot(QUrl fileURL)
{
    const QString fileName = FileName::lastPathComponent(FileName::pathOf(fileURL));
    Log::line(u"🎯 handleNewScreenshot called for: "_s + LoggedName::of(fileName));
    if (!m_settings.isValid()) {
        Log::line(u"❌ Settings not valid"_s);
        setLastUploadStatus(u"Error: Settings not configured"_s);
        askForSettings();
        co_return;
    }
    const QString remoteName = generateRemoteFilename(fileURL);
    setLastUploadStatus(u"📤 Uploading "_s + fileName + u"..."_s);
    sendNotification(u"Uploading Screenshot"_s, fileName, false);
    co_await uploadFile(fileURL, remoteName, fileName);
}

QCoro::Task<> AppState::uploadFile(QUrl fileURL, QString remoteFileName, QString displayName)
{
    // Others may be saved meanwhile, but the address is that of the server that got the file.
    const UploadSettings settings = m_settings;
    // Quitting drains the tasks before this object goes, so it is alive after the wait.
    std::optional<QString> error;
    try {
        co_await m_uploadService.upload(fileURL, settings, remoteFileName);
    } catch (const UploadError &uploadError) {
        error = uploadError.errorDescription();
    } catch (const SystemError &systemError) {
        error = systemError.description();
    } catch (const std::exception &other) {
        error = QString::fromUtf8(other.what());
    }
    if (error)
        reportFailure(*error);
    else
        co_await reportSuccess(publicAddress(settings.publicURLBase, remoteFileName), displayName);
}

QCoro::Task<> AppState::reportSuccess(QString url, QString displayName)
{
    const bool copied = co_await m_platform.pasteboard->writeText(url);
    setLastUploadStatus(u"✅ Uploaded: "_s + displayName);
    if (copied) {
        sendNotification(u"✅ Screenshot Uploaded"_s, u"URL copied to clipboard: "_s + url, false);
    } else {
        // The file is on the server, but saying that its address was copied would be a lie.
        Log::line(u"❌ Could not write to the clipboard"_s);
        sendNotification(u"✅ Screenshot Uploaded"_s,
                         u"URL could not be copied to clipboard: "_s + url, true);
    }
}

void AppState::reportFailure(const QString &error)
{
    setLastUploadStatus(u"❌ Upload failed: "_s + error);
    sendNotification(u"❌ Upload Failed"_s, error, true);
}
