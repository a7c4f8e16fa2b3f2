#include "ui/settings/SettingsView.h"

#include "app/AppState.h"
#include "platform/Platform.h"
#include "ui/Symbol.h"
#include "ui/settings/ActionButton.h"
#include "ui/settings/SettingsAccessibility.h"
#include "ui/settings/SettingsPage.h"
#include "ui/settings/SettingsTheme.h"
#include "ui/settings/StatusBadge.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize kContentSize(480, 520);

} // namespace

SettingsView::SettingsView(AppState &appState, Services services)
    : m_appState(appState), m_services(std::move(services))
{
    SettingsAccessibility::install();
    setObjectName(u"settingsWindow"_s);
    setWindowTitle(u"Settings"_s);
    setWindowIcon(Symbol::menuBarIcon());
    setFixedSize(kContentSize);
    setPalette(SettingsTheme::palette(QGuiApplication::palette()));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildTabBar();
    buildFooter();
    addShortcuts();

    connect(&m_draft, &SettingsDraft::changed, this, &SettingsView::render);
    connect(&m_password, &StoredPassword::changed, this, &SettingsView::render);
    connect(&m_appState, &AppState::objectWillChange, this, &SettingsView::refreshPasswordSoon);
    render();
}

SettingsView::~SettingsView()
{
    // The pages go first: they hold references to the members.
    delete m_scrollArea;
}

bool SettingsView::isValid() const
{
    const UploadSettings &settings = m_draft.settings();
    return !settings.hostname.isEmpty() && !settings.username.isEmpty() && m_password.isFilledIn()
        && !settings.publicURLBase.isEmpty();
}

void SettingsView::render()
{
    if (m_saveMessage)
        m_badge->setMessage(statusOfMessage(*m_saveMessage), *m_saveMessage);
    else if (!isValid())
        m_badge->setMessage(StatusBadge::Status::warning, u"Fill required fields"_s);
    else
        m_badge->hide();
    m_testButton->setVisible(m_selectedTab == 0);
    m_testButton->setEnabled(isValid() && !m_isTesting);
    m_testButton->setBusy(m_isTesting);
    m_testButton->setAccessibleDescription(m_testResult);
}

void SettingsView::setSaveMessage(const std::optional<QString> &message)
{
    m_saveMessage = message;
    render();
}

void SettingsView::clearSaveMessageAfter(std::chrono::milliseconds time)
{
    // Timers are independent: an earlier one clears a newer message early.
    QTimer::singleShot(time, this, [this] { setSaveMessage(std::nullopt); });
}

void SettingsView::refreshPasswordSoon()
{
    // The state tells its observers before the change, and of many changes at once.
    if (std::exchange(m_refreshPending, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_refreshPending = false;
            m_password.refresh();
        },
        Qt::QueuedConnection);
}

void SettingsView::saveSettings()
{
    m_password.flush();
    m_appState.setSettings(m_draft.settings());
    m_appState.settings().save();
    m_appState.setupGlobalHotkey();
    setSaveMessage(u"Saved!"_s);
    clearSaveMessageAfter(m_services.savedMessageTime);
}

void SettingsView::showEvent(QShowEvent *event)
{
    if (!event->spontaneous()) {
        m_launchAtLogin = m_services.platform.loginItem->isEnabled();
        showPage();
        m_draft.begin(m_appState.settings());
        m_password.refresh();
        if (m_page->firstField())
            m_page->firstField()->setFocus(Qt::OtherFocusReason);
    }
    QWidget::showEvent(event);
}

void SettingsView::closeEvent(QCloseEvent *event)
{
    m_password.storeGathered();
    event->accept();
    Q_EMIT closed();
}
