#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What the transfer tools have in common.
namespace ToolText {

/// A tool's output as text; absent when it is not valid UTF-8.
std::optional<QString> decoded(const QByteArray &output);

} // namespace ToolText
