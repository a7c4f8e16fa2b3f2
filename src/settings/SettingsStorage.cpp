#include "settings/UploadSettings.h"

#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "platform/Platform.h"
#include "settings/KeychainHelper.h"
#include "settings/SettingsCoding.h"

using namespace Qt::StringLiterals;

namespace {

const QString kKey = u"uploadSettings"_s;

/// The settings' own domain, or the standard one where that cannot be opened.
std::unique_ptr<PreferencesDomain> openStore()
{
    PreferencesStore &preferences = *Platform::current().preferences;
    std::unique_ptr<PreferencesDomain> suite =
        preferences.namedDomain(kAppIdentifier + ".settings"_L1);
    return suite ? std::move(suite) : preferences.standardDomain();
}

void logRecord(const QString &heading, const UploadSettings &settings)
{
    Log::Batch log;
    log.line(heading);
    log.line(u"   - Hostname: "_s + settings.hostname);
    log.line(u"   - Protocol: "_s + storedText(settings.serverType));
    log.line(u"   - Port: "_s + QString::number(settings.port));
}

/// Takes over a record that was stored before the settings had a domain of their own.
UploadSettings migrate(const QByteArray &json)
{
    Log::line(u"Found settings in standard UserDefaults, migrating..."_s);
    try {
        UploadSettings settings = SettingsCoding::decode(json);
        if (const std::optional<QString> password = SettingsCoding::decodeOldPassword(json))
            KeychainHelper::savePassword(*password);
        settings.save();
        return settings;
    } catch (const SettingsCoding::DecodingError &) {
        // Then there is nothing to take over, which the log says already.
        return {};
    }
}

/// Writes json to both domains: the standard one always holds a copy. Gives the reason of a
/// failure, empty on success.
QString store(const QByteArray &json)
{
    const QString error = openStore()->setData(kKey, json);
    return error.isEmpty() ? Platform::current().preferences->standardDomain()->setData(kKey, json)
                           : error;
}

} // namespace

UploadSettings UploadSettings::load()
{
    if (const std::optional<QByteArray> json = openStore()->data(kKey)) {
        try {
            UploadSettings settings = SettingsCoding::decode(*json);
            logRecord(u"✅ Successfully loaded settings:"_s, settings);
            return settings;
        } catch (const SettingsCoding::DecodingError &error) {
            Log::line(u"❌ Failed to decode settings: "_s + QString::fromUtf8(error.what()));
            return {};
        }
    }
    Log::line(u"No saved settings found, using defaults"_s);
    const std::optional<QByteArray> old =
        Platform::current().preferences->standardDomain()->data(kKey);
    return old ? migrate(*old) : UploadSettings();
}

void UploadSettings::save() const
{
    const QString error = store(SettingsCoding::encode(*this));
    if (error.isEmpty())
        logRecord(u"✅ Settings saved successfully:"_s, *this);
    else
        Log::line(u"❌ Failed to save settings: "_s + error);
}
