"""Tries a package out: installs it in a clean Debian 12, starts the program there, and removes it again.

The system is made anew beside the package and deleted at the end. Nothing of this machine is in it: it has a /dev with
the bare necessities, its own /media and /root, no disks and no serial ports. The screen alone is lent to it, so that
what the program needs must come with the package.
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "simulator/room"))

from qr9room.errors import RoomError  # noqa: E402  (the path is set above)
from qr9room.program import Program  # noqa: E402
from qr9room.screen import Screen  # noqa: E402
from qr9room.technician import Technician  # noqa: E402
from qr9room.waiting import wait_for  # noqa: E402

PATIENCE = 60  # seconds
HOME = "root/TAVO_QR9"
PROGRAM = "usr/lib/verifierqr9/VerifierQR9"
# What a unit would have measured: the package must leave it alone, whatever becomes of the package.
CALIBRATION = {"TAVO_QR9.ini": "[Calibration]\nZ reference=31234\n", "VerifierQR9.ini": "[Correction]\nFilter 1=12\n"}
SEARCH_FAILED = "COM Port [Controller] not find !!!"


def run(*words):
    """Runs a program of this machine and returns its output; what it says is shown when it fails."""
    done = subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise RoomError(f"{' '.join(map(str, words[:3]))} ... failed:\n{done.stdout[-2000:]}{done.stderr[-2000:]}")
    return done.stdout


class CleanSystem:
    """A Debian 12 with nothing but its essential packages. What runs in it sees a system of its own."""

    def __init__(self, root):
        self.root = root

    def make(self):
        # In a mount namespace of its own, so that no mount of debootstrap's can be left behind.
        run("unshare", "--mount", "debootstrap", "--variant=minbase", "bookworm", self.root)
        self.home.mkdir()
        for name, text in CALIBRATION.items():
            (self.home / name).write_text(text)

    @property
    def home(self):
        return self.root / HOME

    def command(self, *words, options=()):
        """The words that run a program in it."""
        room = ["bwrap", "--die-with-parent", "--unshare-pid", "--unshare-ipc", "--unshare-uts", "--cap-add", "ALL"]
        room += ["--bind", self.root, "/", "--dev", "/dev", "--proc", "/proc", "--tmpfs", "/run"]
        room += ["--perms", "1777", "--tmpfs", "/tmp"]
        room += ["--clearenv", "--setenv", "PATH", "/usr/sbin:/usr/bin:/sbin:/bin", "--setenv", "HOME", "/root"]
        room += ["--setenv", "LC_ALL", "C.UTF-8", "--setenv", "DEBIAN_FRONTEND", "noninteractive"]
        return [str(word) for word in (*room, *options, *words)]

    def apt(self, *words, options=()):
        run(*self.command("apt-get", "-qq", "-y", "-o", "Dpkg::Use-Pty=0", *words, options=options))

    def calibration(self):
        """A fingerprint of everything in the instrument's folder."""
        files = {path.name: path.read_bytes() for path in sorted(self.home.iterdir())}
        return hashlib.sha256(repr(files).encode()).hexdigest()

    def delete(self):
        mounts = [line.split()[4] for line in Path("/proc/self/mountinfo").read_text().splitlines()]
        held = [place for place in mounts if place.startswith(str(self.root))]
        if held:
            raise RoomError(f"{self.root} is not deleted: {held} is mounted in it")
        run("rm", "-rf", "--one-file-system", "--", self.root)


class Desk:
    """The system's program on a screen, as the technician's hand needs it."""

    def __init__(self, system, screen, log_file):
        self.screen = screen
        lent = ["--unshare-net", "--ro-bind", screen.socket, screen.socket]
        lent += ["--setenv", "DISPLAY", screen.name, "--setenv", "QT_FORCE_STDERR_LOGGING", "1"]
        lent += ["--setenv", "XDG_RUNTIME_DIR", "/run"]
        self.program = Program(system.command("/usr/sbin/verifierqr9", options=lent), log_file)

    def wait_window(self, title, limit):
        return self.screen.wait_window(title, limit, self.program.must_run)

    def wait_for(self, what, probe, limit):
        return wait_for(what, probe, limit, self.program.must_run)


def start_and_leave(system, screen, out):
    """Runs the program from its start to its exit button on a system without board and camera."""
    log_file = out / "verifierqr9.log"
    begin = time.monotonic()
    desk = Desk(system, screen, log_file)
    try:
        hand = Technician(desk)
        # The missing camera is told before there is a window, the missing board by two boxes behind it.
        hand.acknowledge("Error", PATIENCE)
        hand.wait_window(PATIENCE)
        print(f"   the window was up after {time.monotonic() - begin:.1f} s")
        hand.acknowledge("Error", PATIENCE)
        hand.acknowledge("Error", PATIENCE)
        hand.wait_shown("pushButton_EXIT", PATIENCE)
        screen.picture().save(out / "verifierqr9.png")
        hand.click("pushButton_EXIT")
        expect("exit code by the exit button", 0, desk.program.wait(PATIENCE))
    finally:
        desk.program.stop()
    log = log_file.read_text()
    # The copy of the program in the instrument's folder stands for the main application: it has such a block too.
    versions = [re.search(pattern, log) for pattern in (r"\nBASE_VERSION=(.+)", r'BASE_VERSION : +"(.+)"')]
    expect("version read from TAVO_QR9.app", *(version and version.group(1) for version in versions))
    expect("the search has gone through the ports", True, SEARCH_FAILED in log)


def expect(what, wanted, found):
    if wanted != found:
        raise RoomError(f"{what}: {found} in place of {wanted}")
    print(f"   {what}: {found}")


def expect_left_alone(system, before, what):
    if system.calibration() != before:
        raise RoomError(f"{what} has changed the instrument's folder")
    print(f"   {what} has left the instrument's folder as it was")


def try_out(package, system, screen, out):
    name = run("dpkg-deb", "--field", package, "Package").strip()
    lent = ["--ro-bind", package, "/tmp/package.deb"]
    before = system.calibration()
    print("== Installing")
    system.apt("update")
    system.apt("install", "--no-install-recommends", "/tmp/package.deb", options=lent)
    expect_left_alone(system, before, "installing")

    print("== Starting")
    (system.home / "TAVO_QR9.app").write_bytes((system.root / PROGRAM).read_bytes())
    before = system.calibration()
    start_and_leave(system, screen, out)
    expect_left_alone(system, before, "a start without board and camera")

    print("== Upgrading and removing")
    system.apt("install", "--no-install-recommends", "--reinstall", "/tmp/package.deb", options=lent)
    expect_left_alone(system, before, "an upgrade")
    system.apt("purge", name)
    expect_left_alone(system, before, "the removal")
    expect("the program is still there", False, (system.root / PROGRAM).exists())


def main():
    if os.geteuid() != 0:
        sys.exit("try_package: takes root (it makes a system of its own and installs in it)")
    package = Path(sys.argv[1]).resolve()
    out = package.parent / "try"
    system = CleanSystem(out / "root")
    if system.root.exists():
        system.delete()
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir()
    print("== Making a clean Debian 12")
    screen = None
    try:
        system.make()
        screen = Screen(out)
        try_out(package, system, screen, out)
    except RoomError as reason:
        sys.exit(f"try_package: {reason}")
    finally:
        if screen:
            screen.stop()
        system.delete()
    print(f"The window and the log: {out}")


main()
