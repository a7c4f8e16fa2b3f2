#include "platform/linux/QtStandardFolders.h"

#include <QDir>
#include <QStandardPaths>

QString QtStandardFolders::home() const
{
    return QDir::homePath();
}

QString QtStandardFolders::desktop() const
{
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}
