#include "app/MenuBarView.h"

#include "app/AppState.h"
#include "ui/Symbol.h"

#include <utility>

using namespace Qt::StringLiterals;

MenuBarView::MenuBarView(AppState &appState, MenuBarExtra &extra, Actions actions)
    : m_appState(appState), m_extra(extra), m_actions(std::move(actions))
{
    connect(&appState, &AppState::objectWillChange, this, &MenuBarView::renderSoon);
    // Shown first, so that the panel takes the item in while the password is being read. The
    // password may be stored by somebody else later, so the menu is made anew when it opens.
    m_extra.show(u"Screenshot Uploader"_s, Symbol::menuBarIcon(), [this] { render(); });
    render();
}

std::vector<MenuItem> MenuBarView::items() const
{
    const bool isMonitoring = m_appState.isMonitoring();
    const UploadSettings &settings = m_appState.settings();
    const bool isValid = settings.isValid();
    const MenuItem separator{.kind = MenuItem::Kind::Separator};
    AppState *const state = &m_appState;

    return {
        {.kind = MenuItem::Kind::Text,
         .text = isMonitoring ? u"Monitoring Active"_s : u"Monitoring Inactive"_s,
         .icon = isMonitoring ? Symbol::icon(u"checkmark.circle.fill"_s, Symbol::Tint::Green)
                              : Symbol::icon(u"circle"_s)},
        {.kind = MenuItem::Kind::Text, .text = m_appState.lastUploadStatus()},
        separator,
        {.kind = MenuItem::Kind::Action,
         .text = isMonitoring ? u"Stop Monitoring"_s : u"Start Monitoring"_s,
         .icon = Symbol::icon(isMonitoring ? u"stop.circle"_s : u"play.circle"_s),
         .enabled = isValid,
         .action =
             [state] {
                 if (state->isMonitoring())
                     state->stopMonitoring();
                 else
                     state->startMonitoring();
             }},
        {.kind = MenuItem::Kind::Action,
         .text = u"Upload from Clipboard"_s,
         .caption = settings.uploadClipboardShortcut.displayString(),
         .icon = Symbol::icon(u"doc.on.clipboard"_s),
         .enabled = isValid,
         .action =
             [state] {
                 state->uploadClipboard();
             }},
        separator,
        {.kind = MenuItem::Kind::Action,
         .text = u"Settings..."_s,
         .shortcut = QKeySequence(Qt::META | Qt::Key_Comma),
         .action = m_actions.openSettings},
        separator,
        {.kind = MenuItem::Kind::Action,
         .text = u"Quit"_s,
         .shortcut = QKeySequence(Qt::META | Qt::Key_Q),
         .action = m_actions.quit},
    };
}

void MenuBarView::renderSoon()
{
    // Observers are told before the change, and several changes make one step: draw after them.
    if (std::exchange(m_renderPending, true))
        return;
    QMetaObject::invokeMethod(this, &MenuBarView::render, Qt::QueuedConnection);
}

void MenuBarView::render()
{
    m_renderPending = false;
    const std::vector<MenuItem> now = items();
    m_extra.setMenu(now);
    Q_EMIT itemsChanged(now);
}
