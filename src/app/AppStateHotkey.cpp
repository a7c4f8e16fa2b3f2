#include "app/AppState.h"

#include "app/Hotkey.h"
#include "base/Log.h"
#include "platform/Platform.h"

using namespace Qt::StringLiterals;

void AppState::setupGlobalHotkey()
{
    cleanupEventTap();
    const auto &shortcut = m_settings.uploadClipboardShortcut;
    // The tap is ours, and neither hears nor decides anything once it is gone.
    m_eventTap = m_platform.makeEventTap(
        Hotkey::pressOf(shortcut), [this](const KeyPress &press) { return keyPressed(press); },
        [this, name = shortcut.displayString()](bool isHeard) {
            if (isHeard) {
                Log::line(u"✅ Global hotkey registered: "_s + name);
            } else {
                Log::line(u"❌ Failed to create event tap. "
                          "Grant Accessibility permission in System Settings."_s);
                cleanupEventTap();
            }
        });
}

void AppState::cleanupEventTap()
{
    m_eventTap.reset();
}

bool AppState::keyPressed(const KeyPress &press)
{
    if (!Hotkey::matches(press, m_settings.uploadClipboardShortcut))
        return false;
    // Later, so that the tap is answered at once.
    QMetaObject::invokeMethod(this, &AppState::uploadClipboard, Qt::QueuedConnection);
    return true;
}
