#include "platform/linux/UserDirectories.h"

#include <QDir>
#include <QFile>
#include <QList>

namespace {

/// The start of text, up to the quotation mark. A backslash makes the next character an ordinary
/// one, as in a shell. Null if there is no quotation mark.
QByteArray upToQuote(const QByteArray &text)
{
    QByteArray start("");
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '"')
            return start;
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        start += text[i];
    }
    return {};
}

/// The path that value, in quotation marks, stands for. Empty unless it is absolute or begins with
/// $HOME.
QByteArray pathOf(const QByteArray &value, const QByteArray &home)
{
    constexpr QByteArrayView kHome("\"$HOME");
    if (value.startsWith("\"$HOME/") || value.startsWith("\"$HOME\"")) {
        const QByteArray rest = upToQuote(value.sliced(kHome.size()));
        return rest.isNull() ? rest : QByteArray(home + rest);
    }
    return value.startsWith("\"/") ? upToQuote(value.sliced(1)) : QByteArray();
}

} // namespace

QString UserDirectories::folder(const QByteArray &content, const QByteArray &key,
                                const QString &home)
{
    QByteArray path;
    for (const QByteArray &line : content.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (equals < 0 || line.first(equals).trimmed() != key)
            continue;
        // The last line counts, as in a shell.
        const QByteArray value = line.sliced(equals + 1).trimmed();
        if (const QByteArray named = pathOf(value, QFile::encodeName(home)); !named.isEmpty())
            path = named;
    }
    if (path.isEmpty())
        return {};
    const QString folder = QDir::cleanPath(QFile::decodeName(path));
    return folder == QDir::cleanPath(home) ? QString() : folder;
}
