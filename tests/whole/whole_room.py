"""The room itself: what a program finds in it, and that nothing of it outlives the launcher."""

import os
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from whole_case import PATIENCE, ROOM, Options, Room, main, wait_for


class Launcher(unittest.TestCase):
    """The command line."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="qr9-whole.")
        self.addCleanup(self.folder.cleanup)

    def room(self, *words, **popen_arguments):
        """Starts the launcher with a folder of its own for temporary files."""
        words = [sys.executable, "-B", ROOM, "run", "--build", os.environ["QR9_BUILD"], *words]
        return subprocess.Popen(
            words, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            env={**os.environ, "TMPDIR": self.folder.name}, **popen_arguments,
        )

    def left(self):
        """Names of what lies in the folder for temporary files."""
        return sorted(entry.name.split(".")[0] for entry in Path(self.folder.name).iterdir())

    def test_exitCode_passesThrough(self):
        for code in (0, 7):
            launcher = self.room("--", "/bin/sh", "-c", f"echo seen; exit {code}")
            self.assertEqual(launcher.communicate(timeout=PATIENCE)[0], "seen\n")
            self.assertEqual(launcher.returncode, code)

    def test_goodRun_leavesNothing(self):
        self.room("--", "/bin/true").communicate(timeout=PATIENCE)
        self.assertEqual(self.left(), [])

    def test_failedRun_leavesItsEvidenceAlone(self):
        said = self.room("--", "/bin/sh", "-c", "echo seen; exit 1").communicate(timeout=PATIENCE)[1]
        self.assertEqual(self.left(), ["qr9-failed"])
        place = Path(said.split(" are kept in ")[1].strip())
        self.assertEqual((place / "program.log").read_text(), "seen\n")
        self.assertTrue((place / "board.log").exists())

    def test_crash_isToldAsAShellTellsIt(self):
        launcher = self.room("--", "/bin/sh", "-c", "kill -ABRT $$")
        launcher.communicate(timeout=PATIENCE)
        self.assertEqual(launcher.returncode, 128 + signal.SIGABRT)

    def test_programThatHangs_isEndedInTime(self):
        launcher = self.room("--timeout", "1", "--", "/bin/sleep", "600")
        launcher.communicate(timeout=PATIENCE)
        self.assertEqual(launcher.returncode, 124)

    def test_programThatIsNotBuilt_isNamed(self):
        launcher = self.room("--", "app/NoSuchProgram")
        self.assertIn("app/NoSuchProgram is not built", launcher.communicate(timeout=PATIENCE)[1])
        self.assertEqual(launcher.returncode, 125)

    def end_while_running(self, how):
        """Ends a launcher whose program runs; waits until that program and all that served it are gone."""
        launcher = self.room("--", "/bin/sh", "-c", "echo up; exec sleep 600")
        self.assertEqual(launcher.stdout.readline(), "up\n")
        family = descendants(launcher.pid)
        self.assertGreaterEqual(len(family), 4)  # instrument, screen, bubblewrap twice, program
        launcher.send_signal(how)
        launcher.communicate(timeout=PATIENCE)
        wait_for("the launcher's family to end", lambda: not any(map(is_alive, family)), PATIENCE)

    def test_killedLauncher_takesEverythingWithIt(self):
        self.end_while_running(signal.SIGKILL)

    def test_stoppedLauncher_tidiesUp(self):
        self.end_while_running(signal.SIGTERM)
        self.assertEqual(self.left(), [])

    def test_folderOfAKilledLauncher_isRemovedByTheNext(self):
        self.end_while_running(signal.SIGKILL)
        self.assertEqual(self.left(), ["qr9-room"])
        for folder in Path(self.folder.name).iterdir():
            os.utime(folder, (0, 0))
        self.room("--", "/bin/true").communicate(timeout=PATIENCE)
        self.assertEqual(self.left(), [])


class Inside(unittest.TestCase):
    """What a program finds."""

    def shell(self, script, **wishes):
        """What a shell script prints in a new room."""
        with Room(Options(build=Path(os.environ["QR9_BUILD"]), **wishes)) as room:
            program = room.launch("/bin/sh", ["-c", script])
            self.assertEqual(program.wait(PATIENCE), 0, program.log())
            return program.log().splitlines()

    def test_ports_areTheInstrumentsAlone(self):
        script = "cd /dev; ls -d tty?* 2>/dev/null; ls /sys | wc -l"
        self.assertEqual(self.shell(script, silent_ports=1), ["ttyUSB0", "ttyUSB1", "0"])
        self.assertEqual(self.shell(script, board=False), ["0"])

    def test_program_isRootInItsInstrumentsFolder(self):
        found = self.shell("id -u; pwd; ls; cat ../../etc/mtab")
        files = ["AR0134_Merel.cfg", "Reset_BaslerCamera", "TAVO_QR9.app"]
        self.assertEqual(found, ["0", "/root/TAVO_QR9", *files])

    def test_mainApplication_showsItsBuildRecords(self):
        found = self.shell("readelf -p ZR_META TAVO_QR9.app")
        records = [line.split("]")[1].strip() for line in found if "]" in line]
        expected = ["BASE_SVN_REV=4711", "BUILD_DATE=1750411409", "BASE_VERSION=3.1.7", "VERSION=3.1.7"]
        self.assertEqual(records, expected)

    def test_stick_isMountedListedAndTakenAway(self):
        script = """
            mkdir /media/MY\\ STICK && mount /dev/sdb1 "/media/MY STICK"
            cut -d' ' -f1-2 /etc/mtab
            echo content > "/media/MY STICK/file"; cat /run/rig/stick/file
            umount /dev/sdb1; cat /etc/mtab; ls "/media/MY STICK" | wc -l
        """
        self.assertEqual(self.shell(script), ["/dev/sdb1 /media/MY\\040STICK", "content", "0"])

    def test_hostName_followsTheSerialNumber(self):
        script = """
            printf '[TAVO-QR9]\\nSerial=TV9-01-00042\\n' > TAVO_QR9.ini
            update_hostname.sh; cat /etc/hostname
            systemctl restart rc-local.service; cat /run/rig/stubs.log
        """
        calls = ["update_hostname.sh ", "systemctl restart rc-local.service"]
        self.assertEqual(self.shell(script), ["TV9-01-00042", *calls])

    def test_twoRooms_standSideBySide(self):
        options = Options(build=Path(os.environ["QR9_BUILD"]))
        with Room(options) as one, Room(options) as other:
            self.assertNotEqual(one.screen.number, other.screen.number)
            for room in (one, other):
                room.launch("/bin/sh", ["-c", "touch mine; exec sleep 600"])
            for room in (one, other):
                room.wait_for("the room's own file", (room.home / "mine").exists, PATIENCE)


def descendants(process):
    """Process numbers of the children of a process, of their children, and so on."""
    processes = [int(entry.name) for entry in Path("/proc").iterdir() if entry.name.isdigit()]
    parents = {number: state_and_parent(number)[1] for number in processes}
    found = {process}
    while grown := {number for number, parent in parents.items() if parent in found} - found:
        found |= grown
    return found - {process}


def is_alive(process):
    """Whether a process exists and is more than an entry that nobody has collected yet."""
    return state_and_parent(process)[0] not in ("Z", None)


def state_and_parent(process):
    """The letter of a process's state and its parent's number; None twice when it does not exist."""
    try:
        state, parent = Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()[:2]
        return state, int(parent)
    except OSError:
        return None, None


if __name__ == "__main__":
    main()
