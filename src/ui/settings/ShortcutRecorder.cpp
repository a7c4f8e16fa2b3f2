#include "ui/settings/ShortcutRecorder.h"

#include "ui/settings/ShortcutCapture.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <utility>

ShortcutRecorder::ShortcutRecorder(const KeyboardLayout &layout) : m_layout(layout)
{
}

void ShortcutRecorder::setRecording(bool isRecording)
{
    // Events go to the application's filters before any window or widget sees them.
    if (isRecording)
        QCoreApplication::instance()->installEventFilter(this);
    else
        QCoreApplication::instance()->removeEventFilter(this);
    m_isRecording = isRecording;
    m_recorded.reset();
    Q_EMIT changed();
}

bool ShortcutRecorder::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept(); // Else the shortcuts of the windows and menus come next.
        return true;
    case QEvent::KeyPress:
        event->accept();
        if (auto shortcut = shortcutOf(*static_cast<QKeyEvent *>(event), m_layout)) {
            if (std::exchange(m_recorded, shortcut) != shortcut)
                Q_EMIT changed();
        }
        return true;
    case QEvent::InputMethod: // What an input method makes of the key presses that it has taken.
        return true;
    default:
        return false;
    }
}
