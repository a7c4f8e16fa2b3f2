#include "upload/UploadService.h"

#include "base/Log.h"
#include "base/SystemError.h"
#include "settings/KeychainHelper.h"
#include "upload/CurlCommand.h"
#include "upload/ExpectScript.h"
#include "upload/SftpCommand.h"
#include "upload/UploadError.h"

#include <QFileInfo>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// The path of the file for the tool. What is no local file is handed over as its whole address, at
/// which the tool finds nothing; a file of ours that happens to have the same path is not meant.
QString localPathOf(const QUrl &fileURL)
{
    return fileURL.isLocalFile() ? fileURL.toLocalFile() : fileURL.toString(QUrl::FullyEncoded);
}

QString storedPassword()
{
    return KeychainHelper::loadPassword().value_or(QString());
}

void throwIf(const std::optional<UploadError> &error)
{
    if (error)
        throw UploadError(*error);
}

} // namespace

UploadService::UploadService(Environment environment) : m_environment(std::move(environment))
{
}

QCoro::Task<> UploadService::upload(QUrl fileURL, UploadSettings settings, QString remoteFileName)
{
    switch (settings.serverType) {
    case UploadSettings::ServerType::sftp:
        co_await uploadSFTP(fileURL, settings, remoteFileName);
        break;
    case UploadSettings::ServerType::ftp:
    case UploadSettings::ServerType::ftps:
        co_await uploadFTPWithCurl(fileURL, settings, remoteFileName);
        break;
    }
}

QCoro::Task<> UploadService::uploadFTPWithCurl(QUrl fileURL, UploadSettings settings,
                                               QString remoteFileName)
{
    const QString host = CurlCommand::cleanHost(settings.hostname);
    const auto netrc = createNetrcFile(host, settings.username, storedPassword());
    const QStringList arguments =
        CurlCommand::arguments(settings, localPathOf(fileURL), netrc->path(),
                               CurlCommand::url(settings, remoteFileName), m_environment.limits);
    Log::line(u"🔍 Executing: "_s + m_environment.curl + u' '
              + CurlCommand::shownArguments(arguments));

    const ProcessCommand command = {m_environment.curl, arguments,
                                    m_environment.limits.curlProcess};
    const ProcessOutcome outcome = co_await run(command);

    const CurlCommand::Output output = CurlCommand::output(outcome);
    Log::line(u"📋 Full curl output:\n"_s + output.combined());
    throwIf(CurlCommand::verdict(output, outcome.status, host));
}

QCoro::Task<> UploadService::uploadSFTP(QUrl fileURL, UploadSettings settings,
                                        QString remoteFileName)
{
    if (QFileInfo::exists(m_environment.homeFolder + u"/.ssh"_s)) {
        QString failure;
        try {
            co_await uploadSFTPWithKeys(fileURL, settings, remoteFileName);
            co_return;
        } catch (const std::exception &error) {
            if (m_environment.stop.stop_requested())
                throw; // Nothing new is begun while the program quits.
            failure = QString::fromUtf8(error.what());
        }
        Log::line(u"SSH key auth failed, trying password: "_s + failure);
    }
    co_await uploadSFTPWithPassword(fileURL, settings, remoteFileName);
}

QCoro::Task<> UploadService::uploadSFTPWithKeys(QUrl fileURL, UploadSettings settings,
                                                QString remoteFileName)
{
    const auto batch = createBatchFile(fileURL, settings, remoteFileName);
    const ProcessCommand command = {
        m_environment.sftp, SftpCommand::arguments(settings, batch->path(), m_environment.limits),
        m_environment.limits.keysProcess};
    const ProcessOutcome outcome = co_await run(command);
    throwIf(SftpCommand::verdict(outcome));
}

QCoro::Task<> UploadService::uploadSFTPWithPassword(QUrl fileURL, UploadSettings settings,
                                                    QString remoteFileName)
{
    const auto batch = createBatchFile(fileURL, settings, remoteFileName);
    if (!findExpect()) {
        throw UploadError::uploadFailed(u"expect is not installed. Install it with 'brew install "
                                        "expect' or use SSH key authentication"_s);
    }
    const QString text =
        ExpectScript::text(settings, batch->path(), storedPassword(), m_environment.limits);
    const TemporaryFile script(freshPath("sftp_expect_"_L1, ".sh"_L1), text.toUtf8(),
                               TemporaryFile::Mode::ReadWriteExecute);
    const ProcessCommand command = {script.path(), {}, m_environment.limits.passwordProcess};
    const ProcessOutcome outcome = co_await run(command);
    throwIf(ExpectScript::verdict(outcome));
}

QCoro::Task<ProcessOutcome> UploadService::run(ProcessCommand command)
{
    ProcessOutcome outcome = co_await runChildProcess(std::move(command), m_environment.stop);
    switch (outcome.ending) {
    case ProcessOutcome::Ending::Exited:
    case ProcessOutcome::Ending::Crashed:
        co_return outcome;
    case ProcessOutcome::Ending::TimedOut:
        throw UploadError::timeout();
    case ProcessOutcome::Ending::Stopped:
        throw UploadError::uploadFailed(u"Cancelled because Tessery is quitting"_s);
    case ProcessOutcome::Ending::CouldNotStart:
        throw SystemError(outcome.errorText);
    }
    Q_UNREACHABLE();
}

std::unique_ptr<TemporaryFile> UploadService::createNetrcFile(const QString &hostname,
                                                              const QString &username,
                                                              const QString &password) const
{
    return std::make_unique<TemporaryFile>(
        freshPath(".netrc_"_L1, ""_L1),
        CurlCommand::netrcContents(hostname, username, password).toUtf8());
}

std::unique_ptr<TemporaryFile> UploadService::createBatchFile(const QUrl &fileURL,
                                                              const UploadSettings &settings,
                                                              const QString &remoteFileName) const
{
    return std::make_unique<TemporaryFile>(
        freshPath("sftp_batch_"_L1, ".txt"_L1),
        SftpCommand::batchText(settings.remotePath, localPathOf(fileURL), remoteFileName).toUtf8());
}

std::optional<QString> UploadService::findExpect() const
{
    return ExpectScript::findExpect(m_environment.expect);
}

QString UploadService::freshPath(QLatin1String prefix, QLatin1String suffix) const
{
    return m_environment.temporaryFolder + u'/' + prefix
        + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + suffix;
}
