#pragma once

#include <QString>

/// text without the blanks and tabs at both ends; line breaks stay.
inline QString trimmingWhitespace(const QString &text)
{
    const auto isWhitespace = [](QChar character) {
        return character == u'\t' || character.category() == QChar::Separator_Space;
    };
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isWhitespace(text.at(begin)))
        ++begin;
    while (end > begin && isWhitespace(text.at(end - 1)))
        --end;
    return text.mid(begin, end - begin);
}
