#pragma once

#include "support/TestChild.h"

#include <QByteArray>
#include <QStringList>

/// An X display of the test's own, the one that DISPLAY names until it goes.
class PrivateDisplay {
public:
    /// server is a program with the X servers' usual options.
    explicit PrivateDisplay(const QStringList &options = {},
                            const QString &server = QStringLiteral("Xvfb"))
        : m_server(server,
                   QStringList{QStringLiteral("-displayfd"), QStringLiteral("1"),
                               QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                               QStringLiteral("-noreset")}
                       + options)
    {
        qputenv("DISPLAY", QByteArray(':' + m_server.firstLine()));
    }
    ~PrivateDisplay() { qunsetenv("DISPLAY"); }
    PrivateDisplay(const PrivateDisplay &) = delete;
    PrivateDisplay &operator=(const PrivateDisplay &) = delete;

    void send(int signal) const { m_server.send(signal); }

private:
    TestChild m_server;
};
