#include "ui/settings/ShortcutCapture.h"

#include "platform/KeyboardLayout.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;
using KeyModifier = UploadSettings::KeyboardShortcut::KeyModifier;

namespace {

/// What the key types, as far as the event tells: characters that need Shift are as they are.
QString plainCharacterOf(const QKeyEvent &press)
{
    switch (press.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return u"\t"_s;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return u"\r"_s;
    case Qt::Key_Escape:
        return u"\x1b"_s;
    case Qt::Key_Backspace:
        return u"\b"_s;
    case Qt::Key_Delete:
        return u"\x7f"_s;
    default:
        break;
    }
    // The key is the character in upper case; keys that type nothing lie beyond all characters.
    if (press.key() <= 0 || press.key() > static_cast<int>(QChar::LastValidCodePoint))
        return {};
    const auto character = static_cast<char32_t>(press.key());
    return QString::fromUcs4(&character, 1);
}

} // namespace

std::vector<KeyModifier> keyModifiers(Qt::KeyboardModifiers modifiers)
{
    std::vector<KeyModifier> found;
    if (modifiers & Qt::MetaModifier)
        found.push_back(KeyModifier::command);
    if (modifiers & Qt::ShiftModifier)
        found.push_back(KeyModifier::shift);
    if (modifiers & Qt::AltModifier)
        found.push_back(KeyModifier::option);
    if (modifiers & Qt::ControlModifier)
        found.push_back(KeyModifier::control);
    return found;
}

std::optional<UploadSettings::KeyboardShortcut> shortcutOf(const QKeyEvent &press,
                                                           const KeyboardLayout &layout)
{
    std::vector<KeyModifier> modifiers = keyModifiers(press.modifiers());
    if (modifiers.empty())
        return std::nullopt;
    const std::optional<QString> character = layout.plainCharacter(press);
    QString key = (character ? *character : plainCharacterOf(press)).toLower();
    if (key.isEmpty())
        return std::nullopt;
    return UploadSettings::KeyboardShortcut{std::move(key), std::move(modifiers)};
}
