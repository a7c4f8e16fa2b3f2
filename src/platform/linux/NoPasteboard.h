#pragma once

#include "base/Log.h"
#include "platform/Pasteboard.h"
#include "platform/linux/ClipboardContent.h"

/// The clipboard where there is none that a program without a window may use: empty, and not to be
/// written.
class NoPasteboard final : public Pasteboard {
public:
    NoPasteboard()
    {
        Log::line(QStringLiteral("⚠️ The window system does not share its clipboard with programs "
                                 "that have no window"));
    }

    std::unique_ptr<PasteboardContent> content() override
    {
        return std::make_unique<ClipboardContent>(nullptr);
    }
    QCoro::Task<bool> writeText(QString) override { co_return false; }
    QCoro::Task<> handOver() override { co_return; }
};
