#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

/// One preferences domain: data by key, kept across runs. Synchronous; main thread.
class PreferencesDomain {
public:
    virtual ~PreferencesDomain() = default;
    PreferencesDomain() = default;
    PreferencesDomain(const PreferencesDomain &) = delete;
    PreferencesDomain &operator=(const PreferencesDomain &) = delete;

    /// What is stored under key; absent when nothing is, or when it cannot be read.
    virtual std::optional<QByteArray> data(const QString &key) const = 0;

    /// Stores value under key, at once and whole. Gives the reason of a failure, empty on success.
    [[nodiscard]] virtual QString setData(const QString &key, const QByteArray &value) = 0;
};

/// The user's preferences. Not available: a named domain cannot be opened, and the standard one
/// takes over.
class PreferencesStore {
public:
    virtual ~PreferencesStore() = default;
    PreferencesStore() = default;
    PreferencesStore(const PreferencesStore &) = delete;
    PreferencesStore &operator=(const PreferencesStore &) = delete;

    /// The domain of that name, or null when it cannot be opened.
    virtual std::unique_ptr<PreferencesDomain> namedDomain(const QString &name) = 0;

    /// The application's own domain. Never null.
    virtual std::unique_ptr<PreferencesDomain> standardDomain() = 0;
};
