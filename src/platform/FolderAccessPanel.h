#pragma once

#include <QString>

#include <functional>

/// Asks the user for a folder. Main thread. Not available: the completion is called with false.
class FolderAccessPanel {
public:
    virtual ~FolderAccessPanel() = default;
    FolderAccessPanel() = default;
    FolderAccessPanel(const FolderAccessPanel &) = delete;
    FolderAccessPanel &operator=(const FolderAccessPanel &) = delete;

    /// Shows the panel and returns at once. Only folders can be chosen, and none can be made. The
    /// completion is called once, with true if the user confirmed.
    virtual void ask(const QString &message, const QString &confirmButton,
                     const QString &startFolder,
                     std::function<void(bool confirmed)> completion) = 0;
};
