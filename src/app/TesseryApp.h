#pragma once

#include "app/AppState.h"
#include "app/MenuBarView.h"
#include "base/TemporaryFolder.h"

#include <memory>

class SettingsView;

/// The application: it holds the state and shows it as the tray menu and the settings window. Main
/// thread.
class TesseryApp {
public:
    /// The application object must exist. The platform is not owned and must outlive this. Throws
    /// SystemError if there is no place for temporary files.
    explicit TesseryApp(Platform &platform);
    ~TesseryApp();
    TesseryApp(const TesseryApp &) = delete;
    TesseryApp &operator=(const TesseryApp &) = delete;

    /// Runs until the user, the session or a signal asks to quit and every operation has ended.
    /// Gives the exit code.
    int run();

private:
    void openSettings();
    UploadService::Environment environment() const;
    /// Waits for what is under way and gives the clipboard's content away.
    [[nodiscard]] QCoro::Task<> windUp(bool *isDone);

    Platform &m_platform;
    TemporaryFolder m_temporaryFolder;
    AppState m_appState;
    MenuBarView m_menuBarView;
    std::unique_ptr<SettingsView> m_settingsView;
};
