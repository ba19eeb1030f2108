"""The room's own screen: an X server without a window manager, and a hand that clicks and types on it.

Without a window manager the product's window lands at 0,0, so that coordinates of its form are those of the
screen.
"""

import os
import subprocess
import threading
from pathlib import Path

from . import children
from .errors import RoomError
from .picture import Picture
from .waiting import wait_for

SIZE = "1024x600x24"
LOOKS = 0.2  # seconds from one look to the next
SOCKETS = Path("/tmp/.X11-unix")


class Screen:
    """An Xvfb of 1024 by 600 pixels on a display number of its own."""

    def __init__(self, rig):
        self._frames = Path(rig) / "screen"
        self._frames.mkdir()
        if not SOCKETS.is_dir():
            # On a machine that never had a display only root's X server would make this folder.
            SOCKETS.mkdir(exist_ok=True)
            SOCKETS.chmod(0o1777)
        told, tell = os.pipe()
        with open(Path(rig) / "xvfb.log", "wb") as log:
            self._server = children.start(
                ["Xvfb", "-displayfd", tell, "-screen", "0", SIZE, "-nolisten", "tcp", "-noreset"]
                + ["-nocursor", "-fbdir", self._frames],
                pass_fds=[tell], stdin=subprocess.DEVNULL, stdout=log, stderr=log,
            )
        os.close(tell)
        number = children.first_line(told, limit=20)
        os.close(told)
        if not number:
            children.stop(self._server)
            raise RoomError("Xvfb did not start:\n" + (Path(rig) / "xvfb.log").read_text(errors="replace"))
        self.number = int(number)
        self._last_look = None
        self._stopped = threading.Event()
        self._watch = threading.Thread(target=self._keep_looking, daemon=True)
        self._watch.start()

    def stop(self):
        self._stopped.set()
        self._watch.join()
        children.stop(self._server)

    @property
    def name(self):
        return f":{self.number}"

    @property
    def socket(self):
        return SOCKETS / f"X{self.number}"

    def picture(self):
        """What the screen shows now."""
        return Picture.from_xwd((self._frames / "Xvfb_screen0").read_bytes())

    def last_look(self):
        """The newest look at a screen that was not empty, at most LOOKS seconds old while windows stand.

        A failed test has closed its windows before anyone can take a picture; this one was taken before.
        None when nothing has been shown yet.
        """
        return Picture.from_xwd(self._last_look) if self._last_look else None

    def _keep_looking(self):
        while not self._stopped.wait(LOOKS):
            look = (self._frames / "Xvfb_screen0").read_bytes()
            if not Picture.from_xwd(look).is_black():
                self._last_look = look

    # The hand.

    def click(self, x, y, count=1):
        """Clicks `count` times with the left button."""
        self._hand("mousemove", x, y, "click", "--repeat", count, "--delay", 60, 1)

    def press(self, x, y):
        """Presses the left button and holds it."""
        self._hand("mousemove", x, y, "mousedown", 1)

    def move(self, x, y):
        self._hand("mousemove", x, y)

    def release(self):
        self._hand("mouseup", 1)

    def wheel(self, x, y, up):
        """Turns the wheel by one notch."""
        self._hand("mousemove", x, y, "click", 4 if up else 5)

    def type(self, text):
        # Behind the two hyphens a text may begin with one.
        self._hand("type", "--delay", 20, "--", text)

    def key(self, *names):
        """Presses keys by their X names, e.g. "Return", "ctrl+a"."""
        self._hand("key", *names)

    # Windows.

    def windows(self, title=".*"):
        """Identifiers of the visible windows with exactly this title."""
        for _ in range(20):
            found = self._xdotool(["search", "--onlyvisible", "--name", f"^{title}$"])
            # A window that closes while the search looks at it breaks the search off.
            if not found.stderr:
                return [int(line) for line in found.stdout.split()]
        raise RoomError(f"cannot list the windows: {found.stderr.strip()}")

    def geometry(self, window):
        """x, y, width and height of a window on the screen; None when it is gone."""
        answer = self._xdotool(["getwindowgeometry", "--shell", window])
        values = dict(line.split("=", 1) for line in answer.stdout.splitlines() if "=" in line)
        if "WIDTH" not in values:
            return None
        return tuple(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def wait_window(self, title, limit=10, still_hopeful=lambda: None):
        """Waits until a window with this title is visible and returns its identifier."""
        return wait_for(f'the window "{title}"', lambda: self.windows(title), limit, still_hopeful)[0]

    def wait_focus(self, window, limit=10):
        """Waits until keys go to the window of this identifier: one that has just come up has them later."""
        wait_for("a window to take the keys", lambda: self._focus() == str(window), limit)

    def _focus(self):
        return self._xdotool(["getwindowfocus", "-f"]).stdout.strip()

    def wait_no_window(self, window, limit=10):
        """Waits until the window of this identifier is no longer visible."""
        wait_for("a window to close", lambda: window not in self.windows(), limit)

    def _hand(self, *words):
        done = self._xdotool(words)
        if done.returncode != 0:
            raise RoomError(f"xdotool {' '.join(map(str, words))}: {done.stderr.strip()}")

    def _xdotool(self, words):
        environment = {**os.environ, "DISPLAY": self.name}
        return subprocess.run(
            ["xdotool", *map(str, words)], env=environment, capture_output=True, text=True, check=False
        )
