#include "ui/settings/ServerSettingsContent.h"

#include "ui/settings/ProtocolSelector.h"
#include "ui/settings/SettingsCard.h"
#include "ui/settings/SettingsDraft.h"
#include "ui/settings/SettingsLabel.h"
#include "ui/settings/SettingsPicker.h"
#include "ui/settings/SettingsToggle.h"
#include "ui/settings/StoredPassword.h"
#include "ui/settings/StoredTextList.h"
#include "ui/settings/StyledNumberField.h"
#include "ui/settings/StyledTextField.h"

#include <QLineEdit>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr std::int64_t kLastPort = 65535;
constexpr int kPickerWidth = 100;

StyledTextField *makeField(const QString &label, const QString &objectName, QWidget *parent,
                           StyledTextField::Echo echo = StyledTextField::Echo::Normal)
{
    auto *field = new StyledTextField(label, echo, parent);
    field->field()->setObjectName(objectName);
    return field;
}

QString publicURLHint(const QString &base)
{
    return base.isEmpty() ? u"URL where files will be accessible"_s
                          : QString(u"e.g. "_s + base + u"/file.png"_s);
}

} // namespace

ServerSettingsContent::ServerSettingsContent(SettingsDraft &draft, StoredPassword &password,
                                             QWidget *parent)
    : SettingsPage(parent), m_draft(draft), m_password(password)
{
    buildConnection();
    buildAuthentication();
    buildPaths();
    buildTLSOptions();
    connectControls();
    setFirstField(m_hostname->field());
    connect(&draft, &SettingsDraft::changed, this, &ServerSettingsContent::render);
    connect(&password, &StoredPassword::changed, this, &ServerSettingsContent::renderPassword);
    render();
    renderPassword();
}

void ServerSettingsContent::buildConnection()
{
    SettingsCard *card = addCard(u"Connection"_s, u"link"_s);
    m_protocol = new ProtocolSelector(card);
    card->body()->addWidget(m_protocol);

    auto *row = new QHBoxLayout;
    row->setSpacing(10);
    m_hostname = makeField(u"Hostname"_s, u"hostname"_s, card);
    m_hostname->field()->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
    m_port = new StyledNumberField(u"Port"_s, 1, kLastPort, card);
    m_port->field()->setObjectName(u"port"_s);
    row->addWidget(m_hostname, 1);
    row->addWidget(m_port);
    card->body()->addLayout(row);

    m_passiveMode = new SettingsToggle(u"Passive Mode"_s, card);
    m_passiveMode->setObjectName(u"passiveMode"_s);
    card->body()->addWidget(m_passiveMode);
}

void ServerSettingsContent::buildAuthentication()
{
    SettingsCard *card = addCard(u"Authentication"_s, u"person.badge.key"_s);
    auto *row = new QHBoxLayout;
    row->setSpacing(10);
    m_username = makeField(u"Username"_s, u"username"_s, card);
    m_passwordField = makeField(u"Password"_s, u"password"_s, card, StyledTextField::Echo::Secure);
    row->addWidget(m_username, 1);
    row->addWidget(m_passwordField, 1);
    card->body()->addLayout(row);
}

void ServerSettingsContent::buildPaths()
{
    SettingsCard *card = addCard(u"Paths"_s, u"folder"_s);
    m_remotePath = makeField(u"Remote Path"_s, u"remotePath"_s, card);
    m_remotePath->setHint(u"Server directory for uploads"_s);
    m_publicURLBase = makeField(u"Public URL Base"_s, u"publicURLBase"_s, card);
    card->body()->addWidget(m_remotePath);
    card->body()->addWidget(m_publicURLBase);
}

void ServerSettingsContent::buildTLSOptions()
{
    m_tlsOptions = addCard(u"TLS Options"_s, u"lock.shield"_s);
    m_tlsOptions->setObjectName(u"tlsOptions"_s);
    m_allowInsecureCertificates =
        new SettingsToggle(u"Allow Self-Signed Certificates"_s, m_tlsOptions);
    m_allowInsecureCertificates->setObjectName(u"allowInsecureCertificates"_s);
    m_tlsOptions->body()->addWidget(m_allowInsecureCertificates);

    auto *row = new QHBoxLayout;
    auto *label = new SettingsLabel(SettingsLabel::Kind::Text, u"TLS Version"_s, m_tlsOptions);
    m_tlsVersion = new SettingsPicker(m_tlsOptions);
    m_tlsVersion->setObjectName(u"tlsVersion"_s);
    m_tlsVersion->setAccessibleName(label->text());
    m_tlsVersion->setFixedWidth(kPickerWidth);
    m_tlsVersion->addItems(storedTextList<UploadSettings::TLSVersion>());
    label->setBuddy(m_tlsVersion);
    row->addWidget(label);
    row->addStretch();
    row->addWidget(m_tlsVersion);
    m_tlsOptions->body()->addLayout(row);
}

void ServerSettingsContent::connectControls()
{
    const auto edits = [this](auto member) {
        return [this, member](const auto &value) {
            m_draft.edit([&](UploadSettings &settings) { settings.*member = value; });
        };
    };
    connect(m_protocol, &ProtocolSelector::selected, this, edits(&UploadSettings::serverType));
    connect(m_hostname, &StyledTextField::edited, this, &ServerSettingsContent::takeHostname);
    connect(m_hostname->field(), &QLineEdit::editingFinished, this, [this] {
        m_typedHostname.clear();
        renderHostname();
    });
    connect(m_port, &StyledNumberField::edited, this, edits(&UploadSettings::port));
    connect(m_passiveMode, &SettingsToggle::toggled, this, edits(&UploadSettings::usePassiveMode));
    connect(m_username, &StyledTextField::edited, this, edits(&UploadSettings::username));
    connect(m_passwordField, &StyledTextField::edited, &m_password, &StoredPassword::setText);
    connect(m_passwordField->field(), &QLineEdit::editingFinished, &m_password,
            &StoredPassword::storeGathered);
    connect(m_remotePath, &StyledTextField::edited, this, edits(&UploadSettings::remotePath));
    connect(m_publicURLBase, &StyledTextField::edited, this, edits(&UploadSettings::publicURLBase));
    connect(m_allowInsecureCertificates, &SettingsToggle::toggled, this,
            edits(&UploadSettings::allowInsecureCertificates));
    connect(m_tlsVersion, &SettingsPicker::activated, this, [this](int index) {
        m_draft.edit([index](UploadSettings &settings) {
            settings.tlsVersion = caseAt<UploadSettings::TLSVersion>(index);
        });
    });
}

void ServerSettingsContent::takeHostname(const QString &text)
{
    const bool isPasted = std::abs(text.size() - m_shownHostname.size()) > 1;
    m_typedHostname = isPasted ? QString() : text;
    m_draft.edit([&](UploadSettings &settings) { settings.hostname = text; });
    renderHostname();
}

void ServerSettingsContent::renderHostname()
{
    // An address that is being typed stays until it is complete: without its beginning, the rest
    // could not be told from a host any more. The settings have its host already.
    const QString &hostname = m_draft.settings().hostname;
    const bool isBeingTyped = cleanedHostname(m_typedHostname) == hostname;
    m_hostname->setText(isBeingTyped ? m_typedHostname : hostname);
    m_shownHostname = m_hostname->field()->text();
}

void ServerSettingsContent::render()
{
    const UploadSettings &settings = m_draft.settings();
    const bool isFTPS = settings.serverType == UploadSettings::ServerType::ftps;
    m_protocol->setSelection(settings.serverType);
    renderHostname();
    m_port->setValue(settings.port);
    m_passiveMode->setVisible(isFTPS || settings.serverType == UploadSettings::ServerType::ftp);
    m_passiveMode->setChecked(settings.usePassiveMode);
    m_username->setText(settings.username);
    m_remotePath->setText(settings.remotePath);
    m_publicURLBase->setText(settings.publicURLBase);
    m_publicURLBase->setHint(publicURLHint(settings.publicURLBase));
    m_tlsOptions->setVisible(isFTPS);
    m_allowInsecureCertificates->setChecked(settings.allowInsecureCertificates);
    m_tlsVersion->setCurrentIndex(indexOf(settings.tlsVersion));
}

void ServerSettingsContent::renderPassword()
{
    m_passwordField->setText(m_password.text());
    if (m_password.isRefused())
        m_passwordField->setError(u"The password could not be stored. Unlock your keyring, and it "
                                  "is stored then."_s);
    else if (m_password.isLocked())
        m_passwordField->setError(u"Your keyring is locked or does not answer. Unlock it, and the "
                                  "password shows."_s);
    else
        m_passwordField->setError(QString());
}
