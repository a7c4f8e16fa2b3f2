"""The parts of which the private test servers and desktops are made."""
