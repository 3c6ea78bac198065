"""A screen for the tests of windows: a virtual X server, and a Windows desktop that fills it.

The desktop is Wine's own, so that focus, title bars and close boxes work without a window manager. Keys and clicks go
through the X server, as a user's do.
"""
import json
import os
import subprocess
from types import SimpleNamespace

import wine

READER = wine.BIN / "WindowReader.exe"
WIDTH, HEIGHT = 1280, 1024
EXPLORER = r"HKCU\Software\Wine\Explorer"


class Window(SimpleNamespace):
    """A window or a control, as WindowReader describes it; positions are pixels of the screen."""

    def control(self, identifier):
        return next(control for control in self.controls if control.id == identifier)

    @property
    def centre(self):
        return self.x + self.width // 2, self.y + self.height // 2

    @property
    def close_box(self):
        """Where a user clicks to close it."""
        return self.x + self.width - 14, self.y + 14


class Display:
    """Lives for the whole test run. Programs reach it with Program(..., variables=display.variables())."""

    def __init__(self, folder):
        self._prefix = folder / "wine"
        self.name, self._server = start_server()
        wine.make_prefix(self.variables())
        for key, value, data in ((EXPLORER, "Desktop", "Default"), (EXPLORER + r"\Desktops", "Default", f"{WIDTH}x{HEIGHT}")):
            self._wine("reg.exe", "add", key, "/v", value, "/d", data, "/f")
        # The desktop reads settings when it starts.
        wine.stop_prefix(self.variables())
        subprocess.run(["wineserver", "--wait"], env=self.variables(), check=True)
        subprocess.run(["wineserver", "--persistent"], env=self.variables(), check=True)
        # The first program starts the desktop, which keeps that program's outputs open.
        self._wine(READER, "windows", stdout=subprocess.DEVNULL)

    def end(self):
        wine.stop_prefix(self.variables())
        self._server.terminate()
        self._server.wait(10)

    def variables(self, language="C"):
        """For a program on this display. The language is one of the machine's, such as de_DE."""
        return {**os.environ, "WINEPREFIX": str(self._prefix), "DISPLAY": self.name, "LC_ALL": f"{language}.UTF-8"}

    def _wine(self, *command, **options):
        return subprocess.run([wine.ROOT / "scripts" / "run-wine.sh", *command], env=self.variables(), check=True,
                              stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=30,
                              **{"stdout": subprocess.PIPE, **options})

    def _read(self, what):
        try:
            output = self._wine(READER, what).stdout
        except subprocess.CalledProcessError:  # Wine ends a program whose call met a window that has just gone
            output = self._wine(READER, what).stdout
        return json.loads(output, object_hook=lambda fields: Window(**fields))

    def _x(self, *command):
        return subprocess.run(command, env=self.variables(), check=True, timeout=30, stdout=subprocess.PIPE).stdout

    # What a user sees.

    def windows(self, title=""):
        """The visible windows whose title contains the text, the one in front first."""
        return [window for window in self._read("windows") if window.text and title in window.text]

    def wait_for_window(self, title, seconds=20):
        """Waits for a window with the title that is in front and has the focus."""
        def ready():
            return next((window for window in self.windows(title) if window.foreground and window.focus), None)
        return wine.wait_until(ready, seconds, f"a window {title!r}")

    def wait_for_no_window(self, title, seconds=20):
        wine.wait_until(lambda: not self.windows(title), seconds, f"no window {title!r}")

    def clipboard(self):
        return self._read("clipboard")

    def colours(self, x, y, width=1, height=1):
        """The red, green and blue of the pixels in an area, each colour once."""
        pixels = self._x("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "-depth", "8", "rgb:-")
        return set(zip(pixels[::3], pixels[1::3], pixels[2::3]))

    # What a user does.

    def press(self, *keys, action="key"):
        """Keys by their X names: "alt+d", "Return"; "keydown" and "keyup" are the halves of it."""
        self._x("xdotool", action, "--clearmodifiers", *keys)

    def click(self, place):
        self._x("xdotool", "mousemove", str(place[0]), str(place[1]), "click", "1")


def start_server():
    """Starts an X server on a free number: (":number", process)."""
    reading, writing = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-nolisten", "tcp", "-noreset"],
        pass_fds=[writing], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as numbers:
        number = numbers.readline().strip()
    assert number, "the X server did not start"
    return f":{number}", server
