#include "ui/settings/SettingsView.h"

#include "platform/Platform.h"
#include "ui/settings/ActionButton.h"
#include "ui/settings/FilenameSettingsContent.h"
#include "ui/settings/GeneralSettingsContent.h"
#include "ui/settings/ServerSettingsContent.h"
#include "ui/settings/SettingsScrollBar.h"
#include "ui/settings/SettingsTheme.h"
#include "ui/settings/ShortcutsSettingsContent.h"
#include "ui/settings/StatusBadge.h"
#include "ui/settings/TabButton.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

struct Tab {
    QString title;
    QString icon;
    QString objectName;
};

const std::array<Tab, 4> &tabs()
{
    static const std::array<Tab, 4> all = {{
        {u"Server"_s, u"server.rack"_s, u"tab.server"_s},
        {u"Filenames"_s, u"doc.text"_s, u"tab.filenames"_s},
        {u"Shortcuts"_s, u"keyboard"_s, u"tab.shortcuts"_s},
        {u"General"_s, u"gearshape"_s, u"tab.general"_s},
    }};
    return all;
}

} // namespace

void SettingsView::buildTabBar()
{
    m_tabBar = new QWidget(this);
    m_tabBar->setObjectName(u"tabBar"_s);
    auto *row = new QHBoxLayout(m_tabBar);
    row->setContentsMargins(12, 8, 12, 8);
    row->setSpacing(4);
    row->addStretch();
    for (int index = 0; index < static_cast<int>(m_tabs.size()); ++index) {
        const auto at = static_cast<std::size_t>(index);
        const Tab &tab = tabs().at(at);
        auto *button = new TabButton(
            tab.title, tab.icon, [this, index] { setSelectedTab(index); }, m_tabBar);
        button->setObjectName(tab.objectName);
        m_tabs.at(at) = button;
        row->addWidget(button);
    }
    row->addStretch();
    checkTab();
    layout()->addWidget(m_tabBar);

    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setObjectName(u"page"_s);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setVerticalScrollBar(new SettingsScrollBar(m_scrollArea));
    // Always there, so that the cards keep their width from tab to tab.
    m_scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    layout()->addWidget(m_scrollArea);
}

void SettingsView::checkTab()
{
    TabButton *const selected = m_tabs.at(static_cast<std::size_t>(m_selectedTab));
    selected->setChecked(true);
    // The Tab key stops at the selected tab, from which the arrow keys lead to the others.
    for (TabButton *button : m_tabs)
        button->setFocusPolicy(button == selected ? Qt::StrongFocus : Qt::ClickFocus);
}

void SettingsView::buildFooter()
{
    m_footer = new QWidget(this);
    auto *row = new QHBoxLayout(m_footer);
    row->setContentsMargins(16, 10, 16, 10);
    row->setSpacing(8);
    m_badge = new StatusBadge(m_footer);
    m_badge->setObjectName(u"badge"_s);
    m_testButton =
        new ActionButton(ActionButton::Kind::Bordered, u"network"_s, u"Test"_s, m_footer);
    m_testButton->setObjectName(u"test"_s);
    m_saveButton =
        new ActionButton(ActionButton::Kind::Prominent, u"checkmark"_s, u"Save"_s, m_footer);
    m_saveButton->setObjectName(u"save"_s);
    row->addWidget(m_badge);
    row->addStretch();
    row->addWidget(m_testButton);
    row->addWidget(m_saveButton);
    connect(m_testButton, &ActionButton::clicked, this, &SettingsView::startTest);
    connect(m_saveButton, &ActionButton::clicked, this, &SettingsView::saveSettings);
    layout()->addWidget(m_footer);
}

void SettingsView::addShortcuts()
{
    const auto add = [this](const QKeySequence &keys, const auto &action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    const auto step = [this](int by) {
        return [this, by] {
            const int count = static_cast<int>(m_tabs.size());
            setAttribute(Qt::WA_KeyboardFocusChange); // The focus is to be seen from here on.
            setSelectedTab((m_selectedTab + by + count) % count);
        };
    };
    add(Qt::CTRL | Qt::Key_W, [this] { close(); });
    add(Qt::CTRL | Qt::Key_Tab, step(1));
    add(Qt::CTRL | Qt::Key_PageDown, step(1));
    add(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, step(-1));
    add(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, step(-1));
    add(Qt::CTRL | Qt::Key_PageUp, step(-1));
}

void SettingsView::setSelectedTab(int index)
{
    if (index < 0 || index >= static_cast<int>(m_tabs.size()) || index == m_selectedTab)
        return;
    m_selectedTab = index;
    checkTab();
    const QWidget *const focus = focusWidget();
    if (focus
        && (m_scrollArea->isAncestorOf(focus) || m_tabBar->isAncestorOf(focus)
            || focus == m_testButton))
        m_tabs.at(static_cast<std::size_t>(index))->setFocus(Qt::OtherFocusReason);
    showPage();
    render();
}

SettingsPage *SettingsView::makePage()
{
    switch (m_selectedTab) {
    case 0:
        return new ServerSettingsContent(m_draft, m_password, this);
    case 1:
        return new FilenameSettingsContent(m_draft, m_services.clock, m_services.random, this);
    case 2:
        return new ShortcutsSettingsContent(m_draft, *m_services.platform.keyboardLayout, this);
    case 3: {
        const Platform &platform = m_services.platform;
        auto *page = new GeneralSettingsContent(
            m_launchAtLogin, {*platform.loginItem, *platform.systemSettings, *platform.appInfo},
            this);
        connect(page, &GeneralSettingsContent::launchAtLoginChanged, this,
                [this](bool launchAtLogin) { m_launchAtLogin = launchAtLogin; });
        return page;
    }
    default:
        Q_UNREACHABLE();
    }
}

void SettingsView::showPage()
{
    // The page that was shown is gone with that, and with it whatever it was doing.
    m_page = makePage();
    m_scrollArea->setWidget(m_page);
    m_page->setAutoFillBackground(false);
    m_scrollArea->viewport()->setAutoFillBackground(false);
    // The keyboard goes from the tabs through the page to the footer.
    QWidget *lastControl = previousInFocusChain();
    while (!(lastControl->focusPolicy() & Qt::TabFocus))
        lastControl =
            lastControl->previousInFocusChain(); // Behind a label nothing is put in order.
    setTabOrder(lastControl, m_testButton);
    setTabOrder(m_testButton, m_saveButton);
}

bool SettingsView::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        setPalette(SettingsTheme::palette(QGuiApplication::palette()));
    return QWidget::event(event);
}

void SettingsView::keyPressEvent(QKeyEvent *event)
{
    QScrollBar *const bar = m_scrollArea->verticalScrollBar();
    if (event->matches(QKeySequence::MoveToNextPage))
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    else if (event->matches(QKeySequence::MoveToPreviousPage))
        bar->triggerAction(QAbstractSlider::SliderPageStepSub);
    else if (event->key() == Qt::Key_Escape) // A shortcut would take it from an open list.
        close();
    else
        QWidget::keyPressEvent(event);
}

void SettingsView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor line = SettingsTheme::borderColor(palette());
    painter.fillRect(0, m_tabBar->geometry().bottom(), width(), 1, line);
    painter.fillRect(0, m_footer->geometry().top(), width(), 1, line);
}
