#include "base/LoggedName.h"

namespace {

constexpr unsigned char kDelete = 0x7F;

bool isControl(unsigned char byte)
{
    return byte < 0x20 || byte == kDelete;
}

void appendEscaped(QByteArray &text, unsigned char byte)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    text.append("\\x");
    text.append(kDigits[byte >> 4]);
    text.append(kDigits[byte & 0xF]);
}

} // namespace

QByteArray LoggedName::of(std::string_view name)
{
    QByteArray text;
    bool endsControl = false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        const auto next = static_cast<unsigned char>(i + 1 < name.size() ? name[i + 1] : '\0');
        // U+0080 to U+009F.
        const bool startsControl = byte == 0xC2 && next < 0xA0;
        if (startsControl || endsControl || isControl(byte))
            appendEscaped(text, byte);
        else
            text.append(name[i]);
        endsControl = startsControl;
    }
    return text;
}

QString LoggedName::of(const QString &name)
{
    return QString::fromUtf8(of(std::string_view(name.toStdString())));
}

QByteArray LoggedName::ofInvalid(std::string_view name)
{
    QByteArray text;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte > kDelete || isControl(byte))
            appendEscaped(text, byte);
        else
            text.append(character);
    }
    return text;
}
