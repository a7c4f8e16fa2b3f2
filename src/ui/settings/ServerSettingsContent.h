#pragma once

#include "ui/settings/SettingsPage.h"

#include <QString>

class ProtocolSelector;
class SettingsDraft;
class SettingsPicker;
class SettingsToggle;
class StoredPassword;
class StyledNumberField;
class StyledTextField;

/// The page of the server: how to reach it, who uploads, and where the files go.
class ServerSettingsContent : public SettingsPage {
    Q_OBJECT

public:
    /// Draft and password are not owned and must outlive the page.
    ServerSettingsContent(SettingsDraft &draft, StoredPassword &password,
                          QWidget *parent = nullptr);

private:
    void buildConnection();
    void buildAuthentication();
    void buildPaths();
    void buildTLSOptions();
    void connectControls();
    void takeHostname(const QString &text);
    void render();
    void renderHostname();
    void renderPassword();

    SettingsDraft &m_draft;
    StoredPassword &m_password;

    ProtocolSelector *m_protocol = nullptr;
    StyledTextField *m_hostname = nullptr;
    QString m_shownHostname;
    /// What is being typed into the host's field, key by key; may be a whole address.
    QString m_typedHostname;
    StyledNumberField *m_port = nullptr;
    SettingsToggle *m_passiveMode = nullptr;
    StyledTextField *m_username = nullptr;
    StyledTextField *m_passwordField = nullptr;
    StyledTextField *m_remotePath = nullptr;
    StyledTextField *m_publicURLBase = nullptr;
    SettingsCard *m_tlsOptions = nullptr;
    SettingsToggle *m_allowInsecureCertificates = nullptr;
    SettingsPicker *m_tlsVersion = nullptr;
};
