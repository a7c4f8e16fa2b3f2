#include "ui/settings/GeneralSettingsContent.h"

#include "base/Log.h"
#include "platform/AppInfo.h"
#include "platform/SystemSettings.h"
#include "ui/settings/ActionButton.h"
#include "ui/settings/LaunchAtLogin.h"
#include "ui/settings/SettingsCard.h"
#include "ui/settings/SettingsLabel.h"
#include "ui/settings/SettingsToggle.h"
#include "ui/settings/SymbolView.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace {

const QString kPrivacySettings =
    u"x-apple.systempreferences:com.apple.preference.security?Privacy"_s;

QLayout *permissionRow(const QString &icon, const QString &title, const QString &description,
                       QWidget *parent)
{
    auto *symbol = new SymbolView(icon, 16, SettingsTheme::Tint::Accent, parent);
    symbol->setPlate(true);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(new SettingsLabel(SettingsLabel::Kind::Text, title, parent));
    texts->addWidget(new SettingsLabel(SettingsLabel::Kind::Hint, description, parent));
    auto *row = new QHBoxLayout;
    row->setSpacing(10);
    row->addWidget(symbol);
    row->addLayout(texts, 1);
    return row;
}

} // namespace

GeneralSettingsContent::GeneralSettingsContent(bool launchAtLogin, const Services &services,
                                               QWidget *parent)
    : SettingsPage(parent), m_services(services)
{
    buildStartup(launchAtLogin);
    buildPermissions();
    buildAbout();
}

void GeneralSettingsContent::buildStartup(bool launchAtLogin)
{
    SettingsCard *card = addCard(u"Startup"_s, u"power"_s);
    auto *toggle = new SettingsToggle(u"Launch at Login"_s, card);
    toggle->setObjectName(u"launchAtLogin"_s);
    toggle->setChecked(launchAtLogin);
    auto *description = new SettingsLabel(SettingsLabel::Kind::Hint,
                                          u"Automatically start Tessery when you log in"_s, card);
    toggle->setAccessibleDescription(description->text());
    description->setIndent(SettingsToggle::textIndent());
    auto *lines = new QVBoxLayout;
    lines->setSpacing(0);
    lines->addWidget(toggle);
    lines->addWidget(description);
    card->body()->addLayout(lines);
    connect(toggle, &SettingsToggle::toggled, this, [this](bool isOn) {
        LaunchAtLogin::setEnabled(m_services.loginItem, isOn);
        Q_EMIT launchAtLoginChanged(isOn);
    });
}

void GeneralSettingsContent::buildPermissions()
{
    SettingsCard *card = addCard(u"Permissions"_s, u"hand.raised"_s);
    card->body()->addLayout(
        permissionRow(u"keyboard"_s, u"Accessibility"_s, u"Required for global shortcuts"_s, card));
    card->body()->addLayout(
        permissionRow(u"bell"_s, u"Notifications"_s, u"For upload status alerts"_s, card));
    auto *button =
        new ActionButton(ActionButton::Kind::Bordered, {}, u"Open System Settings"_s, card);
    button->setObjectName(u"openSystemSettings"_s);
    card->body()->addWidget(button, 0, Qt::AlignLeft);
    connect(button, &ActionButton::clicked, this, [this] {
        if (!m_services.systemSettings.openPrivacySettings(kPrivacySettings))
            Log::line(u"⚠️ Nothing on this desktop opens the system settings"_s);
    });
}

void GeneralSettingsContent::buildAbout()
{
    SettingsCard *card = addCard(u"About"_s, u"info.circle"_s);
    const auto addRow = [card](const QString &caption, const QString &name, const QString &value) {
        auto *row = new QHBoxLayout;
        auto *label = new SettingsLabel(SettingsLabel::Kind::Fixed, value, card);
        label->setObjectName(name);
        label->setAccessibleName(QString(caption + u' ' + value));
        row->addWidget(new SettingsLabel(SettingsLabel::Kind::Text, caption, card));
        row->addStretch();
        row->addWidget(label);
        card->body()->addLayout(row);
    };
    addRow(u"Version"_s, u"version"_s, m_services.appInfo.version().value_or(u"1.0"_s));
    addRow(u"Build"_s, u"build"_s, m_services.appInfo.build().value_or(u"1"_s));
}
