"""The notification daemon of Wayland desktops that let any program show something on top."""

_CONFIG = """\
font=DejaVu Sans 11
width=320
height=200
border-radius=6
border-size=1
padding=12
"""


def start(household, surroundings):
    """Starts mako."""
    config = surroundings.base / "mako.conf"
    config.write_text(_CONFIG)
    return household.start(["mako", "--config", config])
