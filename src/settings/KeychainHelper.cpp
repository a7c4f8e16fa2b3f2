#include "settings/KeychainHelper.h"

#include "base/AppIdentifier.h"
#include "platform/Platform.h"

#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kAccount = "serverPassword"_L1;

} // namespace

bool KeychainHelper::savePassword(const QString &password)
{
    if (!password.isValidUtf16())
        return false;
    return Platform::current().secrets->write(kAppIdentifier, kAccount, password.toUtf8());
}

std::optional<QString> KeychainHelper::loadPassword()
{
    const std::optional<QByteArray> secret =
        Platform::current().secrets->read(kAppIdentifier, kAccount);
    if (!secret)
        return std::nullopt;
    // A password may begin with what would otherwise be dropped as a byte order mark.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless
                               | QStringDecoder::Flag::ConvertInitialBom);
    QString password = decoder.decode(*secret);
    if (decoder.hasError())
        return std::nullopt;
    return password;
}

bool KeychainHelper::isLocked()
{
    return Platform::current().secrets->isLocked();
}
