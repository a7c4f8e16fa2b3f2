#pragma once

#include <QString>

#include <optional>

/// The one keychain item that holds the server's password. Synchronous; main thread.
namespace KeychainHelper {

/// Stores password (which may be empty) in place of any earlier one. True when it is stored.
bool savePassword(const QString &password);

/// The stored password, or absent.
std::optional<QString> loadPassword();

/// Whether the latest loadPassword() gave nothing because the keychain is locked or does not
/// answer.
bool isLocked();

} // namespace KeychainHelper
