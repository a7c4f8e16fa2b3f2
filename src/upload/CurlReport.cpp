#include "upload/CurlReport.h"

#include "upload/ToolText.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Exit code of curl's: no agreement with the server about TLS (CURLE_SSL_CONNECT_ERROR).
constexpr int kNoTls = 35;

/// How many lines of curl's output a message about an unknown failure quotes.
constexpr qsizetype kQuotedLines = 10;

/// What may stand before a message of curl's on its line: the progress meter has no line break at
/// its end.
constexpr auto kMeter = "[-\\s\\d:.kMGTP]*"_L1;

QRegularExpression messages(QLatin1String pattern)
{
    return QRegularExpression(u"^"_s + kMeter + pattern, QRegularExpression::MultilineOption);
}

/// text without the credentials in it, up to the end of their lines, whatever they contain.
QString withoutSentCredentials(const QString &output)
{
    static const QRegularExpression sentPassword(u"> PASS(?![^ \r\n])[^\n]*?(?=\r?(?:\n|\\z))"_s);
    // With an HTTP proxy in the environment curl sends the credentials to it instead.
    static const QRegularExpression sentToProxy(u"(Authorization: Basic )[^\r\n]*"_s);
    return QString(output)
        .replace(sentPassword, u"> PASS ********"_s)
        .replace(sentToProxy, u"\\1********"_s);
}

/// text without what curl tells of attempts to connect after which it connected by another way: to
/// another address of the host, or to another port for the data.
QString withoutAttempts(const QString &text)
{
    static const QRegularExpression attempt = messages(
        "\\* *(?:connect to .* failed: |Failed to connect to |Immediate connect fail for )"_L1);
    static const QRegularExpression success = messages("\\* *Connected (?:2nd connection )?to "_L1);
    QStringList lines = text.split(u'\n');
    bool isFollowedBySuccess = false;
    for (qsizetype i = lines.size() - 1; i >= 0; --i) {
        if (success.match(lines.at(i)).hasMatch())
            isFollowedBySuccess = true;
        else if (isFollowedBySuccess && attempt.match(lines.at(i)).hasMatch())
            lines.removeAt(i);
    }
    return lines.join(u'\n');
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

/// The last line in which an HTTP proxy tells how it went; empty if there is none.
QString lastHttpStatus(const QString &standardError)
{
    static const QRegularExpression status = messages("< (HTTP/[^\r\n]*)"_L1);
    QString last;
    for (auto found = status.globalMatch(standardError); found.hasNext();)
        last = found.next().captured(1);
    return last;
}

} // namespace

CurlReport::CurlReport(const ProcessOutcome &outcome)
    : CurlReport(ToolText::decoded(outcome.standardOutput).value_or(QString()),
                 ToolText::decoded(outcome.standardError).value_or(QString()), outcome.status)
{
    m_facts = outcome.standardError;
}

CurlReport::CurlReport(const QString &standardOutput, const QString &standardError, int status)
    : m_standardOutput(withoutSentCredentials(standardOutput))
    , m_standardError(withoutSentCredentials(standardError))
    , m_facts(standardError.toUtf8())
    , m_status(status)
{
}

QString CurlReport::text() const
{
    return m_standardOutput + u'\n' + m_standardError;
}

std::optional<CurlReport::Failure> CurlReport::failure(const QString &host,
                                                       const QString &username) const
{
    if (auto failure = failureByWords(host))
        return failure;
    if (m_status == 0)
        return failureOfSuccess(username);
    const QStringList lines = text().split(u'\n', Qt::SkipEmptyParts);
    return Failure{
        UploadError::uploadFailed(
            u"FTP upload failed (exit code "_s + QString::number(m_status) + u"):\n"_s
            + lines.mid(std::max<qsizetype>(lines.size() - kQuotedLines, 0)).join(u'\n')),
        {}};
}

std::optional<CurlReport::Failure> CurlReport::failureByWords(const QString &host) const
{
    const QString report = text();
    const QString ofConnections = withoutAttempts(report);
    QLatin1String words;
    const auto says = [&words](const QString &text, std::initializer_list<QLatin1String> any) {
        const auto found = std::ranges::find_if(
            any, [&text](QLatin1String candidate) { return text.contains(candidate); });
        if (found != any.end())
            words = *found;
        return found != any.end();
    };

    std::optional<UploadError> error;
    if (says(report, {"SSL certificate problem"_L1, "certificate verify failed"_L1})) {
        error = UploadError::uploadFailed(u"SSL certificate verification failed. Enable 'Allow "
                                          "Self-Signed Certificates' in settings."_s);
    } else if (says(report, {"530"_L1, "Login incorrect"_L1, "Access denied"_L1})) {
        error = UploadError::authenticationFailed();
    } else if (says(ofConnections, {"couldn't connect"_L1, "Connection refused"_L1})) {
        error = UploadError::connectionFailed(
            u"Could not connect to server. Check hostname and port."_s);
    } else if (says(report, {"Could not resolve host"_L1, "could not resolve host"_L1})) {
        error = UploadError::connectionFailed(u"Could not resolve hostname '"_s + host + u"'."_s);
    } else if (says(ofConnections, {"Operation timed out"_L1, "Connection timed out"_L1})) {
        error = UploadError::timeout();
    } else if (const QStringList lines = errorLines(m_standardError); !lines.isEmpty()) {
        words = "error"_L1;
        error = UploadError::uploadFailed(lines.join(u'\n'));
    }
    if (!error)
        return std::nullopt;
    return Failure{*error, words};
}

/// What curl itself calls a success, but is none.
std::optional<CurlReport::Failure> CurlReport::failureOfSuccess(const QString &username) const
{
    // Byte for byte, whatever else there is that is no UTF-8.
    const QString facts = QString::fromLatin1(m_facts);
    static const QRegularExpression login = messages("> USER ([^\r\n]*)"_L1);
    for (auto found = login.globalMatch(facts); found.hasNext();) {
        const QByteArray user = found.next().captured(1).toLatin1();
        if (user != username.toUtf8()) {
            const QString name = QString::fromUtf8(user);
            return Failure{UploadError::uploadFailed(u"curl has logged in as '"_s + name + u'\''),
                           u"USER "_s + name};
        }
    }
    static const QRegularExpression taken(u"^HTTP/[\\d.]+ +2\\d\\d(?!\\w)"_s);
    const QString httpStatus = lastHttpStatus(facts);
    if (!httpStatus.isEmpty() && !taken.match(httpStatus).hasMatch()) {
        const QString words = QString::fromUtf8(httpStatus.toLatin1());
        return Failure{UploadError::uploadFailed(u"The proxy answered: "_s + words), words};
    }
    return std::nullopt;
}

bool CurlReport::hasServerSpoken() const
{
    static const QRegularExpression words = messages("< \\d"_L1);
    return words.match(QString::fromLatin1(m_facts)).hasMatch();
}

bool CurlReport::isServerInClearText() const
{
    // A server that does talk TLS, but not as asked, has at least sent an alert.
    static const QRegularExpression tls = messages("\\* .*\\(IN\\), TLS"_L1);
    return m_status == kNoTls && !hasServerSpoken()
        && !tls.match(QString::fromLatin1(m_facts)).hasMatch();
}
