#pragma once

#include "app/AppState.h"
#include "app/MenuBarView.h"
#include "base/TemporaryFolder.h"
#include "platform/RemoteAction.h"

#include <QString>
#include <QTimer>

#include <chrono>
#include <memory>

class MenuWindow;
class QWidget;
class SettingsView;

/// The application: it holds the state and shows it as the menu, in the tray or in a window, and
/// as the settings window. Main thread.
class TesseryApp {
public:
    /// The application object must exist. The platform is not owned and must outlive this. Throws
    /// SystemError if there is no place for temporary files. trayPatience is how long a desktop may
    /// take to bring up its tray before the log says that there is none.
    explicit TesseryApp(Platform &platform,
                        std::chrono::milliseconds trayPatience = std::chrono::seconds(5));
    ~TesseryApp();
    TesseryApp(const TesseryApp &) = delete;
    TesseryApp &operator=(const TesseryApp &) = delete;

    /// Runs until the user, the session or a signal asks to quit and every operation has ended.
    /// Gives the exit code.
    int run();

private:
    void activate(const QString &activationToken);
    void perform(RemoteAction action, const QString &activationToken);
    void onTrayPatienceOver();
    /// Opens the settings where the menu is in the tray, else the menu.
    void answerActivation();
    void openSettings();
    void openMenuWindow();
    /// Shows it above the others, un-minimised, with the keyboard.
    void bringToFront(QWidget &window);
    UploadService::Environment environment() const;
    /// Waits for what is under way and gives the clipboard's content away.
    [[nodiscard]] QCoro::Task<> windUp(bool *isDone);

    Platform &m_platform;
    TemporaryFolder m_temporaryFolder;
    std::shared_ptr<LearnedServers> m_learnedServers = std::make_shared<LearnedServers>();
    AppState m_appState;
    MenuBarView m_menuBarView;
    std::unique_ptr<SettingsView> m_settingsView;
    std::unique_ptr<MenuWindow> m_menuWindow;
    QString m_activationToken; ///< Of the request that is being answered; empty otherwise.
    QTimer m_trayPatience;
    bool m_isActivationPending = false; ///< Until it has turned out whether there is a tray.
};
