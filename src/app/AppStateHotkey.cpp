#include "app/AppState.h"

#include "app/Hotkey.h"
#include "base/Log.h"
#include "platform/Platform.h"

using namespace Qt::StringLiterals;

void AppState::setupGlobalHotkey()
{
    cleanupEventTap();
    const auto &shortcut = m_settings.uploadClipboardShortcut;
    m_eventTap =
        m_platform.makeEventTap(Hotkey::pressOf(shortcut),
                                // The tap is ours and hears nothing once it is gone.
                                [this](const KeyPress &press) { return keyPressed(press); });
    if (!m_eventTap) {
        Log::line(
            u"❌ Failed to create event tap. Grant Accessibility permission in System Settings."_s);
        return;
    }
    Log::line(u"✅ Global hotkey registered: "_s + shortcut.displayString());
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
