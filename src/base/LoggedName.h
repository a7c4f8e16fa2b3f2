#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

/// File names as they are written to the log, as UTF-8.
namespace LoggedName {

/// name, which must be valid UTF-8, as it is, except for control characters: they would break the
/// line or command the terminal, and are written as "\x0A".
QByteArray of(std::string_view name);

/// The same for a name that is text already.
QString of(const QString &name);

/// name with every byte that is not printable ASCII written as "\xE9".
QByteArray ofInvalid(std::string_view name);

} // namespace LoggedName
