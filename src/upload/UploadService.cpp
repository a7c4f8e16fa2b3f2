#include "upload/UploadService.h"

#include "base/Log.h"
#include "base/SystemError.h"
#include "settings/KeychainHelper.h"
#include "upload/CurlHost.h"
#include "upload/ExpectScript.h"
#include "upload/Netrc.h"
#include "upload/SftpCommand.h"
#include "upload/UploadError.h"
#include "upload/UploadRefusal.h"

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
    const QString password = KeychainHelper::loadPassword().value_or(QString());
    const Upload upload{.filePath = localPathOf(fileURL),
                        .remoteFileName = remoteFileName,
                        .settings = settings,
                        .password = password,
                        .mask = SecretMask(settings.username, password)};
    std::optional<UploadError> failure;
    try {
        throwIf(UploadRefusal::of(settings, upload.filePath, remoteFileName));
        switch (settings.serverType) {
        case UploadSettings::ServerType::sftp:
            co_await uploadSFTP(upload);
            break;
        case UploadSettings::ServerType::ftp:
        case UploadSettings::ServerType::ftps:
            co_await uploadFTPWithCurl(upload);
            break;
        }
    } catch (const UploadError &error) {
        failure = upload.mask.masked(error);
    }
    throwIf(failure);
}

QCoro::Task<> UploadService::uploadFTPWithCurl(Upload upload)
{
    using CurlCommand::TlsFrom;
    const UploadSettings &settings = upload.settings;
    const bool isKnown = m_environment.learned->wantsAuthTls(settings);
    CurlReport report = co_await runCurl(upload, isKnown ? TlsFrom::Command : TlsFrom::FirstByte);
    if (isKnown && !report.hasServerSpoken()) {
        m_environment.learned->setWantsAuthTls(settings, false); // The next upload learns it anew.
    } else if (settings.serverType == UploadSettings::ServerType::ftps && !isKnown
               && report.isServerInClearText()) {
        Log::line(u"⚠️ The server begins in clear text, asking it for TLS"_s);
        report = co_await runCurl(upload, TlsFrom::Command);
        m_environment.learned->setWantsAuthTls(settings, report.hasServerSpoken());
    }

    const auto failure =
        report.failure(CurlCommand::cleanHost(settings.hostname), settings.username);
    if (!failure)
        co_return;
    if (report.isExitCodeZero()) {
        Log::line(u"⚠️ curl ended without an error, but its report says '"_s
                  + upload.mask.masked(failure->words) + u"', which counts as a failure"_s);
    }
    throw UploadError(failure->error);
}

QCoro::Task<CurlReport> UploadService::runCurl(Upload upload, CurlCommand::TlsFrom tlsFrom)
{
    const UploadSettings &settings = upload.settings;
    // A host that curl cannot be told has been refused before.
    const CurlHost host = CurlHost::of(CurlCommand::cleanHost(settings.hostname)).value();
    const auto netrc = createNetrcFile(host.inNetrc, settings.username, upload.password);
    const QStringList arguments = CurlCommand::arguments(
        settings, upload.filePath, netrc->path(),
        CurlCommand::url(settings, host.inUrl, upload.remoteFileName, tlsFrom),
        m_environment.limits);
    Log::line(u"🔍 Executing: "_s + m_environment.curl + u' '
              + upload.mask.masked(CurlCommand::shownArguments(arguments)));

    const ProcessCommand command = {m_environment.curl, arguments,
                                    m_environment.limits.curlProcess};
    const ProcessOutcome outcome = co_await run(command);
    const CurlReport report(outcome);
    Log::line(u"📋 Full curl output:\n"_s + upload.mask.masked(report.text()));
    co_return report;
}

QCoro::Task<> UploadService::uploadSFTP(Upload upload)
{
    const bool hasKeys = QFileInfo::exists(m_environment.homeFolder + u"/.ssh"_s);
    if (hasKeys && !m_environment.learned->wantsPassword(upload.settings)) {
        QString failure;
        try {
            co_await uploadSFTPWithKeys(upload);
            co_return;
        } catch (const std::exception &error) {
            if (m_environment.stop.stop_requested())
                throw; // Nothing new is begun while the program quits.
            failure = QString::fromUtf8(error.what());
        }
        Log::line(u"SSH key auth failed, trying password: "_s + upload.mask.masked(failure));
    }
    co_await uploadSFTPWithPassword(upload);
}

QCoro::Task<> UploadService::uploadSFTPWithKeys(Upload upload)
{
    const auto batch = createBatchFile(upload);
    const ProcessCommand command = {
        m_environment.sftp,
        SftpCommand::arguments(upload.settings, batch->path(), m_environment.limits),
        m_environment.limits.keysProcess};
    const ProcessOutcome outcome = co_await run(command);
    if (SftpCommand::areKeysRefused(outcome))
        m_environment.learned->noteKeysRefused(upload.settings);
    throwIf(SftpCommand::verdict(outcome));
}

QCoro::Task<> UploadService::uploadSFTPWithPassword(Upload upload)
{
    const auto batch = createBatchFile(upload);
    if (!findExpect()) {
        throw UploadError::uploadFailed(u"expect is not installed. Install it with 'brew install "
                                        "expect' or use SSH key authentication"_s);
    }
    const QString text =
        ExpectScript::text(upload.settings, batch->path(), upload.password, m_environment.limits);
    const TemporaryFile script(freshPath("sftp_expect_"_L1, ".sh"_L1), text.toUtf8(),
                               TemporaryFile::Mode::ReadWriteExecute);
    ProcessCommand command = {script.path(), {}, m_environment.limits.passwordProcess};
    // A dialog would take the place of the prompt that expect waits for.
    command.variables = {u"SSH_ASKPASS_REQUIRE=never"_s};
    const ProcessOutcome outcome = co_await run(command);
    const std::optional<UploadError> failure = ExpectScript::verdict(outcome);
    if (!failure)
        m_environment.learned->notePasswordTaken(upload.settings);
    else if (failure->kind() == UploadError::Kind::authenticationFailed)
        m_environment.learned->notePasswordRefused(upload.settings);
    throwIf(failure);
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
    throwIf(Netrc::refusal(username, password));
    return std::make_unique<TemporaryFile>(freshPath(".netrc_"_L1, ""_L1),
                                           Netrc::contents(hostname, username, password).toUtf8());
}

std::unique_ptr<TemporaryFile> UploadService::createBatchFile(const Upload &upload) const
{
    return std::make_unique<TemporaryFile>(
        freshPath("sftp_batch_"_L1, ".txt"_L1),
        SftpCommand::batchText(upload.settings.remotePath, upload.filePath, upload.remoteFileName)
            .toUtf8());
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
