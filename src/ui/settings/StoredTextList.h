#pragma once

#include "settings/StoredText.h"

#include <QStringList>

#include <cstddef>

/// The texts of all cases of Enum in declaration order, as a choice shows them.
template <typename Enum>
QStringList storedTextList()
{
    QStringList texts;
    for (const StoredText<Enum> &entry : StoredTexts<Enum>::all)
        texts << entry.text.toString();
    return texts;
}

/// The case at index in that list, which must be within it.
template <typename Enum>
Enum caseAt(int index)
{
    return StoredTexts<Enum>::all[static_cast<std::size_t>(index)].value;
}

/// The place of value in that list.
template <typename Enum>
int indexOf(Enum value)
{
    int index = 0;
    while (caseAt<Enum>(index) != value)
        ++index;
    return index;
}
