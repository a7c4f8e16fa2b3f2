"""What tests on kwin, the compositor of KDE Plasma, have in common."""

from desktop_case import PROGRAM
from wayland_case import WaylandCase


class KwinCase(WaylandCase):
    """The program without its symbols, which kwin would take its time to read."""

    desktop_options = {"compositor": "kwin"}

    def start(self, *arguments, **options):
        program = self.desktop.start_program(self.desktop.screen.slimmed(PROGRAM), *arguments,
                                             **options)
        self.programs.append(program)
        return program
