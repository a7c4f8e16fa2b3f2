#include "app/MenuWindow.h"

#include "app/MenuBarView.h"
#include "app/MenuEntry.h"
#include "app/MenuText.h"
#include "ui/Symbol.h"
#include "ui/settings/SettingsDivider.h"
#include "ui/settings/SettingsTheme.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int kLeastWidth = 280;
constexpr int kMostWidth = 420;
/// Around the entries, whose own padding makes up the rest to the texts' margin.
constexpr int kMargin = 4;
constexpr int kTextMargin = 12;
constexpr int kTextPadding = 8;
constexpr int kTextGap = 3;

bool haveSameKinds(const std::vector<MenuItem> &some, const std::vector<MenuItem> &others)
{
    return std::ranges::equal(some, others, {}, &MenuItem::kind, &MenuItem::kind);
}

} // namespace

MenuWindow::MenuWindow(MenuBarView &menu) : m_menu(menu)
{
    setObjectName(u"menuWindow"_s);
    setWindowTitle(u"Screenshot Uploader"_s);
    setWindowIcon(Symbol::menuBarIcon());
    setPalette(SettingsTheme::palette(QGuiApplication::palette()));
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, kMargin);
    layout->setSpacing(0);
    connect(new QShortcut(Qt::CTRL | Qt::Key_W, this), &QShortcut::activated, this,
            [this] { close(); });

    setItems(menu.items());
    connect(&menu, &MenuBarView::itemsChanged, this, &MenuWindow::setItems);
    if (const QList<MenuEntry *> entries = enabledEntries(); !entries.isEmpty())
        entries.first()->setFocus(Qt::OtherFocusReason);
}

void MenuWindow::setItems(const std::vector<MenuItem> &items)
{
    const bool isSameShape = haveSameKinds(m_items, items);
    m_items = items;
    if (!isSameShape)
        rebuild();
    // Rows are changed in place, so that the keyboard stays where it is.
    for (std::size_t index = 0; index < m_items.size(); ++index) {
        const MenuItem &item = m_items[index];
        if (auto *const entry = qobject_cast<MenuEntry *>(m_rows[index]))
            entry->setItem(item);
        else if (auto *const text = qobject_cast<MenuText *>(m_rows[index]))
            text->setLine(item.text, item.icon);
    }
    fitSize();
}

void MenuWindow::rebuild()
{
    for (QWidget *const row : m_rows)
        delete row;
    m_rows.clear();
    auto *const box = static_cast<QVBoxLayout *>(layout());
    while (QLayoutItem *const item = box->takeAt(0))
        delete item;
    for (std::size_t index = 0; index < m_items.size(); ++index) {
        const bool isText = m_items[index].kind == MenuItem::Kind::Text;
        const bool wasText = index > 0 && m_items[index - 1].kind == MenuItem::Kind::Text;
        if (isText != wasText)
            box->addSpacing(kTextPadding);
        else if (isText)
            box->addSpacing(kTextGap);
        const bool isSeparator = m_items[index].kind == MenuItem::Kind::Separator;
        const int beside = isText ? kTextMargin : kMargin;
        const int above = isSeparator && !wasText ? kMargin : 0;
        const int below = isSeparator ? kMargin : 0;
        auto *const line = new QHBoxLayout;
        line->setContentsMargins(beside, above, beside, below);
        m_rows.push_back(makeRow(index));
        line->addWidget(m_rows.back());
        box->addLayout(line);
    }
}

QWidget *MenuWindow::makeRow(std::size_t index)
{
    switch (m_items[index].kind) {
    case MenuItem::Kind::Text:
        return new MenuText(this);
    case MenuItem::Kind::Action: {
        auto *const entry = new MenuEntry(this);
        entry->setObjectName(u"entry%1Button"_s.arg(index));
        connect(entry, &MenuEntry::clicked, this, [this, index] { choose(index); });
        return entry;
    }
    case MenuItem::Kind::Separator:
        return new SettingsDivider(this);
    }
    Q_UNREACHABLE();
}

void MenuWindow::fitSize()
{
    int width = kLeastWidth;
    for (const QWidget *const entry : findChildren<MenuEntry *>())
        width = std::max(width, entry->sizeHint().width() + 2 * kMargin);
    width = std::min(width, kMostWidth);
    layout()->activate(); // The lines within it measure anew.
    setFixedSize(width, layout()->totalHeightForWidth(width));
}

void MenuWindow::choose(std::size_t index)
{
    // A copy, since the window goes first, as a menu does.
    const std::function<void()> action = m_items[index].action;
    close();
    action();
}

QList<MenuEntry *> MenuWindow::enabledEntries() const
{
    QList<MenuEntry *> entries;
    for (QWidget *const row : m_rows) {
        auto *const entry = qobject_cast<MenuEntry *>(row);
        if (entry && entry->isEnabled())
            entries << entry;
    }
    return entries;
}

void MenuWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    Q_EMIT closed();
}

void MenuWindow::keyPressEvent(QKeyEvent *event)
{
    const QList<MenuEntry *> entries = enabledEntries();
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Home && !entries.isEmpty())
        entries.first()->setFocus(Qt::TabFocusReason);
    else if (event->key() == Qt::Key_End && !entries.isEmpty())
        entries.last()->setFocus(Qt::BacktabFocusReason);
    else
        QWidget::keyPressEvent(event);
}

bool MenuWindow::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        setPalette(SettingsTheme::palette(QGuiApplication::palette()));
    // Somebody else may have stored the password since.
    if (event->type() == QEvent::WindowActivate)
        m_menu.render();
    return QWidget::event(event);
}
