#pragma once

#include "settings/UploadSettings.h"

#include <QWidget>

class QHBoxLayout;

/// A shortcut as a row of key caps: the modifiers by their code points (⇧ ⌃ ⌘ ⌥), then the key.
class KeyboardShortcutView : public QWidget {
    Q_OBJECT

public:
    explicit KeyboardShortcutView(const UploadSettings::KeyboardShortcut &shortcut,
                                  bool isHighlighted = false, QWidget *parent = nullptr);

    /// Shows another shortcut; highlighted on a green plate with a green outline.
    void setShortcut(const UploadSettings::KeyboardShortcut &shortcut, bool isHighlighted = false);

    const UploadSettings::KeyboardShortcut &shortcut() const { return m_shortcut; }
    bool isHighlighted() const { return m_isHighlighted; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void makeCaps();

    UploadSettings::KeyboardShortcut m_shortcut;
    bool m_isHighlighted;
    QHBoxLayout *m_row;
};
