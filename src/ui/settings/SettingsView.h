#pragma once

#include "settings/UploadSettings.h"
#include "ui/settings/SettingsDraft.h"
#include "ui/settings/StoredPassword.h"
#include "upload/UploadService.h"

#include <QCoro/QCoroTask>
#include <QPointer>
#include <QWidget>

#include <array>
#include <chrono>
#include <optional>

class ActionButton;
class AppState;
class Clock;
class QScrollArea;
class SecureRandom;
class SettingsPage;
class StatusBadge;
class TabButton;
struct Platform;

/// The settings window: tabs, the page of the selected one, and a footer that tests and saves. What
/// is changed reaches the application when it is saved; only the password and the switch for
/// starting at login act at once. Each time it is shown it begins with the settings in force. Main
/// thread. May be destroyed at any time, also while a test of the connection runs.
class SettingsView : public QWidget {
    Q_OBJECT

public:
    /// What the window works with. Nothing is owned; all must outlive it.
    struct Services {
        Platform &platform;
        /// For testing the connection; its stop token is replaced by that of the tasks of the
        /// state.
        UploadService::Environment environment;
        const Clock &clock;
        SecureRandom &random;
        std::chrono::milliseconds savedMessageTime = std::chrono::seconds(2);
        std::chrono::milliseconds testMessageTime = std::chrono::seconds(3);
    };

    SettingsView(AppState &appState, Services services);
    ~SettingsView() override;

    /// The index of the tab that is shown, from 0.
    int selectedTab() const { return m_selectedTab; }
    /// Shows another tab; an index without one is ignored.
    void setSelectedTab(int index);

Q_SIGNALS:
    /// The user has closed the window, and the keychain has been given the password.
    void closed();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    /// Scrolls and closes with the keys that the control with the keyboard leaves over.
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;

private:
    void buildTabBar();
    void checkTab();
    void buildFooter();
    void addShortcuts();
    SettingsPage *makePage();
    void showPage();

    void render();
    void setSaveMessage(const std::optional<QString> &message);
    void clearSaveMessageAfter(std::chrono::milliseconds time);
    void refreshPasswordSoon();
    /// As UploadSettings::isValid(), without asking the keychain.
    bool isValid() const;

    void saveSettings();
    void startTest();
    void finishTest(bool succeeded);
    [[nodiscard]] static QCoro::Task<> testConnection(QPointer<SettingsView> view,
                                                      UploadService::Environment environment,
                                                      UploadSettings settings);

    AppState &m_appState;
    Services m_services;
    SettingsDraft m_draft;
    StoredPassword m_password;
    bool m_isTesting = false;
    QString m_testResult; ///< Told to screen readers only; empty unless a test is running.
    int m_selectedTab = 0;
    std::optional<QString> m_saveMessage;
    bool m_launchAtLogin = false;
    bool m_refreshPending = false;

    std::array<TabButton *, 4> m_tabs = {};
    QWidget *m_tabBar = nullptr;
    QScrollArea *m_scrollArea = nullptr;
    SettingsPage *m_page = nullptr; ///< In the scroll area; null until the window is shown.
    QWidget *m_footer = nullptr;
    StatusBadge *m_badge = nullptr;
    ActionButton *m_testButton = nullptr;
    ActionButton *m_saveButton = nullptr;
};
