#pragma once

#include "platform/PreferencesStore.h"

/// Preferences as INI files below the user's configuration folder, in a folder of the application's
/// own; one file per domain. A file that is there but cannot be read, or is badly formed, cannot be
/// opened. Files are replaced whole; new ones get the mode that the user's umask gives.
class SettingsFileStore final : public PreferencesStore {
public:
    std::unique_ptr<PreferencesDomain> namedDomain(const QString &name) override;
    std::unique_ptr<PreferencesDomain> standardDomain() override;
};
