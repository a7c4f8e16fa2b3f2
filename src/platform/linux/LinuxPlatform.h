#pragma once

#include "platform/Platform.h"
#include "platform/linux/Surroundings.h"
#include "platform/linux/TerminationSignals.h"
#include "platform/linux/dbus/DBusRemoteControl.h"

/// The services of the Linux desktop. Made after the application object.
class LinuxPlatform : public Platform {
public:
    /// remoteControl has made this process the one that runs.
    LinuxPlatform(const Surroundings &surroundings,
                  std::unique_ptr<DBusRemoteControl> remoteControl);

private:
    TerminationSignals m_terminationSignals;
};
