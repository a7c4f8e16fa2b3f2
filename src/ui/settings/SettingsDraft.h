#pragma once

#include "settings/UploadSettings.h"

#include <QObject>

#include <functional>

/// The settings as the window shows them: a working copy that reaches the running application only
/// when it is saved. Every change goes through edit(), which applies the rules that tie the fields
/// to each other: another protocol brings its usual port unless the port was changed before, and of
/// a whole web address as the host only its host stays. Main thread.
class SettingsDraft : public QObject {
    Q_OBJECT

public:
    const UploadSettings &settings() const { return m_settings; }

    /// Whether the port was changed since the draft began, so that another protocol keeps it.
    bool hasManuallyEditedPort() const { return m_hasManuallyEditedPort; }

    /// Begins anew with the saved settings, which keep their port. Filling them in counts as a
    /// change of the port where it is not the default.
    void begin(const UploadSettings &saved);

    /// Changes the settings; changed() follows if they are not the same afterwards.
    void edit(const std::function<void(UploadSettings &settings)> &change);

Q_SIGNALS:
    /// The settings are others now: draw them.
    void changed();

private:
    UploadSettings m_settings;
    bool m_hasManuallyEditedPort = false;
};

/// The port that servers of that type usually have.
std::int64_t defaultPort(UploadSettings::ServerType type);

/// The host in text if text is a web address ("sftp://me@x.org:22/a" gives "x.org"); any other text
/// as it is.
QString cleanedHostname(const QString &text);
