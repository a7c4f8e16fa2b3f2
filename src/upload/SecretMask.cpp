#include "upload/SecretMask.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// Begin and end of a part of a text.
using Range = std::pair<qsizetype, qsizetype>;

/// Tools write the digits of such escapes in either case.
QString withLowerCaseEscapes(QString encoded)
{
    for (qsizetype at = encoded.indexOf(u'%'); at >= 0; at = encoded.indexOf(u'%', at + 1))
        encoded.replace(at, 3, encoded.mid(at, 3).toLower());
    return encoded;
}

/// The passwords in the addresses of text.
std::vector<Range> passwordsOfAddresses(const QString &text)
{
    // To the last @ of the line: curl quotes the variable that names a proxy as it is, also where
    // it is no address, and a user name or password may hold anything.
    static const QRegularExpression ofProxy(
        u"^[^\n]*\\bproxy\\b[^\n]*?(?://|'(?!\\w+://))[^\n:]*:([^\n]*)@"_s,
        QRegularExpression::MultilineOption | QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ofAny(u"://[^\\s:/@]*:([^\\s/]*)@"_s);
    std::vector<Range> found;
    for (const QRegularExpression *pattern : {&ofProxy, &ofAny}) {
        for (auto matches = pattern->globalMatch(text); matches.hasNext();) {
            const QRegularExpressionMatch match = matches.next();
            found.emplace_back(match.capturedStart(1), match.capturedEnd(1));
        }
    }
    return found;
}

} // namespace

SecretMask::SecretMask(const QString &username, const QString &password)
{
    if (password.isEmpty())
        return;
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(password));
    const QByteArray login = QString(username + u':' + password).toUtf8().toBase64();
    m_forms = {QString::fromLatin1(login), password, encoded, withLowerCaseEscapes(encoded)};
}

QString SecretMask::masked(const QString &text) const
{
    // All are looked for in the text as it is, since they may lie inside each other.
    std::vector<Range> secrets = passwordsOfAddresses(text);
    for (const QString &form : m_forms) {
        for (qsizetype at = text.indexOf(form); at >= 0; at = text.indexOf(form, at + 1))
            secrets.emplace_back(at, at + form.size());
    }
    std::ranges::sort(secrets);

    QString masked;
    qsizetype done = 0;
    for (std::size_t i = 0; i < secrets.size();) {
        auto [begin, end] = secrets[i];
        for (++i; i < secrets.size() && secrets[i].first < end; ++i)
            end = std::max(end, secrets[i].second);
        masked += QStringView(text).sliced(done, begin - done);
        masked += u"********"_s;
        done = end;
    }
    return masked + QStringView(text).sliced(done).toString();
}

UploadError SecretMask::masked(const UploadError &error) const
{
    return error.withMessage(masked(error.message()));
}
