#!/usr/bin/python3
"""The demo itself: demo.py PROGRAM PICTURES [--here | --wayland]. It ends with 0 only if every step
held."""

import contextlib
import datetime
import functools
import http.server
import os
import pathlib
import signal
import sys
import threading
import time
import urllib.parse
import urllib.request

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests" / "support"))

# pylint: disable=wrong-import-position
from desktop import Desktop
from rig import ports
from servers import Server
from wayland_desktop import WaylandDesktop

PASSWORD = 'not {so} "simple" $ecret'
# sway has no shortcuts that programs can ask for; it is told to pass one on, as a person would.
SWAY_SHORTCUT = ("bindsym Mod4+Shift+u exec gdbus call --session --dest org.tessery.Tessery "
                 "--object-path /org/tessery/Tessery "
                 "--method org.freedesktop.Application.ActivateAction upload-clipboard [] {}")
TEXT = "Copied text: naïve, 日本, 🙂\r\nand its second line\n"


class Steps:
    """Says what is being done and how long it took."""

    def __init__(self):
        self.begun = time.monotonic()

    @contextlib.contextmanager
    def __call__(self, text):
        begun = time.monotonic()
        if sys.stdout.isatty():
            print(f"  … {text}", end="\r", flush=True)
        try:
            yield
        except BaseException:
            print(f"  ✗ {text}", flush=True)
            raise
        print(f"  ✓ {text:<56}{time.monotonic() - begun:6.2f} s", flush=True)


@contextlib.contextmanager
def web_server(folder):
    """Serves the files of a folder over HTTP; yields the address of the folder."""

    class Quiet(http.server.SimpleHTTPRequestHandler):
        def log_message(self, *_):
            pass

    handler = functools.partial(Quiet, directory=folder)
    with http.server.ThreadingHTTPServer((ports.HOST, 0), handler) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        yield f"http://{ports.HOST}:{server.server_port}"
        server.shutdown()


def fetch(link):
    """The bytes behind a link, in which blanks may stand as they are."""
    with urllib.request.urlopen(urllib.parse.quote(link, safe=":/"), timeout=10) as answer:
        return answer.read()


def expect(actual, wanted, what):
    """Two values that must be the same."""
    if actual != wanted:
        raise AssertionError(f"{what} is {actual!r} and not {wanted!r}")


def picture_of_menu(desktop, path):
    """Opens the tray menu with the mouse, takes a picture and closes it again."""
    desktop.screen.open_tray_menu()
    desktop.screen.still_picture(path)
    desktop.screen.close_menu()


def publish(step, desktop, program, base, pictures):
    """From the tray menu to the bytes behind the link. Returns the link."""
    with step("the tray menu, opened with the mouse"):
        item = desktop.tray_item(program)
        item.wait_until_enabled("Start Monitoring")
        picture_of_menu(desktop, pictures / "1-menu.png")
    with step("“Start Monitoring” clicked"):
        item.click("Start Monitoring")
        item.wait_for_label("Monitoring Active")
    with step("a screenshot taken into the Desktop folder"):
        name = f"Screenshot {datetime.datetime.now():%Y-%m-%d at %H.%M.%S}.png"
        screenshot = desktop.take_screenshot(name)
    with step("uploaded: the notification “✅ Screenshot Uploaded”"):
        note = desktop.notifications.wait_for("✅ Screenshot Uploaded", 30)
        desktop.screen.still_picture(pictures / "2-notification.png")
    with step("the link is on the clipboard"):
        link = desktop.screen.clipboard()
        expect(link, f"{base}/{name}", "the link")
        expect(note.body, f"URL copied to clipboard: {link}", "the notification's text")
    with step("fetched over HTTP: the very bytes of the screenshot"):
        if fetch(link) != screenshot.read_bytes():
            raise AssertionError("what the link gives is not the screenshot")
    with step("the menu says so too"):
        item.wait_for_label(f"✅ Uploaded: {name}")
        picture_of_menu(desktop, pictures / "3-menu-afterwards.png")
    return link


def publish_text(step, desktop, program, base, pictures):
    """From text on the clipboard, by the global shortcut, to the text behind the link."""
    with step("text copied by another program"):
        desktop.screen.set_clipboard(TEXT)
    with step("the shortcut Super+Shift+U pressed"):
        desktop.screen.key("super+shift+u")
        program.wait_for_line("📋 Upload clipboard triggered")
    with step("uploaded: “✅ Screenshot Uploaded” once more"):
        desktop.notifications.wait_for("✅ Screenshot Uploaded", 30, count=2)
        desktop.screen.still_picture(pictures / "4-text-notification.png")
    with step("the link has taken the text's place"):
        link = desktop.screen.clipboard()
        if not (link.startswith(f"{base}/clipboard_") and link.endswith(".txt")):
            raise AssertionError(f"the clipboard holds {link!r}")
    with step("fetched over HTTP: the very text"):
        expect(fetch(link).decode(), TEXT, "what the link gives")
    return link


def quit_program(desktop, program):
    """Chooses "Quit" and looks whether anything is left."""
    desktop.tray_item(program).click("Quit")
    expect(program.wait(), 0, "the exit status")
    desktop.assert_clean()


def make_desktop(option):
    """The desktop that was asked for, and what is said of it."""
    if option == "--wayland":
        return (WaylandDesktop("sway", more=SWAY_SHORTCUT),
                "a private Wayland desktop: sway, waybar, mako, keyring")
    window_on = dict(os.environ) if option == "--here" else None
    return Desktop(window_on=window_on), "a private desktop: display, panel, notifications, keyring"


def run(path, pictures, option):
    """All of the demo."""
    step = Steps()
    program = None
    try:
        with contextlib.ExitStack() as stack:
            desktop, kind = make_desktop(option)
            with step(kind):
                stack.enter_context(desktop)
            with step("a private SFTP server, and a web server over its folder"):
                server = stack.enter_context(Server("asyncssh", password=PASSWORD))
                base = stack.enter_context(web_server(server.folder))
            with step("settings written, password stored in the keyring"):
                desktop.write_settings_for(server, base)
                desktop.keyring.store(PASSWORD)
            with step("Tessery started, its icon is in the tray"):
                program = desktop.start_program(path)
                desktop.tray_item(program)
            links = [publish(step, desktop, program, base, pictures),
                     publish_text(step, desktop, program, base, pictures)]
            if option == "--here" and sys.stdin.isatty():
                input("  The desktop is still there to look at. Press Enter to end the demo. ")
            with step("Tessery quit by its menu, leaving nothing behind"):
                quit_program(desktop, program)
    except Exception as error:  # pylint: disable=broad-except
        print(f"\nThe demo failed: {error}", file=sys.stderr)
        if program:
            print("\nWhat Tessery said:", *program.output.all, *program.errors.all,
                  sep="\n  ", file=sys.stderr)
        return 1
    print("\nThe links were", " and ".join(links))
    print(f"Pictures of the desktop are in {pictures}/. "
          f"All in {time.monotonic() - step.begun:.1f} s.")
    return 0


def main():
    """The command line."""
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    path, pictures = (pathlib.Path(argument) for argument in sys.argv[1:3])
    pictures.mkdir(parents=True, exist_ok=True)
    for old in pictures.glob("*.png"):
        old.unlink()
    sys.exit(run(path.resolve(), pictures, "".join(sys.argv[3:])))


if __name__ == "__main__":
    main()
