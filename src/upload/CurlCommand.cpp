#include "upload/CurlCommand.h"

#include "base/Whitespace.h"
#include "upload/ToolText.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// How many lines of curl's output a message about an unknown failure quotes.
constexpr qsizetype kQuotedLines = 10;

/// The host in a URL, as it is written there (QUrl would change its case); empty if there is none.
QString hostOf(const QString &url)
{
    if (const QUrl parsed(url, QUrl::StrictMode); !parsed.isValid() || parsed.host().isEmpty())
        return {};
    static const QRegularExpression pattern(
        u"^[a-z]+://(?:[^/?#]*@)?(?:\\[([^\\]]*)\\]|([^:/?#]*))"_s);
    const QRegularExpressionMatch match = pattern.match(url);
    return match.captured(1) + match.captured(2);
}

QString seconds(std::chrono::seconds limit)
{
    return QString::number(limit.count());
}

QStringList tlsArguments(const UploadSettings &settings)
{
    QStringList arguments = {u"--ssl-reqd"_s, u"--ftp-ssl-control"_s};
    switch (settings.tlsVersion) {
    case UploadSettings::TLSVersion::v1_0:
        arguments << u"--tlsv1.0"_s;
        break;
    case UploadSettings::TLSVersion::v1_1:
        arguments << u"--tlsv1.1"_s;
        break;
    case UploadSettings::TLSVersion::v1_2:
        arguments << u"--tlsv1.2"_s;
        break;
    case UploadSettings::TLSVersion::v1_3:
        arguments << u"--tlsv1.3"_s;
        break;
    case UploadSettings::TLSVersion::automatic:
        break;
    }
    if (settings.allowInsecureCertificates)
        arguments << u"-k"_s;
    return arguments;
}

/// The lines of curl's messages that speak of an error; none when they do not.
QStringList errorLines(const QString &standardError)
{
    if (!standardError.contains("error"_L1) || standardError.contains("SSL re-using"_L1))
        return {};
    QStringList found;
    for (const QString &line : standardError.split(u'\n')) {
        const QString lower = line.toLower();
        if (lower.contains("error"_L1) || lower.contains("failed"_L1))
            found << line;
    }
    return found;
}

} // namespace

QString CurlCommand::cleanHost(const QString &hostname)
{
    const QString typed = trimmingWhitespace(hostname);
    for (const QLatin1String scheme : {"ftp://"_L1, "ftps://"_L1, "http://"_L1, "https://"_L1}) {
        if (!typed.startsWith(scheme))
            continue;
        if (const QString host = hostOf(typed); !host.isEmpty())
            return host;
    }
    return typed;
}

QString CurlCommand::remoteDirectory(const QString &remotePath)
{
    const QString path = trimmingWhitespace(remotePath);
    return path.endsWith(u'/') ? path : path + u'/';
}

QString CurlCommand::percentEncoded(const QString &text)
{
    // Half a surrogate pair has no UTF-8 form.
    if (!text.isValidUtf16())
        return text;
    return QString::fromLatin1(QUrl::toPercentEncoding(text, "!$&'()*+,;=:@/"));
}

QString CurlCommand::url(const UploadSettings &settings, const QString &remoteFileName)
{
    const bool isEncrypted = settings.serverType == UploadSettings::ServerType::ftps;
    return (isEncrypted ? u"ftps://"_s : u"ftp://"_s) + cleanHost(settings.hostname) + u':'
        + QString::number(settings.port) + percentEncoded(remoteDirectory(settings.remotePath))
        + percentEncoded(remoteFileName);
}

QString CurlCommand::netrcContents(const QString &host, const QString &username,
                                   const QString &password)
{
    return u"machine "_s + host + u"\nlogin "_s + username + u"\npassword "_s + password;
}

QString CurlCommand::escapedForGlobbing(const QString &path)
{
    QString escaped;
    for (const QChar c : path) {
        if (u"[]{}"_s.contains(c))
            escaped += u'\\';
        escaped += c;
    }
    return escaped;
}

QStringList CurlCommand::arguments(const UploadSettings &settings, const QString &filePath,
                                   const QString &netrcPath, const QString &url,
                                   const UploadLimits &limits)
{
    QStringList arguments;
    if (settings.serverType == UploadSettings::ServerType::ftps)
        arguments << tlsArguments(settings);
    if (settings.usePassiveMode)
        arguments << u"--ftp-pasv"_s;
    arguments << u"-T"_s << escapedForGlobbing(filePath) << u"--netrc-file"_s << netrcPath
              << u"--max-time"_s << seconds(limits.curlTransfer) << u"--connect-timeout"_s
              << seconds(limits.curlConnect) << u"-v"_s << url;
    return arguments;
}

QString CurlCommand::shownArguments(const QStringList &arguments)
{
    QStringList shown;
    for (const QString &argument : arguments) {
        if (argument.contains("netrc"_L1))
            shown << u"[netrc-file]"_s;
        else if (argument.contains(u' '))
            shown << u'"' + argument + u'"';
        else
            shown << argument;
    }
    return shown.join(u' ');
}

QString CurlCommand::withoutPassword(const QString &output)
{
    // To the end of the line, whatever the password contains. Curl's progress meter, which has no
    // line break at its end, may stand before it on the line.
    static const QRegularExpression sentPassword(u"> PASS(?![^ \r\n])[^\n]*?(?=\r?(?:\n|\\z))"_s);
    // With an HTTP proxy in the environment curl sends the credentials to it instead.
    static const QRegularExpression sentToProxy(u"(Authorization: Basic )[^\r\n]*"_s);
    return QString(output)
        .replace(sentPassword, u"> PASS ********"_s)
        .replace(sentToProxy, u"\\1********"_s);
}

QString CurlCommand::Output::combined() const
{
    return standardOutput + u'\n' + standardError;
}

CurlCommand::Output CurlCommand::output(const ProcessOutcome &outcome)
{
    return {.standardOutput =
                withoutPassword(ToolText::decoded(outcome.standardOutput).value_or(QString())),
            .standardError =
                withoutPassword(ToolText::decoded(outcome.standardError).value_or(QString()))};
}

std::optional<UploadError> CurlCommand::verdict(const Output &output, int status,
                                                const QString &host)
{
    const QString combined = output.combined();
    const auto says = [&combined](QLatin1String words) {
        return combined.contains(words);
    };

    if (says("SSL certificate problem"_L1) || says("certificate verify failed"_L1)) {
        return UploadError::uploadFailed(u"SSL certificate verification failed. Enable 'Allow "
                                         "Self-Signed Certificates' in settings."_s);
    }
    if (says("530"_L1) || says("Login incorrect"_L1) || says("Access denied"_L1))
        return UploadError::authenticationFailed();
    if (says("couldn't connect"_L1) || says("Connection refused"_L1)) {
        return UploadError::connectionFailed(
            u"Could not connect to server. Check hostname and port."_s);
    }
    if (says("Could not resolve host"_L1) || says("could not resolve host"_L1))
        return UploadError::connectionFailed(u"Could not resolve hostname '"_s + host + u"'."_s);
    if (says("Operation timed out"_L1) || says("Connection timed out"_L1))
        return UploadError::timeout();
    if (const QStringList lines = errorLines(output.standardError); !lines.isEmpty())
        return UploadError::uploadFailed(lines.join(u'\n'));
    if (status == 0)
        return std::nullopt;

    const QStringList lines = combined.split(u'\n', Qt::SkipEmptyParts);
    return UploadError::uploadFailed(
        u"FTP upload failed (exit code "_s + QString::number(status) + u"):\n"_s
        + lines.mid(std::max<qsizetype>(lines.size() - kQuotedLines, 0)).join(u'\n'));
}
