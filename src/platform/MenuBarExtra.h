#pragma once

#include <QIcon>
#include <QKeySequence>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

/// One line of the menu.
struct MenuItem {
    enum class Kind {
        Text, ///< Tells something; choosing it does nothing.
        Action,
        Separator,
    };

    Kind kind = Kind::Separator;
    QString text = {}; ///< Shown exactly as it is: no character is a mnemonic.
    QString caption = {}; ///< Shown smaller or set apart beside text; may be empty.
    QIcon icon = {}; ///< May be null.
    bool enabled = true;
    QKeySequence shortcut = {}; ///< Shown beside the text; may be empty.
    std::function<void()> action = {}; ///< Empty unless kind is Action.
};

/// The application's item in the desktop's tray, with its menu. Main thread. Not available: the
/// item appears once a tray does.
class MenuBarExtra {
public:
    virtual ~MenuBarExtra() = default;
    MenuBarExtra() = default;
    MenuBarExtra(const MenuBarExtra &) = delete;
    MenuBarExtra &operator=(const MenuBarExtra &) = delete;

    /// Shows the item as soon as there is a tray. aboutToShow is called before the menu opens.
    virtual void show(const QString &title, const QIcon &icon,
                      std::function<void()> aboutToShow) = 0;

    /// Replaces the menu's lines.
    virtual void setMenu(std::vector<MenuItem> items) = 0;

    /// Lets open show the menu as a window where the tray leaves drawing it to us and the desktop
    /// has no place for a menu that belongs to no window.
    virtual void setMenuWindow(std::function<void()> open) = 0;

    /// Whether there is a tray that shows the item, or is about to. Absent until the desktop has
    /// said whether it has one; once shown, it takes milliseconds unless the desktop hangs.
    virtual std::optional<bool> isShown() const = 0;

    /// Calls then once isShown() is known: at once if it is, else from the event loop.
    virtual void whenKnown(std::function<void()> then) = 0;
};
