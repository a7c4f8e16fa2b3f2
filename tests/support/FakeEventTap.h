#pragma once

#include "platform/EventTap.h"

#include <vector>

/// The taps of a desktop without keys, and what happens at them.
class FakeEventTaps {
public:
    /// Must not outlive this.
    EventTap::Factory factory()
    {
        return [this](const std::optional<KeyPress> &wanted,
                      EventTap::OnKeyDown onKeyDown) -> std::unique_ptr<EventTap> {
            asked.push_back(wanted);
            living.push_back(installed);
            if (isRefused)
                return nullptr;
            m_onKeyDown = std::move(onKeyDown);
            return std::make_unique<Tap>(*this);
        };
    }

    /// A key goes down. Gives whether the press is swallowed; not if nobody hears it.
    bool press(const KeyPress &press) { return installed > 0 && m_onKeyDown(press); }

    bool isRefused = false;
    int installed = 0; ///< Taps that exist.
    std::vector<std::optional<KeyPress>> asked; ///< What each tap was asked to hear.
    std::vector<int> living; ///< The taps that existed each time one was asked for.

private:
    class Tap final : public EventTap {
    public:
        explicit Tap(FakeEventTaps &taps) : m_taps(taps) { ++m_taps.installed; }
        ~Tap() override { --m_taps.installed; }

    private:
        FakeEventTaps &m_taps;
    };

    EventTap::OnKeyDown m_onKeyDown;
};
