#include "platform/linux/dbus/PressNames.h"

#include "platform/linux/HardwareKeys.h"

#include <xkbcommon/xkbcommon.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

char symbolOf(const KeyPress &press)
{
    return HardwareKeys::symbol(press.keyCode).value();
}

int modifiersOf(const KeyModifierFlags &flags)
{
    Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(Qt::MetaModifier, flags.command);
    modifiers.setFlag(Qt::ShiftModifier, flags.shift);
    modifiers.setFlag(Qt::AltModifier, flags.option);
    modifiers.setFlag(Qt::ControlModifier, flags.control);
    return static_cast<int>(modifiers.toInt());
}

bool isLetter(char symbol)
{
    return symbol >= 'a' && symbol <= 'z';
}

} // namespace

QList<int> PressNames::kdeKeys(const KeyPress &press, const QString &shifted)
{
    // Qt's keys that type something in ASCII are numbered as their upper-case characters.
    const char symbol = symbolOf(press);
    QList<int> keys{modifiersOf(press.modifiers) | QChar::fromLatin1(symbol).toUpper().unicode()};
    if (!needsShifted(press))
        return keys;
    KeyModifierFlags others = press.modifiers;
    others.shift = false;
    for (const QChar character : shifted)
        keys << (modifiersOf(others) | character.toUpper().unicode());
    return keys;
}

bool PressNames::needsShifted(const KeyPress &press)
{
    return press.modifiers.shift && !isLetter(symbolOf(press));
}

QString PressNames::portalTrigger(const KeyPress &press)
{
    QStringList parts;
    if (press.modifiers.command)
        parts << u"LOGO"_s;
    if (press.modifiers.shift)
        parts << u"SHIFT"_s;
    if (press.modifiers.option)
        parts << u"ALT"_s;
    if (press.modifiers.control)
        parts << u"CTRL"_s;
    std::array<char, 64> name{}; // More than any name of a key needs.
    xkb_keysym_get_name(xkb_utf32_to_keysym(static_cast<unsigned char>(symbolOf(press))),
                        name.data(), name.size());
    parts << QString::fromLatin1(name.data());
    return parts.join(u'+');
}
