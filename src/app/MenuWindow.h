#pragma once

#include "platform/MenuBarExtra.h"

#include <QWidget>

#include <vector>

class MenuBarView;
class MenuEntry;

/// The menu as a small window, for desktops without a tray to show it in. It follows the menu's
/// changes and closes when an entry is chosen. Main thread.
class MenuWindow : public QWidget {
    Q_OBJECT

public:
    /// The menu is not owned and must outlive it.
    explicit MenuWindow(MenuBarView &menu);

Q_SIGNALS:
    /// The window has been closed, by the user or because an entry was chosen.
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;

private:
    void setItems(const std::vector<MenuItem> &items);
    void rebuild();
    QWidget *makeRow(std::size_t index);
    void fitSize();
    void choose(std::size_t index);
    QList<MenuEntry *> enabledEntries() const;

    MenuBarView &m_menu;
    std::vector<MenuItem> m_items;
    std::vector<QWidget *> m_rows; ///< One for each item; the layout owns them.
};
