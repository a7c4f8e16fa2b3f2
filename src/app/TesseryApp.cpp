#include "app/TesseryApp.h"

#include "app/MenuWindow.h"
#include "app/RemoteRequests.h"
#include "base/Clock.h"
#include "base/Log.h"
#include "base/SecureRandom.h"
#include "platform/Platform.h"
#include "ui/Symbol.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>
#include <QPointer>
#include <QWindow>

#include <utility>

using namespace Qt::StringLiterals;

TesseryApp::TesseryApp(Platform &platform, std::chrono::milliseconds trayPatience)
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
    QApplication::setWindowIcon(Symbol::menuBarIcon());
    m_trayPatience.setSingleShot(true);
    m_trayPatience.callOnTimeout([this] { onTrayPatienceOver(); });
    m_trayPatience.start(trayPatience);
    m_platform.menuBarExtra->setMenuWindow([this] { openMenuWindow(); });
    m_platform.menuBarExtra->whenKnown([this, self = QPointer(&m_menuBarView)] {
        if (self)
            answerActivation();
    });
    m_platform.remoteControl->setHandlers(
        {.activate = [this](const QString &token) { activate(token); },
         .perform =
             [this](RemoteAction action, const QString &token) {
                 perform(action, token);
             }});
}

TesseryApp::~TesseryApp()
{
    m_platform.remoteControl->close();
}

UploadService::Environment TesseryApp::environment() const
{
    return {.homeFolder = m_platform.folders->home(),
            .temporaryFolder = m_temporaryFolder.path(),
            .learned = m_learnedServers};
}

int TesseryApp::run()
{
    const int result = QCoreApplication::exec();
    // However quitting came about, uploads are told to end, and their tools and files are gone
    // before the program is; the link stays for others to paste.
    m_platform.remoteControl->close();
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

void TesseryApp::activate(const QString &activationToken)
{
    m_activationToken = activationToken;
    m_isActivationPending = true;
    // Started twice in a moment, it may not know yet whether there is a tray.
    if (m_platform.menuBarExtra->isShown() || !m_trayPatience.isActive())
        answerActivation();
}

void TesseryApp::answerActivation()
{
    if (!std::exchange(m_isActivationPending, false))
        return;
    if (m_platform.menuBarExtra->isShown().value_or(false))
        openSettings();
    else
        openMenuWindow();
}

void TesseryApp::onTrayPatienceOver()
{
    if (!m_platform.menuBarExtra->isShown().value_or(false))
        Log::line(u"⚠️ No tray to show the menu in: start Tessery again to see it in a window"_s);
    answerActivation();
}

void TesseryApp::perform(RemoteAction action, const QString &activationToken)
{
    const RemoteRequests::Situation situation{
        .areSettingsValid = [this] { return m_appState.settings().isValid(); },
        .isMonitoring = m_appState.isMonitoring()};
    if (const auto refusal = RemoteRequests::refusal(action, situation)) {
        Log::line(u"⚠️ Ignored "_s + RemoteActions::nameOf(action) + u": "_s + refusal->reason);
        if (refusal->asksForSettings)
            m_appState.askForSettings();
        return;
    }
    switch (action) {
    case RemoteAction::UploadClipboard:
        m_appState.uploadClipboard();
        break;
    case RemoteAction::StartMonitoring:
        m_appState.startMonitoring();
        break;
    case RemoteAction::StopMonitoring:
        m_appState.stopMonitoring();
        break;
    case RemoteAction::Settings:
        m_activationToken = activationToken;
        openSettings();
        break;
    case RemoteAction::Quit:
        QCoreApplication::quit();
        break;
    }
}

void TesseryApp::openSettings()
{
    if (!m_settingsView) {
        m_settingsView = std::make_unique<SettingsView>(
            m_appState,
            SettingsView::Services{m_platform, environment(), Clock::system(),
                                   SecureRandom::system()});
        // Given back as soon as it has done with its own event: closed, it costs nothing. Once,
        // since two clicks on its frame may arrive together.
        QObject::connect(
            m_settingsView.get(), &SettingsView::closed, m_settingsView.get(),
            [this] { m_settingsView.release()->deleteLater(); }, Qt::SingleShotConnection);
    }
    bringToFront(*m_settingsView);
}

void TesseryApp::openMenuWindow()
{
    if (!m_menuWindow) {
        m_menuWindow = std::make_unique<MenuWindow>(m_menuBarView);
        QObject::connect(
            m_menuWindow.get(), &MenuWindow::closed, m_menuWindow.get(),
            [this] { m_menuWindow.release()->deleteLater(); }, Qt::SingleShotConnection);
    }
    bringToFront(*m_menuWindow);
}

void TesseryApp::bringToFront(QWidget &window)
{
    window.winId(); // Makes the window's handle.
    m_platform.remoteControl->bringToFront(
        *window.windowHandle(), std::exchange(m_activationToken, {}), [&window] {
            window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
            window.show();
            window.raise();
            window.activateWindow();
        });
}
