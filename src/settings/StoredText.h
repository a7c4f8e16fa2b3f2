#pragma once

#include <QString>
#include <QStringView>

#include <optional>

/// One case of an enumeration that the user sees, with the text under which it is stored and shown.
template <typename Enum>
struct StoredText {
    Enum value;
    QStringView text;
};

/// All cases of Enum in declaration order, as a static array `all`. Specialised per enumeration.
template <typename Enum>
struct StoredTexts;

/// The text of value.
template <typename Enum>
QString storedText(Enum value)
{
    for (const StoredText<Enum> &entry : StoredTexts<Enum>::all) {
        if (entry.value == value)
            return entry.text.toString();
    }
    Q_UNREACHABLE();
}

/// The case whose text is exactly text; absent for any other.
template <typename Enum>
std::optional<Enum> fromStoredText(QStringView text)
{
    for (const StoredText<Enum> &entry : StoredTexts<Enum>::all) {
        if (entry.text == text)
            return entry.value;
    }
    return std::nullopt;
}
