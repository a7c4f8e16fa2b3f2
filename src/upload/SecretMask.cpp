#include "upload/SecretMask.h"

#include <QRegularExpression>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

const QString kStars = u"********"_s;

/// Tools write the digits of such escapes in either case.
QString withLowerCaseEscapes(QString encoded)
{
    for (qsizetype at = encoded.indexOf(u'%'); at >= 0; at = encoded.indexOf(u'%', at + 1))
        encoded.replace(at, 3, encoded.mid(at, 3).toLower());
    return encoded;
}

QString withoutAddressesPasswords(QString text)
{
    // To the last @ of the line: curl quotes the variable that names a proxy as it is, also where
    // it is no address, and a password may hold anything.
    static const QRegularExpression ofProxy(
        u"^([^\n]*\\bproxy\\b[^\n]*?(?://|'(?!\\w+://))[^\\s:/@']*:)[^\n]*@"_s,
        QRegularExpression::MultilineOption | QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ofAny(u"(://[^\\s:/@]*:)[^\\s/]*@"_s);
    const QString replacement = u"\\1"_s + kStars + u'@';
    return text.replace(ofProxy, replacement).replace(ofAny, replacement);
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
    QString result = withoutAddressesPasswords(text);
    for (const QString &form : m_forms)
        result.replace(form, kStars);
    return result;
}

UploadError SecretMask::masked(const UploadError &error) const
{
    return error.withMessage(masked(error.message()));
}
