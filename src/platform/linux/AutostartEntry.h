#pragma once

#include "platform/LoginItem.h"
#include "platform/linux/DesktopEntry.h"

/// The autostart entry of the desktop, org.tessery.Tessery.desktop in the user's autostart folder,
/// which hides one of that name in the system's folders.
///
/// The item is on when the entry in force would start this program (the same file, or it through
/// env) in the desktop that runs: one that is hidden, switched off, meant for other desktops,
/// broken, or that starts another program counts as off. Registering puts right what is wrong and
/// keeps everything else in the file. A link is never written through: what it points to belongs
/// to somebody else, and the link gives way to a file.
class AutostartEntry final : public LoginItem {
public:
    /// program: the absolute path of the program to start.
    explicit AutostartEntry(const QString &program);

    bool isEnabled() const override;
    QString registerItem() override;
    QString unregisterItem() override;

    /// Has the user's entry start this program if it is on but names a program that no longer
    /// exists: the program has moved. An entry that names another program that does exist is left
    /// alone, for that may be the one that the user wants. Failures are met again, and told, when
    /// the user switches the item.
    void followMovedProgram();

private:
    bool startsThisProgram(const DesktopEntry &entry) const;
    DesktopEntry corrected(DesktopEntry entry) const;

    QString m_program;
};
