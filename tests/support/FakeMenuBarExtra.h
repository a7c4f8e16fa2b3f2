#pragma once

#include "platform/MenuBarExtra.h"

#include <QStringList>

#include <utility>

/// Keeps the menu that it is given.
class FakeMenuBarExtra final : public MenuBarExtra {
public:
    void show(const QString &newTitle, const QIcon &, std::function<void()> newAboutToShow) override
    {
        title = newTitle;
        aboutToShow = std::move(newAboutToShow);
    }
    void setMenu(std::vector<MenuItem> newItems) override { items = std::move(newItems); }
    void setMenuWindow(std::function<void()> open) override { openMenuWindow = std::move(open); }
    std::optional<bool> isShown() const override { return shown; }
    void whenKnown(std::function<void()> then) override
    {
        if (shown)
            then();
        else
            waiting.push_back(std::move(then));
    }

    /// The desktop says whether it has a tray, for the first time or anew.
    void setShown(bool isShown)
    {
        shown = isShown;
        for (const auto &then : std::exchange(waiting, {}))
            then();
    }

    QStringList texts() const
    {
        QStringList all;
        for (const MenuItem &item : items)
            all << item.text;
        return all;
    }

    QString title;
    std::function<void()> aboutToShow;
    std::function<void()> openMenuWindow;
    std::vector<MenuItem> items;
    std::optional<bool> shown = true;
    std::vector<std::function<void()>> waiting;
};
