#pragma once

#include "platform/EventTap.h"

#include <utility>
#include <vector>

/// The taps of a desktop without keys, and what happens at them.
class FakeEventTaps {
public:
    /// Must not outlive this.
    EventTap::Factory factory()
    {
        return [this](const std::optional<KeyPress> &wanted, EventTap::OnKeyDown onKeyDown,
                      EventTap::OnDecided onDecided) -> std::unique_ptr<EventTap> {
            asked.push_back(wanted);
            living.push_back(installed);
            if (!isSlow)
                onDecided(!isRefused);
            if (!isSlow && isRefused)
                return nullptr;
            m_onKeyDown = std::move(onKeyDown);
            m_onDecided = isSlow ? std::move(onDecided) : nullptr;
            return std::make_unique<Tap>(*this);
        };
    }

    /// A key goes down. Gives whether the press is swallowed; not if nobody hears it.
    bool press(const KeyPress &press) { return installed > 0 && m_onKeyDown(press); }

    /// The desktop of slow decisions makes up its mind about the latest tap, which must exist.
    void decide(bool isHeard) { std::exchange(m_onDecided, nullptr)(isHeard); }

    bool isRefused = false;
    bool isSlow = false; ///< Whether decisions wait for decide().
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
    EventTap::OnDecided m_onDecided;
};
