#pragma once

/// What screen readers are told of the window's own kinds of controls.
namespace SettingsAccessibility {

/// To be called before any of them is shown; later calls do nothing.
void install();

} // namespace SettingsAccessibility
