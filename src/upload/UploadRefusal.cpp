#include "upload/UploadRefusal.h"

#include "base/LoggedName.h"
#include "base/Whitespace.h"
#include "upload/CurlCommand.h"
#include "upload/CurlHost.h"

#include <QFile>

#include <sys/stat.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Something that becomes a part of a command, and how it is called to the user.
struct Word {
    QLatin1String what;
    QString text;
};

UploadError refused(const Word &word, const QString &reason)
{
    return UploadError::uploadFailed(u"The "_s + word.what + u" '"_s + LoggedName::of(word.text)
                                     + u"' "_s + reason);
}

bool holdsControlCharacter(const QString &text)
{
    return std::ranges::any_of(
        text, [](QChar character) { return character.category() == QChar::Other_Control; });
}

/// A line feed begins a new command or a new entry; no tool needs any of the others.
std::optional<UploadError> refusalOfWord(const Word &word)
{
    if (holdsControlCharacter(word.text))
        return refused(word, u"holds a control character"_s);
    return std::nullopt;
}

/// The tools read what begins with a hyphen as an option.
std::optional<UploadError> refusalOfOption(const Word &word)
{
    if (word.text.startsWith(u'-'))
        return refused(word, u"begins with a hyphen"_s);
    return std::nullopt;
}

/// A name that leads elsewhere than the address does: to a folder, to the one above, or to the
/// root.
std::optional<UploadError> refusalOfRemoteName(const Word &name)
{
    const QStringList parts = name.text.split(u'/');
    if (parts.first().isEmpty() || parts.last().isEmpty() || parts.contains("."_L1)
        || parts.contains(".."_L1))
        return refused(name, u"is no name for a file"_s);
    return std::nullopt;
}

/// Sftp takes what follows a colon for a file to fetch, and what precedes it for the host.
std::optional<UploadError> refusalOfDestination(const Word &user, const Word &host)
{
    if (user.text.contains(u':'))
        return refused(user, u"holds a colon, which sftp cannot be told"_s);
    const bool isBracketed = host.text.startsWith(u'[') && host.text.endsWith(u']');
    if (!isBracketed && host.text.contains(u':'))
        return refused(host, u"holds a colon, which sftp is told between brackets only"_s);
    const QString name = isBracketed ? host.text.sliced(1).chopped(1) : host.text;
    if (std::ranges::any_of(name, [](QChar character) { return u"/@[]"_s.contains(character); }))
        return refused(host, u"is no valid host name"_s);
    return std::nullopt;
}

/// In a batch of sftp's a quotation mark ends the name, and a backslash may mean the character
/// after it: another file would be sent, or it would arrive under another name.
std::optional<UploadError> refusalBySftp(const Word &file, const Word &remoteName)
{
    for (const Word &word : {file, remoteName}) {
        if (word.text.contains(u'"'))
            return refused(word, u"holds a quotation mark, which sftp cannot be told"_s);
    }
    if (file.text.contains(u'\\') || remoteName.text.contains("\\\\"_L1)
        || remoteName.text.endsWith(u'\\')) {
        return refused(file.text.contains(u'\\') ? file : remoteName,
                       u"holds a backslash, which sftp cannot be told"_s);
    }
    return std::nullopt;
}

/// Curl would send what it can read of anything, and a folder as an empty file. What is not there
/// is left to the tool, which says so.
std::optional<UploadError> refusalOfFile(const Word &file)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(file.text).constData(), &status) != 0 || S_ISREG(status.st_mode))
        return std::nullopt;
    return refused(file, S_ISDIR(status.st_mode) ? u"is a folder"_s : u"is no regular file"_s);
}

std::optional<UploadError> refusalByCurl(const Word &host, const Word &path)
{
    if (!CurlHost::of(host.text))
        return refused(host, u"is no valid host name"_s);
    // Without a slash it follows the port in the URL, and could make another port or host of it.
    const QString first = path.text.section(u'/', 0, 0);
    if (!first.isEmpty() && (first.front().isDigit() || first.contains(u'@')))
        return refused(path, u"must begin with a slash"_s);
    return std::nullopt;
}

} // namespace

std::optional<UploadError> UploadRefusal::of(const UploadSettings &settings,
                                             const QString &filePath, const QString &remoteFileName)
{
    const bool isSftp = settings.serverType == UploadSettings::ServerType::sftp;
    const Word file{"file"_L1, filePath};
    const Word remoteName{"remote file name"_L1, remoteFileName};
    // As the tool of the route is told them: curl's are freed of the blanks around them.
    const Word path{"remote path"_L1,
                    isSftp ? settings.remotePath : trimmingWhitespace(settings.remotePath)};
    const Word user{"username"_L1, settings.username};
    const Word host{"hostname"_L1,
                    isSftp ? settings.hostname : CurlCommand::cleanHost(settings.hostname)};

    for (const Word &word : {file, remoteName, path, user, host}) {
        if (auto refusal = refusalOfWord(word))
            return refusal;
    }
    for (const Word &word : {user, host}) {
        if (auto refusal = refusalOfOption(word))
            return refusal;
    }
    if (auto refusal = refusalOfRemoteName(remoteName))
        return refusal;
    if (isSftp) {
        if (auto refusal = refusalOfDestination(user, host))
            return refusal;
    }
    if (auto refusal = isSftp ? refusalBySftp(file, remoteName) : refusalByCurl(host, path))
        return refusal;
    return refusalOfFile(file);
}
