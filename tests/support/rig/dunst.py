"""The notification daemon of X11 desktops."""

_CONFIG = """\
[global]
font = DejaVu Sans 11
width = (320, 480)
offset = 12x12
padding = 12
horizontal_padding = 14
corner_radius = 6
frame_width = 1
show_indicators = no
markup = full
"""


def start(household, surroundings):
    """Starts dunst on the X display, whatever other display there is."""
    config = surroundings.base / "dunstrc"
    config.write_text(_CONFIG)
    return household.start(["dunst", "-conf", config], {"WAYLAND_DISPLAY": ""})
