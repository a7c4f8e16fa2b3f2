#include "upload/CurlCommand.h"

#include "base/Whitespace.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

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

QString CurlCommand::url(const UploadSettings &settings, const QString &host,
                         const QString &remoteFileName, TlsFrom tlsFrom)
{
    const bool isTlsAtOnce =
        settings.serverType == UploadSettings::ServerType::ftps && tlsFrom == TlsFrom::FirstByte;
    // Curl takes the letter after ";type=" for the kind of transfer, wherever in the path.
    const QString folder =
        percentEncoded(remoteDirectory(settings.remotePath)).replace(u";type="_s, u"%3Btype="_s);
    const QString name = percentEncoded(remoteFileName).replace(u';', u"%3B"_s);
    return (isTlsAtOnce ? u"ftps://"_s : u"ftp://"_s) + host + u':' + QString::number(settings.port)
        + folder + name;
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
    // What begins in clear text would be handed to an HTTP proxy whole, the password included.
    if (settings.serverType == UploadSettings::ServerType::ftps && url.startsWith("ftp://"_L1))
        arguments << u"--proxytunnel"_s;
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
