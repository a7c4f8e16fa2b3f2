"""The panel of X11 desktops."""

SIZE = 32
_CONFIG = f"""\
panels=panel1

[General]
__userfile__=true

[panel1]
alignment=-1
animation-duration=0
desktop=0
hidable=false
iconSize=22
lineCount=1
lockPanel=true
panelSize={SIZE}
plugins=statusnotifier
position=Bottom
width=100
width-percent=true

[statusnotifier]
alignment=Right
type=statusnotifier
"""


def start(household, surroundings):
    """Starts a panel that holds nothing but the tray, at its right end."""
    folder = surroundings.config / "lxqt"
    folder.mkdir(exist_ok=True)
    (folder / "lxqt.conf").write_text("[General]\ntheme=Clearlooks\n")
    (folder / "panel.conf").write_text(_CONFIG)
    return household.start(["lxqt-panel", "--config", folder / "panel.conf"],
                           {"QT_QPA_PLATFORM": "xcb"})
