#pragma once

class LoginItem;

/// The switch for starting at login.
namespace LaunchAtLogin {

/// Registers or unregisters the program as a login item. A failure is logged, nothing else.
void setEnabled(LoginItem &item, bool enabled);

} // namespace LaunchAtLogin
