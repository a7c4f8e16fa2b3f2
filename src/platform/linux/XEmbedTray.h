#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>

/// Whether an XEmbed tray runs on this X display. Never there on other displays.
class XEmbedTray final : public QAbstractNativeEventFilter {
public:
    /// onAppeared is called from the event loop when a tray comes up.
    explicit XEmbedTray(std::function<void()> onAppeared);
    ~XEmbedTray() override;
    XEmbedTray(const XEmbedTray &) = delete;
    XEmbedTray &operator=(const XEmbedTray &) = delete;

    bool isPresent() const;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    std::function<void()> m_onAppeared;
    std::uint32_t m_selection = 0; ///< The atom that a tray owns; 0 without an X display.
    std::uint32_t m_manager = 0; ///< The atom of the message by which a tray announces itself.
};
