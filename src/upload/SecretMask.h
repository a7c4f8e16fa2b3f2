#pragma once

#include "upload/UploadError.h"

#include <QString>
#include <QStringList>

/// Takes passwords out of what is logged or shown: the server's in each form in which a tool may
/// repeat it, and those in addresses, such as that of a proxy.
class SecretMask {
public:
    /// password may be empty; then only addresses are looked at.
    SecretMask(const QString &username, const QString &password);

    QString masked(const QString &text) const;
    UploadError masked(const UploadError &error) const;

private:
    QStringList m_forms;
};
