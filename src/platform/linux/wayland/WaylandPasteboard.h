#pragma once

#include "base/OneShot.h"
#include "base/UniqueFd.h"
#include "platform/Pasteboard.h"
#include "platform/linux/wayland/ClipboardClaim.h"
#include "platform/linux/wayland/PipeWriter.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <vector>

/// The clipboard of a Wayland session whose compositor shares it with programs that have no window.
/// Connected only while something is read, and while what was written is on it, so a compositor may
/// come and go. What was written is gone with the program, unless a clipboard manager has read it:
/// the protocol knows no way to hand it over.
class WaylandPasteboard final : public Pasteboard {
public:
    /// For a program that has asked for the text and then takes nothing of it.
    static constexpr std::chrono::seconds kPatienceWithReader{10};

    explicit WaylandPasteboard(std::chrono::milliseconds patienceWithReader = kPatienceWithReader)
        : m_patienceWithReader(patienceWithReader)
    {
    }

    std::unique_ptr<PasteboardContent> content() override;
    QCoro::Task<bool> writeText(QString text) override;
    QCoro::Task<> handOver() override;

private:
    [[nodiscard]] QCoro::Task<bool> claimWith(QString text);
    DataControlSource::OnSend sender(const QByteArray &text);
    void serve(UniqueFd reader, const QByteArray &text);
    void forgetLostClaimLater();

    std::chrono::milliseconds m_patienceWithReader;
    std::unique_ptr<ClipboardClaim> m_claim; ///< Null while the clipboard is another program's.
    std::shared_ptr<OneShot> m_lastWrite; ///< Fires when that one has ended.
    std::vector<std::unique_ptr<PipeWriter>> m_writers;
    OneShot *m_allServed = nullptr; ///< Null while nobody waits for that.
    QObject m_context; ///< Of the calls that come from the event loop.
};
