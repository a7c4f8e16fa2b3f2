#pragma once

#include "settings/UploadSettings.h"

#include <QObject>

#include <optional>

class KeyboardLayout;

/// Records a key combination. While it does, the application sees no key presses, whatever window
/// they are meant for: no field gets them, and no shortcut, button or focus change comes of them.
/// Each combination replaces the one before. Main thread.
class ShortcutRecorder : public QObject {
    Q_OBJECT

public:
    /// The layout is not owned and must outlive the recorder.
    explicit ShortcutRecorder(const KeyboardLayout &layout);

    bool isRecording() const { return m_isRecording; }
    /// The latest combination; absent before the first, and when not recording.
    const std::optional<UploadSettings::KeyboardShortcut> &recorded() const { return m_recorded; }

    /// Begins anew, or ends. Either way what was recorded is forgotten.
    void setRecording(bool isRecording);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// It records, does not, or has recorded another combination.
    void changed();

private:
    const KeyboardLayout &m_layout;
    bool m_isRecording = false;
    std::optional<UploadSettings::KeyboardShortcut> m_recorded;
};
