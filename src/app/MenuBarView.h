#pragma once

#include "platform/MenuBarExtra.h"

#include <QObject>

#include <functional>
#include <vector>

class AppState;

/// The content of the tray menu: it shows the state of an AppState and follows its changes. Main
/// thread.
class MenuBarView : public QObject {
    Q_OBJECT

public:
    /// What the entries beyond the state's own operations do.
    struct Actions {
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    /// Nothing is owned; appState and extra must outlive it.
    MenuBarView(AppState &appState, MenuBarExtra &extra, Actions actions);

    /// The menu's lines for the state as it is now.
    std::vector<MenuItem> items() const;

private:
    void renderSoon();
    void render();

    AppState &m_appState;
    MenuBarExtra &m_extra;
    Actions m_actions;
    bool m_renderPending = false;
};
