#include "platform/linux/DesktopEntry.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString kGroup = u"[Desktop Entry]"_s;

/// The text of a value of type string.
QString unescaped(const QString &value)
{
    QString text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != u'\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        switch (const QChar next = value[++i]; next.unicode()) {
        case u's':
            text += u' ';
            break;
        case u'n':
            text += u'\n';
            break;
        case u't':
            text += u'\t';
            break;
        case u'r':
            text += u'\r';
            break;
        case u'\\':
            text += u'\\';
            break;
        default:
            text += u'\\';
            text += next;
        }
    }
    return text;
}

QString escaped(const QString &text)
{
    QString value = text;
    value.replace(u'\\', u"\\\\"_s)
        .replace(u'\n', u"\\n"_s)
        .replace(u'\t', u"\\t"_s)
        .replace(u'\r', u"\\r"_s);
    return value;
}

/// Splits a command line by the rules of the key Exec: double quotes, and in them a backslash
/// before a quote, a dollar sign, a backtick or a backslash.
class ExecParser {
public:
    QStringList parse(const QString &line)
    {
        for (qsizetype i = 0; i < line.size(); ++i) {
            const QChar c = line[i];
            if (m_inQuotes && c == u'\\' && i + 1 < line.size()) {
                add(line[++i]);
            } else if (c == u'"') {
                m_inQuotes = !m_inQuotes;
                m_hasArgument = true;
            } else if (c == u'%' && i + 1 < line.size()) {
                if (line[++i] == u'%')
                    add(u'%');
            } else if (!m_inQuotes && c.isSpace()) {
                finish();
            } else {
                add(c);
            }
        }
        finish();
        return m_inQuotes ? QStringList() : m_arguments;
    }

private:
    void add(QChar c)
    {
        m_argument += c;
        m_hasArgument = true;
    }

    void finish()
    {
        if (m_hasArgument)
            m_arguments << m_argument;
        m_argument.clear();
        m_hasArgument = false;
    }

    QStringList m_arguments;
    QString m_argument;
    bool m_hasArgument = false;
    bool m_inQuotes = false;
};

} // namespace

DesktopEntry::DesktopEntry(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    m_lines = QString::fromUtf8(bytes).split(u'\n');
    if (m_lines.last().isEmpty())
        m_lines.removeLast(); // What follows the last line break.
    for (qsizetype i = 0; i < m_lines.size() && m_start < 0; ++i) {
        if (m_lines[i].trimmed() == kGroup)
            m_start = i;
    }
}

/// The line that holds key; -1 when there is none.
qsizetype DesktopEntry::lineOf(const QString &key) const
{
    if (!isValid())
        return -1;
    for (qsizetype i = m_start + 1; i < m_lines.size() && !m_lines[i].startsWith(u'['); ++i) {
        const qsizetype equals = m_lines[i].indexOf(u'=');
        if (equals > 0 && QStringView(m_lines[i]).left(equals).trimmed() == key)
            return i;
    }
    return -1;
}

std::optional<QString> DesktopEntry::value(const QString &key) const
{
    const qsizetype line = lineOf(key);
    if (line < 0)
        return std::nullopt;
    return m_lines[line].mid(m_lines[line].indexOf(u'=') + 1).trimmed();
}

QString DesktopEntry::text(const QString &key) const
{
    return unescaped(value(key).value_or(QString()));
}

bool DesktopEntry::isTrue(const QString &key) const
{
    return value(key) == u"true"_s;
}

QStringList DesktopEntry::list(const QString &key) const
{
    return text(key).split(u';', Qt::SkipEmptyParts);
}

void DesktopEntry::setValue(const QString &key, const QString &value)
{
    if (!isValid()) {
        m_start = m_lines.size();
        m_lines << kGroup;
    }
    const QString content = key + u'=' + value;
    if (const qsizetype line = lineOf(key); line >= 0) {
        m_lines[line] = content;
        return;
    }
    qsizetype end = m_start + 1;
    while (end < m_lines.size() && !m_lines[end].startsWith(u'['))
        ++end;
    while (m_lines[end - 1].trimmed().isEmpty())
        --end; // The blank lines before the next group stay there.
    m_lines.insert(end, content);
}

void DesktopEntry::remove(const QString &key)
{
    if (const qsizetype line = lineOf(key); line >= 0)
        m_lines.removeAt(line);
}

QByteArray DesktopEntry::bytes() const
{
    return m_lines.isEmpty() ? QByteArray() : m_lines.join(u'\n').toUtf8() + '\n';
}

QString execValue(const QString &program)
{
    static const QString reserved = u" \t\n\r\"'\\><~|&;$*?#()`"_s;
    QString argument = program;
    argument.replace(u'%', u"%%"_s);
    if (std::any_of(argument.cbegin(), argument.cend(),
                    [](QChar c) { return reserved.contains(c); })) {
        for (const QChar special : u"\\\"`$"_s)
            argument.replace(special, QString(u'\\') + special);
        argument = u'"' + argument + u'"';
    }
    // GLib looks for the program that stands first before it reads %% as %, and finds none.
    return program.contains(u'%') ? QString(u"env "_s + escaped(argument)) : escaped(argument);
}

QStringList execArguments(const QString &execValue)
{
    return ExecParser().parse(unescaped(execValue));
}
