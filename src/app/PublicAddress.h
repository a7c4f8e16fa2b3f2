#pragma once

#include <QString>

/// The web address under which the file remoteFileName can be reached: base without blanks and tabs
/// at its ends, one slash, and the name as it is. Nothing is percent-encoded or checked.
QString publicAddress(const QString &base, const QString &remoteFileName);
