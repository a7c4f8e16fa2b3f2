#include "app/Hotkey.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// The characters by key code; a blank where no shortcut can have the key.
constexpr std::u16string_view kCharacters = u"asdfhgzxcv"
                                            u" bqweryt"
                                            u"123465=97-80"
                                            u"]ou[ip"
                                            u" lj'k;\\,/nm.";

KeyModifierFlags flagsOf(const UploadSettings::KeyboardShortcut &shortcut)
{
    using KeyModifier = UploadSettings::KeyboardShortcut::KeyModifier;
    KeyModifierFlags flags;
    for (const KeyModifier modifier : shortcut.modifiers) {
        switch (modifier) {
        case KeyModifier::command:
            flags.command = true;
            break;
        case KeyModifier::shift:
            flags.shift = true;
            break;
        case KeyModifier::option:
            flags.option = true;
            break;
        case KeyModifier::control:
            flags.control = true;
            break;
        }
    }
    return flags;
}

} // namespace

std::optional<QString> Hotkey::keyCodeToChar(std::int64_t keyCode)
{
    if (keyCode < 0 || keyCode >= std::ssize(kCharacters))
        return {};
    const char16_t character = kCharacters[static_cast<std::size_t>(keyCode)];
    return character == u' ' ? std::nullopt : std::optional(QString(QChar(character)));
}

std::optional<KeyPress> Hotkey::pressOf(const UploadSettings::KeyboardShortcut &shortcut)
{
    const QString key = shortcut.key.toLower();
    for (std::int64_t code = 0; code < std::ssize(kCharacters); ++code) {
        if (keyCodeToChar(code) == key)
            return KeyPress{code, flagsOf(shortcut)};
    }
    return {};
}

bool Hotkey::matches(const KeyPress &press, const UploadSettings::KeyboardShortcut &shortcut)
{
    return press.modifiers == flagsOf(shortcut)
        && keyCodeToChar(press.keyCode) == shortcut.key.toLower();
}
