#pragma once

#include "platform/FolderAccessPanel.h"

#include <utility>

/// Keeps what it was asked, and the completion for the test to call.
class FakeFolderAccessPanel final : public FolderAccessPanel {
public:
    void ask(const QString &newMessage, const QString &newConfirmButton,
             const QString &newStartFolder,
             std::function<void(bool confirmed)> newCompletion) override
    {
        ++asked;
        message = newMessage;
        confirmButton = newConfirmButton;
        startFolder = newStartFolder;
        completion = std::move(newCompletion);
    }

    int asked = 0;
    QString message;
    QString confirmButton;
    QString startFolder;
    std::function<void(bool confirmed)> completion;
};
