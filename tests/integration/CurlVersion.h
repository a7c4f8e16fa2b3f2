#pragma once

#include <QProcess>
#include <QString>

/// Whether the installed curl is of the generation 8, which words its troubles differently from
/// version 7, and reads a value of a netrc file only up to its first byte beyond ASCII (8.14 does).
inline bool curlIsVersion8()
{
    QProcess curl;
    curl.start(QStringLiteral("/usr/bin/curl"), {QStringLiteral("--version")});
    curl.waitForFinished();
    return curl.readAllStandardOutput().startsWith("curl 8.");
}
