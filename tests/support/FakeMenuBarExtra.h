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

    QStringList texts() const
    {
        QStringList all;
        for (const MenuItem &item : items)
            all << item.text;
        return all;
    }

    QString title;
    std::function<void()> aboutToShow;
    std::vector<MenuItem> items;
};
