#pragma once

#include "platform/Pasteboard.h"

/// The clipboard of an X11 display, through the toolkit. The application keeps the content and
/// serves it to other programs as long as it runs.
class QtPasteboard final : public Pasteboard {
public:
    bool writeText(const QString &text) override;
};
