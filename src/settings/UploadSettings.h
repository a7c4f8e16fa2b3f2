#pragma once

#include "settings/StoredText.h"

#include <QString>
#include <QUrl>

#include <cstdint>
#include <vector>

class Clock;
class SecureRandom;

/// All that the user configures: where and how to upload, how remote files are named, and the
/// global shortcut. A plain value. The password is not a part of it: the keychain holds it.
struct UploadSettings {
    enum class ServerType { ftp, ftps, sftp };
    enum class TLSVersion { v1_0, v1_1, v1_2, v1_3, automatic };

    /// How the remote file name is made from the local one.
    enum class FilenameStyle { original, random, timestamp };

    /// Parameters of FilenameStyle::random.
    struct RandomFilenameConfig {
        std::int64_t length = 8; ///< Characters; not negative.
        bool useLowercase = true;
        bool useUppercase = false;
        bool useNumbers = true;
        bool useSymbols = false;
        QString customSymbols = QStringLiteral("-_");

        /// The characters to draw from, in order; never empty.
        QString characterPool() const;
        /// length characters of the pool, each drawn on its own. Stops the program if length is
        /// negative.
        QString generateRandomString(SecureRandom &random) const;

        bool operator==(const RandomFilenameConfig &) const = default;
    };

    struct KeyboardShortcut {
        enum class KeyModifier { command, shift, option, control };

        QString key = QStringLiteral("u"); ///< The character that the key types, lower case.
        std::vector<KeyModifier> modifiers = {KeyModifier::command, KeyModifier::shift};

        /// The modifiers' symbols in their stored order, then the key in upper case: "⌘⇧U".
        QString displayString() const;

        bool operator==(const KeyboardShortcut &) const = default;
    };

    ServerType serverType = ServerType::sftp;
    QString hostname;
    std::int64_t port = 22;
    QString username;
    QString remotePath = QStringLiteral("/");
    QString publicURLBase; ///< A remote file name appended to it gives the file's public address.
    bool usePassiveMode = true;
    bool allowInsecureCertificates = true;
    TLSVersion tlsVersion = TLSVersion::v1_2;
    FilenameStyle filenameStyle = FilenameStyle::original;
    bool addDateToFilename = false;
    RandomFilenameConfig randomFilenameConfig;
    KeyboardShortcut uploadClipboardShortcut;

    /// The password in the keychain, read anew at each call; empty when there is none.
    QString password() const;

    /// True when host name, user name, password and public address are all filled in.
    bool isValid() const;

    /// The stored record, or the defaults when nothing usable is stored. Moves a record of the
    /// older layout, with the password inside, to today's. Logs; never fails.
    static UploadSettings load();

    /// Stores this record. Logs; failures are logged too.
    void save() const;

    bool operator==(const UploadSettings &) const = default;
};

/// The order in which key caps are drawn: shift, control, command, option (by code point).
bool operator<(UploadSettings::KeyboardShortcut::KeyModifier a,
               UploadSettings::KeyboardShortcut::KeyModifier b);

/// The remote name for the local file at fileURL. clock and random serve the styles that use them.
QString generateFilename(UploadSettings::FilenameStyle style, const QUrl &fileURL,
                         const UploadSettings::RandomFilenameConfig &config, const Clock &clock,
                         SecureRandom &random);

/// The remote name for the local file at fileURL by all of the rules of settings.
QString remoteFilename(const UploadSettings &settings, const QUrl &fileURL, const Clock &clock,
                       SecureRandom &random);

/// name with "_" and the local date (yyyy-MM-dd) before its extension.
QString addDate(const QString &name, const Clock &clock);

// The texts under which the enumerations are stored and shown.
template <>
struct StoredTexts<UploadSettings::ServerType> {
    static constexpr StoredText<UploadSettings::ServerType> all[] = {
        {UploadSettings::ServerType::ftp, u"FTP"},
        {UploadSettings::ServerType::ftps, u"FTPS (FTP with TLS)"},
        {UploadSettings::ServerType::sftp, u"SFTP"},
    };
};
template <>
struct StoredTexts<UploadSettings::TLSVersion> {
    static constexpr StoredText<UploadSettings::TLSVersion> all[] = {
        {UploadSettings::TLSVersion::v1_0, u"TLS 1.0"},
        {UploadSettings::TLSVersion::v1_1, u"TLS 1.1"},
        {UploadSettings::TLSVersion::v1_2, u"TLS 1.2"},
        {UploadSettings::TLSVersion::v1_3, u"TLS 1.3"},
        {UploadSettings::TLSVersion::automatic, u"Auto"},
    };
};
template <>
struct StoredTexts<UploadSettings::FilenameStyle> {
    static constexpr StoredText<UploadSettings::FilenameStyle> all[] = {
        {UploadSettings::FilenameStyle::original, u"Keep Original Name"},
        {UploadSettings::FilenameStyle::random, u"Random String"},
        {UploadSettings::FilenameStyle::timestamp, u"Timestamp"},
    };
};
template <>
struct StoredTexts<UploadSettings::KeyboardShortcut::KeyModifier> {
    using KeyModifier = UploadSettings::KeyboardShortcut::KeyModifier;
    static constexpr StoredText<KeyModifier> all[] = {
        {KeyModifier::command, u"⌘"},
        {KeyModifier::shift, u"⇧"},
        {KeyModifier::option, u"⌥"},
        {KeyModifier::control, u"⌃"},
    };
};
