#pragma once

#include "support/TestChild.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

/// A sway without a screen, the one that WAYLAND_DISPLAY names until it goes.
class PrivateSway {
public:
    PrivateSway() : m_sway(program(), {}) { qputenv("WAYLAND_DISPLAY", m_sway.firstLine()); }
    ~PrivateSway() { qunsetenv("WAYLAND_DISPLAY"); }
    PrivateSway(const PrivateSway &) = delete;
    PrivateSway &operator=(const PrivateSway &) = delete;

    void send(int signal) const { m_sway.send(signal); }

private:
    static void write(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("a file of the test could not be written");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /// sway refuses to run as root, and what it starts wants an account: in a namespace of its own
    /// it is neither.
    QString program() const
    {
        const QByteArray folder = QFile::encodeName(m_folder.path());
        write(m_folder.filePath(QStringLiteral("config")),
              "xwayland disable\nexec echo $WAYLAND_DISPLAY\n");
        write(m_folder.filePath(QStringLiteral("passwd")),
              "tester:x:1000:1000::/nonexistent:/bin/sh\n");
        write(m_folder.filePath(QStringLiteral("inside")),
              "#!/bin/sh -e\n"
              "mount --bind "
                  + folder
                  + "/passwd /etc/passwd\n"
                    "exec setpriv --pdeathsig KILL --inh-caps=-all --ambient-caps=-all "
                    "--bounding-set=-all -- "
                    "env WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 "
                    "sway -c "
                  + folder + "/config 2>" + folder + "/errors\n");
        write(m_folder.filePath(QStringLiteral("outside")),
              "#!/bin/sh\n"
              "exec unshare --user --map-user=1000 --map-group=1000 --keep-caps --mount "
              "--propagation private "
                  + folder + "/inside\n");
        return m_folder.filePath(QStringLiteral("outside"));
    }

    QTemporaryDir m_folder;
    TestChild m_sway;
};
