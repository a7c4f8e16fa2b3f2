#pragma once

#include "platform/StandardFolders.h"

/// $HOME and the user's XDG folders. Screenshots are in XDG_SCREENSHOTS_DIR, and below the pictures
/// folder in "Screenshots" or what the desktops' tools call it in the user's language.
class QtStandardFolders final : public StandardFolders {
public:
    QString home() const override;
    QString desktop() const override;
    QStringList screenshots() const override;
};
