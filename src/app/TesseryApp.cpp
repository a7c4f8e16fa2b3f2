#include "app/TesseryApp.h"

#include "base/Clock.h"
#include "base/SecureRandom.h"
#include "platform/Platform.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>

TesseryApp::TesseryApp(Platform &platform)
    : m_appState(
        platform,
        {.homeFolder = platform.folders->home(), .temporaryFolder = m_temporaryFolder.path()},
        Clock::system(), SecureRandom::system())
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

int TesseryApp::run()
{
    const int result = QCoreApplication::exec();
    // However quitting came about, uploads are told to end, and their tools and files are gone
    // before the program is.
    TaskScope &tasks = m_appState.tasks();
    tasks.requestStop();
    if (tasks.running() > 0) {
        [[maybe_unused]] const auto waiting = quitWhenDrained();
        while (tasks.running() > 0)
            QCoreApplication::exec(); // Asked to quit once more, it ends too early.
    }
    return result;
}

QCoro::Task<> TesseryApp::quitWhenDrained()
{
    co_await m_appState.tasks().drained();
    QCoreApplication::quit();
}

void TesseryApp::openSettings()
{
    if (!m_settingsView)
        m_settingsView = std::make_unique<SettingsView>();
    m_settingsView->show();
    m_settingsView->raise();
    m_settingsView->activateWindow();
}
