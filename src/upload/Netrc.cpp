#include "upload/Netrc.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Curl up to version 8.8 reads lines of up to 4095 bytes, its line break included, and passes over
/// longer ones without a word.
constexpr qsizetype kLongestLine = 4094;

/// Whether curl takes value for what it is without quotation marks around it. From 8.11 on it reads
/// such a value up to the first byte beyond ASCII only.
bool isPlain(const QString &value)
{
    return !value.startsWith(u'#') && !value.startsWith(u'"')
        && std::ranges::all_of(
            value, [](QChar character) { return character > u' ' && character < QChar(0x7F); });
}

QString encoded(const QString &value)
{
    if (isPlain(value))
        return value;
    QString escaped = value;
    return u'"' + escaped.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s) + u'"';
}

QString loginLine(const QString &username)
{
    return u"login "_s + encoded(username);
}

QString passwordLine(const QString &password)
{
    return u"password "_s + encoded(password);
}

bool holdsLineBreak(const QString &text)
{
    return std::ranges::any_of(text, [](QChar character) {
        return character == u'\n' || character == u'\r' || character.isNull();
    });
}

} // namespace

QString Netrc::contents(const QString &host, const QString &username, const QString &password)
{
    return u"machine "_s + host + u'\n' + loginLine(username) + u'\n' + passwordLine(password);
}

std::optional<UploadError> Netrc::refusal(const QString &username, const QString &password)
{
    if (holdsLineBreak(password))
        return UploadError::uploadFailed(
            u"The password holds a line break, which FTP cannot send"_s);
    if (loginLine(username).toUtf8().size() > kLongestLine)
        return UploadError::uploadFailed(u"The username is too long for curl"_s);
    if (passwordLine(password).toUtf8().size() > kLongestLine)
        return UploadError::uploadFailed(u"The password is too long for curl"_s);
    return std::nullopt;
}
