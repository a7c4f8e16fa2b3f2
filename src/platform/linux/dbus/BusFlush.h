#pragma once

class QDBusConnection;

/// Waits until the bus has all that was sent to it so far: the toolkit sends from a thread of its
/// own, which drops what is left when the program ends. Takes one round trip to the bus, two
/// seconds if it hangs.
void flushBus(const QDBusConnection &bus);
