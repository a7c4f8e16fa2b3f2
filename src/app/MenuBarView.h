#pragma once

#include "platform/MenuBarExtra.h"

#include <QObject>

#include <functional>
#include <vector>

class AppState;

/// The content of the menu, in the tray or in a window of its own: it shows the state of an
/// AppState and follows its changes. Main thread.
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

    /// Makes the menu anew, since what it depends on may have changed unnoticed.
    void render();

Q_SIGNALS:
    /// The menu has been made anew.
    void itemsChanged(const std::vector<MenuItem> &items);

private:
    void renderSoon();

    AppState &m_appState;
    MenuBarExtra &m_extra;
    Actions m_actions;
    bool m_renderPending = false;
};
