"""The panel of Wayland desktops that let any program show one."""

# The middle of the rightmost tray icon, from the bottom right corner of the screen.
ICON = 19, 16
_CONFIG = """\
{"layer": "top", "position": "bottom", "height": 32, "modules-right": ["tray"],
 "tray": {"icon-size": 22, "spacing": 8}}
"""
_STYLE = """\
* { font-family: DejaVu Sans; font-size: 13px; }
window#waybar { background: #2b303b; color: #ffffff; }
#tray { padding: 0 8px; }
menu { background: #f6f6f6; color: #202020; }
"""


def start(household, surroundings):
    """Starts a panel that holds nothing but the tray, at its right end."""
    config, style = surroundings.base / "waybar.json", surroundings.base / "waybar.css"
    config.write_text(_CONFIG)
    style.write_text(_STYLE)
    return household.start(["waybar", "--config", config, "--style", style])
