#pragma once

#include "platform/PreferencesStore.h"

#include <map>

/// Preferences in memory.
class FakePreferencesStore final : public PreferencesStore {
public:
    /// What one domain holds.
    struct Domain {
        std::map<QString, QByteArray> values;
        QString writeError; ///< Makes writing fail unless empty.
        int writes = 0; ///< Successful ones.
    };

    std::unique_ptr<PreferencesDomain> namedDomain(const QString &name) override
    {
        return canOpenNamed ? std::make_unique<View>(named[name]) : nullptr;
    }
    std::unique_ptr<PreferencesDomain> standardDomain() override
    {
        return std::make_unique<View>(standard);
    }

    bool canOpenNamed = true;
    std::map<QString, Domain> named;
    Domain standard;

private:
    class View final : public PreferencesDomain {
    public:
        explicit View(Domain &domain) : m_domain(domain) { }
        std::optional<QByteArray> data(const QString &key) const override
        {
            const auto found = m_domain.values.find(key);
            return found == m_domain.values.end() ? std::nullopt : std::optional(found->second);
        }
        QString setData(const QString &key, const QByteArray &value) override
        {
            if (m_domain.writeError.isEmpty()) {
                m_domain.values[key] = value;
                ++m_domain.writes;
            }
            return m_domain.writeError;
        }

    private:
        Domain &m_domain;
    };
};
