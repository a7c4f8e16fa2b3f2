#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QList>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>

/// What the clipboard holds. Nothing is fetched from the program that owns it before it is asked
/// for; once that program has failed to answer in time, everything else is empty at once. Content
/// that is marked as a secret is empty altogether. Main thread. Must outlive its tasks.
class PasteboardContent {
public:
    virtual ~PasteboardContent() = default;
    PasteboardContent() = default;
    PasteboardContent(const PasteboardContent &) = delete;
    PasteboardContent &operator=(const PasteboardContent &) = delete;

    /// The addresses of files, or of anything else that was copied as an address; empty if there
    /// are none.
    [[nodiscard]] virtual QCoro::Task<QList<QUrl>> addresses() = 0;

    /// The plain text; empty if there is none.
    [[nodiscard]] virtual QCoro::Task<QString> text() = 0;

    /// An image, encoded in any format that the toolkit reads, or in none if it is broken; PNG
    /// where that is on offer. Absent if there is none.
    [[nodiscard]] virtual QCoro::Task<std::optional<QByteArray>> image() = 0;
};

/// The desktop's clipboard. Main thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;
    Pasteboard() = default;
    Pasteboard(const Pasteboard &) = delete;
    Pasteboard &operator=(const Pasteboard &) = delete;

    /// What the clipboard holds now; empty once it changes. Never null; not available: empty.
    virtual std::unique_ptr<PasteboardContent> content() = 0;

    /// Replaces the clipboard's content by text. True once other programs can read it; not
    /// available, or taken over by another program at once: false. Ends in any case, after some
    /// seconds if need be. Of several at a time, the last one called is the last one written.
    [[nodiscard]] virtual QCoro::Task<bool> writeText(QString text) = 0;

    /// Gives text that was written to whoever keeps it when this program is gone. Ends after a
    /// second at the latest. To be called last.
    [[nodiscard]] virtual QCoro::Task<> handOver() = 0;
};
