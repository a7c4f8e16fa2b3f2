#include "upload/SftpCommand.h"

#include "upload/ToolText.h"

using namespace Qt::StringLiterals;

QString SftpCommand::batchText(const QString &remotePath, const QString &filePath,
                               const QString &remoteFileName)
{
    const QString folder = QString(remotePath).replace(u'"', u"\\\""_s);
    return u"cd "_s + folder + u"\nput \""_s + filePath + u"\" \""_s + remoteFileName
        + u"\"\nbye"_s;
}

QStringList SftpCommand::arguments(const UploadSettings &settings, const QString &batchPath,
                                   const UploadLimits &limits)
{
    return {u"-b"_s,
            batchPath,
            u"-oPort="_s + QString::number(settings.port),
            u"-oStrictHostKeyChecking=no"_s,
            u"-oUserKnownHostsFile=/dev/null"_s,
            u"-oBatchMode=yes"_s,
            u"-oConnectTimeout="_s + QString::number(limits.sftpConnect.count()),
            settings.username + u'@' + settings.hostname};
}

bool SftpCommand::areKeysRefused(const ProcessOutcome &outcome)
{
    constexpr int kLoginFailed = 255; // Ssh's. After the login a folder may be closed, too.
    // Offered more keys than it allows, the server breaks off before it has refused the last.
    return outcome.status == kLoginFailed
        && (outcome.standardError.contains("Permission denied")
            || outcome.standardError.contains("Too many authentication failures"));
}

std::optional<UploadError> SftpCommand::verdict(const ProcessOutcome &outcome)
{
    // Any word of sftp's is a failure, except that it always tells of the new host key.
    const std::optional<QString> words = ToolText::decoded(outcome.standardError);
    if (words && !words->isEmpty() && !words->contains("Permanently added"_L1))
        return UploadError::uploadFailed(*words);
    if (outcome.status == 0)
        return std::nullopt;
    return UploadError::uploadFailed(u"SFTP process exited with code "_s
                                     + QString::number(outcome.status));
}
