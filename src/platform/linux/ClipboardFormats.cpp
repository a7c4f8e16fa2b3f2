#include "platform/linux/ClipboardFormats.h"

#include <QStringDecoder>
#include <QSysInfo>

#include <initializer_list>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kUriList = "text/uri-list"_L1;
// The file managers of GNOME and MATE: the first line is what to do with the files.
constexpr auto kGnomeFiles = "x-special/gnome-copied-files"_L1;
constexpr auto kMateFiles = "x-special/mate-copied-files"_L1;

constexpr auto kPlainText = "text/plain"_L1;
constexpr auto kUtf8Text = "text/plain;charset=utf-8"_L1;
constexpr auto kTextWithCharset = "text/plain;charset="_L1;
// What the X protocol calls text.
constexpr auto kUtf8String = "UTF8_STRING"_L1;
constexpr auto kLatin1String = "STRING"_L1;

/// The first of the wanted types that is on offer, as it is written there.
QString firstOffered(std::initializer_list<QLatin1String> wanted, const QStringList &offered)
{
    for (const QLatin1String type : wanted) {
        for (const QString &one : offered) {
            if (one.compare(type, Qt::CaseInsensitive) == 0)
                return one;
        }
    }
    return {};
}

/// The address in one line, with the file of this very machine named without its host.
QUrl addressIn(const QByteArray &line)
{
    QUrl address = QUrl::fromEncoded(line);
    if (!address.isValid() || address.scheme().isEmpty())
        return {};
    const QString host = address.host();
    if (address.scheme() == u"file"
        && (host == u"localhost" || host == QSysInfo::machineHostName().toLower()))
        address.setHost(QString());
    return address;
}

/// text decoded, the mark of the byte order included: it was copied.
QString decoded(const QByteArray &data, QStringDecoder decoder)
{
    return decoder.decode(data);
}

} // namespace

bool ClipboardFormats::saysSecret(const QByteArray &hint)
{
    return hint.trimmed() == "secret";
}

QString ClipboardFormats::addressType(const QStringList &offered)
{
    return firstOffered({kUriList, kGnomeFiles, kMateFiles}, offered);
}

QList<QUrl> ClipboardFormats::addresses(const QString &type, const QByteArray &data)
{
    QList<QByteArray> lines = data.split('\n');
    if (type.compare(kUriList, Qt::CaseInsensitive) != 0)
        lines.removeFirst();
    QList<QUrl> found;
    for (const QByteArray &line : std::as_const(lines)) {
        const QByteArray trimmed = line.trimmed(); // Lines end with CR and LF.
        if (trimmed.isEmpty() || trimmed.startsWith('#'))
            continue;
        if (const QUrl address = addressIn(trimmed); !address.isEmpty())
            found << address;
    }
    return found;
}

QString ClipboardFormats::textType(const QStringList &offered)
{
    // GTK 3 gives what it calls text/plain the line ends of the Internet, whatever was copied.
    const QString best = firstOffered({kUtf8String, kUtf8Text}, offered);
    if (!best.isEmpty())
        return best;
    for (const QString &type : offered) {
        if (type.startsWith(kTextWithCharset, Qt::CaseInsensitive))
            return type;
    }
    return firstOffered({kPlainText, kLatin1String}, offered);
}

QString ClipboardFormats::text(const QString &type, const QByteArray &data)
{
    constexpr QStringConverter::Flags kAsItIs =
        QStringConverter::Flag::ConvertInitialBom | QStringConverter::Flag::Stateless;
    if (type.compare(kLatin1String, Qt::CaseInsensitive) == 0)
        return QString::fromLatin1(data);
    if (type.startsWith(kTextWithCharset, Qt::CaseInsensitive)) {
        const QByteArray charset = type.sliced(kTextWithCharset.size()).toLatin1();
        const auto encoding = QStringConverter::encodingForName(charset.constData());
        // A byte order that is not named is told by the mark, which then is no part of the text.
        if (encoding == QStringConverter::Utf16 || encoding == QStringConverter::Utf32)
            return decoded(data, QStringDecoder(*encoding));
        if (encoding)
            return decoded(data, QStringDecoder(*encoding, kAsItIs));
    }
    QStringDecoder utf8(QStringConverter::Utf8, kAsItIs);
    const QString text = utf8.decode(data);
    // Without a charset it may be in any; what is no UTF-8 is older than UTF-8.
    return utf8.hasError() && type.compare(kPlainText, Qt::CaseInsensitive) == 0
        ? QString::fromLatin1(data)
        : text;
}

QString ClipboardFormats::imageType(const QStringList &offered, const QList<QByteArray> &readable)
{
    const QString best = firstOffered({"image/png"_L1, "image/tiff"_L1, "image/bmp"_L1,
                                       "image/x-bmp"_L1, "image/x-MS-bmp"_L1, "image/webp"_L1},
                                      offered);
    const auto isReadable = [&readable](const QString &type) {
        return type.startsWith(u"image/"_s) && readable.contains(type.toLatin1());
    };
    if (!best.isEmpty() && (isReadable(best) || best.endsWith(u"bmp"_s, Qt::CaseInsensitive)))
        return best;
    for (const QString &type : offered) {
        if (isReadable(type))
            return type;
    }
    return {};
}
