#include "upload/ExpectScript.h"

#include "upload/ToolText.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// text as one word of a command: in quotes if it holds anything that Tcl might read.
QString asWord(const QString &text)
{
    const bool isPlain = std::ranges::all_of(text, [](QChar character) {
        return character.isLetterOrNumber() || u"._-@:/%"_s.contains(character);
    });
    return isPlain ? text : u'"' + ExpectScript::escapeForExpect(text) + u'"';
}

} // namespace

std::optional<QString> ExpectScript::findExpect(const QStringList &paths)
{
    const auto found = std::find_if(paths.begin(), paths.end(),
                                    [](const QString &path) { return QFileInfo::exists(path); });
    return found == paths.end() ? std::nullopt : std::optional(*found);
}

QString ExpectScript::escapeForExpect(const QString &text)
{
    QString escaped;
    for (const QChar c : text) {
        if (u"\\\"$[]{}"_s.contains(c))
            escaped += u'\\';
        escaped += c;
    }
    return escaped;
}

// Some lines of the script have reasons of their own:
// - "-b" forbids ssh to ask for a password, and ssh keeps the first value that it is given, so the
//   permission to ask stands before it.
// - A key would be in the way: ssh would ask for its passphrase, or the server would end the login
//   after too many of them.
// - "--" keeps a password that begins with a dash from being taken for a flag of send.
// - A sftp that was killed has the status 0 and the signal behind it as further elements.
QString ExpectScript::text(const UploadSettings &settings, const QString &batchPath,
                           const QString &password, const UploadLimits &limits)
{
    const QString typed = escapeForExpect(password);
    const QStringList lines = {
        u"#!/usr/bin/expect -f"_s,
        u"set timeout "_s + QString::number(limits.passwordPrompt.count()),
        u"spawn sftp -oBatchMode=no -oPreferredAuthentications=keyboard-interactive,password"_s
            + u" -b \""_s + escapeForExpect(batchPath) + u"\" -oPort="_s
            + QString::number(settings.port)
            + u" -oStrictHostKeyChecking=no -oUserKnownHostsFile=/dev/null -oConnectTimeout="_s
            + QString::number(limits.sftpConnect.count()) + u' '
            + asWord(settings.username + u'@' + settings.hostname),
        u"expect {"_s,
        u"    timeout {"_s,
        u"        puts \"Connection timed out\""_s,
        u"        exit 1"_s,
        u"    }"_s,
        u"    \"password:\" {"_s,
        u"        send -- \""_s + typed + u"\\r\""_s,
        u"        exp_continue"_s,
        u"    }"_s,
        u"    \"Password:\" {"_s,
        u"        send -- \""_s + typed + u"\\r\""_s,
        u"        exp_continue"_s,
        u"    }"_s,
        u"    \"Permission denied\" {"_s,
        u"        exit 2"_s,
        u"    }"_s,
        u"    eof"_s,
        u"}"_s,
        u"catch wait result"_s,
        u"if {[llength $result] > 4} { exit 1 }"_s,
        u"exit [lindex $result 3]"_s,
    };
    return lines.join(u'\n');
}

std::optional<UploadError> ExpectScript::verdict(const ProcessOutcome &outcome)
{
    const QString standardOutput = ToolText::decoded(outcome.standardOutput).value_or(QString());
    const QString standardError = ToolText::decoded(outcome.standardError).value_or(QString());
    const auto says = [&standardOutput, &standardError](QLatin1String words) {
        return standardOutput.contains(words) || standardError.contains(words);
    };
    if (says("timed out"_L1))
        return UploadError::timeout();
    if (says("Permission denied"_L1) || says("Authentication failed"_L1))
        return UploadError::authenticationFailed();
    if (outcome.status == 0)
        return std::nullopt;
    return UploadError::uploadFailed(u"SFTP authentication or upload failed"_s);
}
