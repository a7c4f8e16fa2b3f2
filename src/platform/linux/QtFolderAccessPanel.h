#pragma once

#include "platform/FolderAccessPanel.h"

/// The desktop's own folder dialog, without blocking.
class QtFolderAccessPanel final : public FolderAccessPanel {
public:
    void ask(const QString &message, const QString &confirmButton, const QString &startFolder,
             std::function<void(bool confirmed)> completion) override;
};
