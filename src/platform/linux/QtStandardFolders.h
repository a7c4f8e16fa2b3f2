#pragma once

#include "platform/StandardFolders.h"

/// The folders as Qt knows them: $HOME, and the user's XDG folders.
class QtStandardFolders final : public StandardFolders {
public:
    QString home() const override;
    QString desktop() const override;
};
