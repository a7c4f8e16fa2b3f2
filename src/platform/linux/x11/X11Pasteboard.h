#pragma once

#include "platform/Pasteboard.h"

/// The clipboard of an X display. The toolkit keeps what is written and serves it to other programs
/// as long as the application runs; what others have written is read without it.
class X11Pasteboard final : public Pasteboard {
public:
    std::unique_ptr<PasteboardContent> content() override;
    QCoro::Task<bool> writeText(QString text) override;
    QCoro::Task<> handOver() override;
};
