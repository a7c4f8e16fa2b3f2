#pragma once

#include "platform/linux/ClipboardSource.h"
#include "platform/linux/wayland/DataControlDevice.h"
#include "platform/linux/wayland/PipeReader.h"

#include <memory>
#include <optional>

/// The program that owns the clipboard, or this very one, as the compositor reaches it.
class WaylandClipboardSource final : public ClipboardSource {
public:
    /// device has not begun.
    explicit WaylandClipboardSource(std::unique_ptr<DataControlDevice> device);

    QCoro::Task<std::optional<QStringList>> types() override;
    QCoro::Task<std::optional<QByteArray>> data(QString type) override;

private:
    std::unique_ptr<DataControlDevice> m_device;
    int m_changes = 0; ///< When the types were asked for.
    std::optional<PipeReader> m_reader; ///< Absent while nothing is read.
};
