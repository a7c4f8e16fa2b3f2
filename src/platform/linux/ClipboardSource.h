#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>

#include <optional>

/// The program that owns the clipboard, as a display protocol reaches it. No call waits longer than
/// a few seconds for it. One call at a time. Main thread. Must outlive its tasks.
class ClipboardSource {
public:
    virtual ~ClipboardSource() = default;
    ClipboardSource() = default;
    ClipboardSource(const ClipboardSource &) = delete;
    ClipboardSource &operator=(const ClipboardSource &) = delete;

    /// The names of the forms in which the content can be had, MIME types for the most part; empty
    /// if there is no content. Absent if the owner does not answer.
    [[nodiscard]] virtual QCoro::Task<std::optional<QStringList>> types() = 0;

    /// The content in one of these forms; empty if the owner refuses. Absent if it does not answer,
    /// or is not the owner any more that has told the types.
    [[nodiscard]] virtual QCoro::Task<std::optional<QByteArray>> data(QString type) = 0;
};
