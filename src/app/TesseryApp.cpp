#include "app/TesseryApp.h"

#include "base/Clock.h"
#include "base/SecureRandom.h"
#include "platform/Platform.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>

TesseryApp::TesseryApp(Platform &platform)
    : m_platform(platform)
    , m_appState(platform, environment(), Clock::system(), SecureRandom::system())
    , m_menuBarView(m_appState, *platform.menuBarExtra,
                    {.openSettings = [this] { openSettings(); },
                     .quit =
                         [] {
                             QCoreApplication::quit();
                         }})
{
    QApplication::setQuitOnLastWindowClosed(false);
}

TesseryApp::~TesseryApp() = default;

UploadService::Environment TesseryApp::environment() const
{
    return {.homeFolder = m_platform.folders->home(), .temporaryFolder = m_temporaryFolder.path()};
}

int TesseryApp::run()
{
    const int result = QCoreApplication::exec();
    // However quitting came about, uploads are told to end, and their tools and files are gone
    // before the program is; the link stays for others to paste.
    m_appState.tasks().requestStop();
    bool isDone = false;
    [[maybe_unused]] const auto winding = windUp(&isDone);
    while (!isDone)
        QCoreApplication::exec(); // Asked to quit once more, it ends too early.
    return result;
}

QCoro::Task<> TesseryApp::windUp(bool *isDone)
{
    co_await m_appState.tasks().drained();
    co_await m_platform.pasteboard->handOver();
    co_await m_appState.tasks().drained(); // What has begun meanwhile has been told to end, too.
    *isDone = true;
    QCoreApplication::quit();
}

void TesseryApp::openSettings()
{
    if (!m_settingsView) {
        m_settingsView = std::make_unique<SettingsView>(
            m_appState,
            SettingsView::Services{m_platform, environment(), Clock::system(),
                                   SecureRandom::system()});
        // Given back as soon as it has done with its own event: closed, it costs nothing.
        QObject::connect(m_settingsView.get(), &SettingsView::closed, m_settingsView.get(),
                         [this] { m_settingsView.release()->deleteLater(); });
    }
    m_settingsView->setWindowState(m_settingsView->windowState() & ~Qt::WindowMinimized);
    m_settingsView->show();
    m_settingsView->raise();
    m_settingsView->activateWindow();
}
