#pragma once

#include <QString>

/// The desktop's clipboard. Main thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;
    Pasteboard() = default;
    Pasteboard(const Pasteboard &) = delete;
    Pasteboard &operator=(const Pasteboard &) = delete;

    /// Replaces the clipboard's content by text. True once other programs can read it; not
    /// available: false.
    [[nodiscard]] virtual bool writeText(const QString &text) = 0;
};
