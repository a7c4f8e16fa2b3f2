#pragma once

#include "base/UniqueFd.h"

#include <QSocketNotifier>

#include <csignal>
#include <memory>
#include <vector>

/// Turns SIGTERM, SIGINT and SIGHUP into the application's orderly quitting, save those that the
/// program was started to ignore (as nohup does). One at a time; made after the application object.
/// The signals' former handling comes back when destroyed.
class TerminationSignals {
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

private:
    struct Former {
        int signal = 0;
        struct sigaction action = {};
    };

    UniqueFd m_arrived;
    std::vector<Former> m_former;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
