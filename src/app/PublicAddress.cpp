#include "app/PublicAddress.h"

#include "base/Whitespace.h"

QString publicAddress(const QString &base, const QString &remoteFileName)
{
    QString address = trimmingWhitespace(base);
    if (!address.endsWith(u'/'))
        address += u'/';
    return address + remoteFileName;
}
