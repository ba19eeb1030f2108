"""The bubblewrap command line that closes the room around the program."""

import os
import shutil
import subprocess
from functools import cache
from pathlib import Path

from .errors import NoRooms
from .fittings import HOME
from .options import REPOSITORY

# What the tests and sanitizers of the caller may tell the program.
PASSED_ON = [
    "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "QT_LOGGING_RULES",
    "QTEST_FUNCTION_TIMEOUT", "QR9_PATIENCE",
]
# A build folder whose programs count their lines: they leave the counts at the place where they were compiled.
COUNTS = "QR9_COUNTS"
SOURCE = "/run/source"  # the source tree, read-only, for test data and suppression lists


# Ways to be root in the room. Where the system forbids user namespaces its own root needs none.
AS_ANYBODY = ["--unshare-user", "--uid", "0", "--gid", "0"]
AS_ROOT = []


def probe():
    """Raises NoRooms where no room can be had."""
    _way_in()


@cache
def _way_in():
    """The words that make the caller root in a room; raises NoRooms where there are none."""
    if not shutil.which("bwrap"):
        raise NoRooms("no room: bubblewrap is not installed (scripts/setup installs it)")
    reasons = []
    for way in [AS_ANYBODY, AS_ROOT] if os.getuid() == 0 else [AS_ANYBODY]:
        attempt = ["bwrap", *way, "--cap-add", "ALL", "--unshare-net", "--dev-bind", "/", "/", "true"]
        done = subprocess.run(attempt, capture_output=True, text=True, check=False)
        if done.returncode == 0:
            return way
        reasons.append(done.stderr.strip())
    raise NoRooms(f"no room: this system forbids user namespaces ({'; '.join(reasons)})")


def command(rig, options, screen, ports, program):
    """The words that run `program` (a list, its path as seen in the room) in the room of `rig`.

    `ports` are device paths of this machine in the order in which the program is to list them; `screen` is
    the room's Screen, or None where the window goes to the user's display.
    """
    words = ["bwrap", "--unshare-pid", "--die-with-parent", *_way_in()]
    words += ["--cap-add", "ALL", "--unshare-uts"]
    words += ["--bind", f"{rig}/root", "/", "--ro-bind", "/usr", "/usr"]
    words += ["--ro-bind-try", "/var/cache/fontconfig", "/var/cache/fontconfig"]
    words += ["--dev", "/dev", "--proc", "/proc"]
    words += ["--bind", f"{rig}/disk", "/dev/disk", "--bind", f"{rig}/sdb1", "/dev/sdb1"]
    for index, port in enumerate(ports):
        words += ["--dev-bind", port, f"/dev/ttyUSB{index}"]
    words += ["--bind", rig, "/run/rig", "--ro-bind", options.build, "/run/prog"]
    words += ["--ro-bind", REPOSITORY, SOURCE]
    if counts := os.environ.get(COUNTS):
        words += ["--bind", counts, counts]
    if screen:
        words += ["--unshare-net", "--ro-bind", screen.socket, screen.socket]
    else:
        words += ["--ro-bind-try", "/tmp/.X11-unix", "/tmp/.X11-unix"]
        authority = Path(os.environ.get("XAUTHORITY", Path.home() / ".Xauthority"))
        if authority.exists():
            words += ["--ro-bind", authority, "/run/user/Xauthority"]
    words += ["--chdir", f"/{HOME}", "--clearenv"]
    for key, value in _environment(options, screen).items():
        words += ["--setenv", key, value]
    return [*map(str, words), *program]


def _environment(options, screen):
    environment = {
        "PATH": "/run/rig/stubs:/usr/sbin:/usr/bin:/sbin:/bin",
        "HOME": "/root",
        "DISPLAY": screen.name if screen else os.environ["DISPLAY"],
        "QT_QPA_PLATFORM": "xcb",
        # The screen has no GL, and the system's GL libraries leak what they open.
        "QT_XCB_GL_INTEGRATION": "none",
        "QT_FORCE_STDERR_LOGGING": "1",
        "XDG_RUNTIME_DIR": "/run/user",
        "LANG": "C.UTF-8",
        "TZ": "UTC",
    }
    if not screen:
        environment["XAUTHORITY"] = "/run/user/Xauthority"
    for key in PASSED_ON:
        if key in os.environ:
            environment[key] = os.environ[key].replace(str(REPOSITORY), SOURCE)
    environment.update(options.environment)
    return environment
