#include "upload/CurlHost.h"

#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

bool isAscii(const QString &text)
{
    return std::ranges::all_of(text, [](QChar character) { return character < QChar(0x80); });
}

/// Whether text can be the name of a host or of a zone.
bool isName(const QString &text)
{
    return !text.isEmpty() && std::ranges::all_of(text, [](QChar character) {
        return character < QChar(0x80)
            && (character.isLetterOrNumber() || u"._-"_s.contains(character));
    });
}

/// An IPv6 address as the system writes it, which is also how curl does; empty if address is none.
QString canonicalIpv6(const QString &address)
{
    in6_addr bytes = {};
    std::array<char, INET6_ADDRSTRLEN> text = {};
    if (::inet_pton(AF_INET6, address.toLatin1().constData(), &bytes) != 1
        || !::inet_ntop(AF_INET6, &bytes, text.data(), text.size()))
        return {};
    return QString::fromLatin1(text.data());
}

/// With or without brackets, and with a zone ("%eth0", in a URL "%25eth0") behind the address.
std::optional<CurlHost> ipv6(const QString &host)
{
    QString address = host;
    if (host.startsWith(u'[') && host.endsWith(u']'))
        address = host.sliced(1).chopped(1);
    QString zone;
    if (const qsizetype percent = address.indexOf(u'%'); percent >= 0) {
        zone = address.sliced(percent + 1);
        if (zone.startsWith("25"_L1) && zone.size() > 2)
            zone.remove(0, 2);
        address.truncate(percent);
        if (!isName(zone))
            return std::nullopt;
    }
    const QString canonical = canonicalIpv6(address);
    if (canonical.isEmpty())
        return std::nullopt;
    return CurlHost{u'[' + canonical + (zone.isEmpty() ? zone : u"%25"_s + zone) + u']', canonical};
}

/// An IPv4 address in one of the older ways of writing it ("127.1", "0x7f000001") in the usual one,
/// as curl has it; empty if host is none.
QString canonicalIpv4(const QString &host)
{
    const bool isNumeric = std::ranges::all_of(
        host, [](QChar character) { return u"0123456789abcdefABCDEFxX."_s.contains(character); });
    in_addr bytes = {};
    std::array<char, INET_ADDRSTRLEN> text = {};
    if (!isNumeric || ::inet_aton(host.toLatin1().constData(), &bytes) == 0
        || !::inet_ntop(AF_INET, &bytes, text.data(), text.size()))
        return {};
    return QString::fromLatin1(text.data());
}

} // namespace

std::optional<CurlHost> CurlHost::of(const QString &host)
{
    if (auto address = ipv6(host))
        return address;
    if (const QString address = canonicalIpv4(host); !address.isEmpty())
        return CurlHost{host, address};
    const QString name = isAscii(host) ? host : QString::fromLatin1(QUrl::toAce(host));
    if (!isName(name))
        return std::nullopt;
    return CurlHost{name, name};
}
