#include "platform/linux/SettingsFileStore.h"

#include "base/AppIdentifier.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

/// The file of the domain of that name.
QString filePath(const QString &name)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/tessery/"_s
        + name + u".conf"_s;
}

class FileDomain final : public PreferencesDomain {
public:
    explicit FileDomain(const QString &path) : m_settings(path, QSettings::IniFormat) { }

    bool couldBeRead() const { return m_settings.status() == QSettings::NoError; }

    std::optional<QByteArray> data(const QString &key) const override
    {
        // What somebody stored as another type is there too, as something that cannot be decoded.
        return m_settings.contains(key) ? std::optional(m_settings.value(key).toByteArray())
                                        : std::nullopt;
    }

    QString setData(const QString &key, const QByteArray &value) override
    {
        const QVariant earlier = m_settings.value(key);
        m_settings.setValue(key, value);
        m_settings.sync();
        if (m_settings.status() == QSettings::NoError)
            return {};
        // QSettings would go on offering the value as stored, and try again to store it.
        if (earlier.isValid())
            m_settings.setValue(key, earlier);
        else
            m_settings.remove(key);
        return u"Could not write "_s + m_settings.fileName();
    }

private:
    QSettings m_settings;
};

} // namespace

std::unique_ptr<PreferencesDomain> SettingsFileStore::namedDomain(const QString &name)
{
    const QString path = filePath(name);
    // Opening something like a pipe could block for ever.
    if (const QFileInfo file(path); file.exists() && !file.isFile())
        return nullptr;
    auto domain = std::make_unique<FileDomain>(path);
    return domain->couldBeRead() ? std::move(domain) : nullptr;
}

std::unique_ptr<PreferencesDomain> SettingsFileStore::standardDomain()
{
    return std::make_unique<FileDomain>(filePath(kAppIdentifier));
}
