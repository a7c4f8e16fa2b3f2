#pragma once

#include "platform/Platform.h"
#include "platform/linux/TerminationSignals.h"

/// The services of the Linux desktop. Made after the application object.
class LinuxPlatform : public Platform {
public:
    LinuxPlatform();

private:
    TerminationSignals m_terminationSignals;
};
