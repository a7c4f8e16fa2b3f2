#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// A desktop entry file as a value: the group [Desktop Entry] can be read and changed, and
/// everything else (comments, translations, other groups, unknown keys) stays as it is.
class DesktopEntry {
public:
    /// Without the group if bytes hold none.
    explicit DesktopEntry(const QByteArray &bytes = {});

    /// Whether there is a group [Desktop Entry].
    bool isValid() const { return m_start >= 0; }

    /// The value of key as it stands in the file, escapes and all; absent when there is none.
    std::optional<QString> value(const QString &key) const;
    /// The value of a key of type string, without its escapes; empty when there is none.
    QString text(const QString &key) const;
    /// Whether key has the value true.
    bool isTrue(const QString &key) const;
    /// The parts of a list of strings; empty when there is none.
    QStringList list(const QString &key) const;

    /// Replaces the value of key, or adds the key; makes the group if there is none.
    void setValue(const QString &key, const QString &value);
    /// Removes key, if it is there.
    void remove(const QString &key);

    /// The file's content.
    QByteArray bytes() const;

private:
    qsizetype lineOf(const QString &key) const;

    QStringList m_lines;
    qsizetype m_start = -1; ///< The line of the group's header.
};

/// The value of the key Exec that starts program with no arguments, quoted and escaped;
/// through env where desktops would not find it otherwise.
QString execValue(const QString &program);

/// The program and its arguments that a value of the key Exec stands for, field codes left out.
/// Empty if it cannot be parsed.
QStringList execArguments(const QString &execValue);
