#include "upload/ToolText.h"

#include <QUtf8StringView>

std::optional<QString> ToolText::decoded(const QByteArray &output)
{
    if (!QUtf8StringView(output).isValidUtf8())
        return std::nullopt;
    return QString::fromUtf8(output);
}
