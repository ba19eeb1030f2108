"""The launcher of the package: it starts the program as root, in the instrument's folder, or says why not."""

import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

LAUNCHER = Path(__file__).resolve().parents[2] / "packaging/verifierqr9.sh"
HOME = "/root/TAVO_QR9"
SKIPPED = 77
# In place of the program: it tells where it was started.
PROGRAM = '#!/bin/sh\npwd\necho "$PATH"\nexit 42\n'


def room(user, *words):
    """Runs words with a /root of their own, by the number of a user."""
    wall = ["bwrap", "--unshare-user", "--uid", str(user), "--gid", str(user)]
    wall += ["--ro-bind", "/", "/", "--tmpfs", "/root"]
    return subprocess.run([*wall, *map(str, words)], capture_output=True, text=True, check=False)


class Launcher(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qr9-launcher.")
        self.addCleanup(folder.cleanup)
        program = Path(folder.name) / "lib/verifierqr9/VerifierQR9"
        program.parent.mkdir(parents=True)
        program.write_text(PROGRAM)
        program.chmod(0o755)
        self.launcher = Path(folder.name) / "sbin/verifierqr9"
        self.launcher.parent.mkdir()
        shutil.copy(LAUNCHER, self.launcher)

    def test_root_isTakenToTheInstrumentsFolder_andGetsTheProgramsExitCode(self):
        done = room(0, "--dir", HOME, self.launcher)
        self.assertEqual((done.stdout.splitlines()[0], done.returncode), (HOME, 42))

    def test_scriptsInTheInstrumentsFolder_areFoundBehindThoseOfTheSystem(self):
        done = room(0, "--dir", HOME, "--setenv", "PATH", "/usr/bin:/bin", self.launcher)
        self.assertEqual(done.stdout.splitlines()[1], f"/usr/bin:/bin:{HOME}")

    def test_missingFolder_isToldAndNothingStarts(self):
        done = room(0, self.launcher)
        self.assertEqual((done.stdout, done.returncode), ("", 1))
        self.assertIn(f"verifierqr9: {HOME} is missing", done.stderr)

    def test_ordinaryUser_isTurnedAway(self):
        done = room(1000, "--dir", HOME, self.launcher)
        self.assertEqual((done.stdout, done.returncode), ("", 1))
        self.assertIn("verifierqr9: only root", done.stderr)


if __name__ == "__main__":
    if not shutil.which("bwrap") or room(0, "true").returncode != 0:
        print("no room: bubblewrap is missing, or the system forbids user namespaces", file=sys.stderr)
        sys.exit(SKIPPED)
    unittest.main(verbosity=2)
