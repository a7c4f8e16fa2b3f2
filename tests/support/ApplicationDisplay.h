#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <csignal>
#include <cstdio>
#include <cstdlib>

/// An X server of the test's own, without a window manager, on which the application object that is
/// made next shows its windows.
class ApplicationDisplay {
public:
    ApplicationDisplay()
        // It ends with us even if the test crashes.
        : m_server(::popen("echo $$; exec setpriv --pdeathsig KILL Xvfb -displayfd 1 "
                           "-screen 0 800x600x24 -nolisten tcp -noreset +extension XTEST "
                           "2>/dev/null",
                           "r"))
    {
        m_pid = std::atoi(line().constData());
        const QByteArray number = line();
        if (m_pid <= 0 || number.isEmpty())
            qFatal("the X server did not start");
        qputenv("DISPLAY", QByteArray(':' + number));
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    ~ApplicationDisplay()
    {
        ::kill(m_pid, SIGTERM);
        ::pclose(m_server);
    }
    ApplicationDisplay(const ApplicationDisplay &) = delete;
    ApplicationDisplay &operator=(const ApplicationDisplay &) = delete;

private:
    QByteArray line()
    {
        char text[32] = {};
        return m_server && std::fgets(text, sizeof text, m_server) ? QByteArray(text).trimmed()
                                                                   : QByteArray();
    }

    std::FILE *m_server;
    int m_pid = 0;
};
