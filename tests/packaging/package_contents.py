"""What the Debian package of this build says of itself and puts where."""

import gzip
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

BUILD = Path(os.environ["QR9_BUILD"])
VERSION = os.environ["QR9_VERSION"]
PROGRAM = "usr/lib/verifierqr9/VerifierQR9"
LAUNCHER = "usr/sbin/verifierqr9"
SERVICE = "usr/lib/systemd/system/verifierqr9.service"
HOME = "/root/TAVO_QR9"


def output(*words):
    return subprocess.run([str(word) for word in words], check=True, capture_output=True, text=True).stdout


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="qr9-package.")
        out = Path(cls.folder.name)
        output("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", out)
        (cls.package,) = out.glob("*.deb")
        output("dpkg-deb", "--raw-extract", cls.package, out / "tree")
        cls.tree = out / "tree"
        cls.control = cls.tree / "DEBIAN"

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def field(self, name):
        return output("dpkg-deb", "--field", self.package, name).strip()

    def test_packageLinkedWithAStandIn_saysSoInItsNameAndDescription(self):
        # A stand-in brings the name of the virtual instrument's camera socket with it.
        standin = b"QR9_CAMERA_SOCKET" in (self.tree / PROGRAM).read_bytes()
        self.assertEqual(self.field("Package"), "verifierqr9-standin" if standin else "verifierqr9")
        self.assertEqual("NOT FOR AN INSTRUMENT" in self.field("Description"), standin)

    def test_packageForTheDeskAndPackageForAnInstrument_replaceEachOther(self):
        other = {"verifierqr9": "verifierqr9-standin", "verifierqr9-standin": "verifierqr9"}[self.field("Package")]
        self.assertEqual((self.field("Conflicts"), self.field("Replaces")), (other, other))

    def test_version_isThatOfTheBuildMetadata(self):
        self.assertEqual(self.field("Version"), VERSION)
        metadata = output("readelf", "-p", "ZR_META", self.tree / PROGRAM)
        self.assertRegex(metadata, rf"\bVERSION={re.escape(VERSION)}\n")

    def test_changelog_beginsWithThisVersion(self):
        document = self.tree / "usr/share/doc" / self.field("Package") / "changelog.gz"
        self.assertTrue(gzip.decompress(document.read_bytes()).decode().startswith(f"verifierqr9 ({VERSION}) "))

    def test_depends_namesTheProgramsThatItStartsAndTheLibrariesThatItLinks(self):
        depends = self.field("Depends")
        for name in ("binutils", "mount", "systemd", "libqt5serialport5", "libqt5widgets5", "libopencv-core406"):
            self.assertRegex(depends, rf"(^|, ){name}\b")
        self.assertRegex(depends, r"(^|, )libc6 \(>= ")

    def test_files_areThoseOfTheProgramAlone(self):
        name = self.field("Package")
        wanted = [PROGRAM, LAUNCHER, SERVICE, "usr/share/man/man8/verifierqr9.8.gz"]
        wanted += [f"usr/share/doc/{name}/{document}" for document in ("changelog.gz", "copyright")]
        if "Compiled against the makers' camera libraries" in self.field("Description"):
            wanted.append(f"usr/share/lintian/overrides/{name}")
        files = sorted(str(path.relative_to(self.tree)) for path in self.tree.rglob("*")
                       if not path.is_dir() and self.control not in path.parents)
        self.assertEqual(files, sorted(wanted))

    def test_nothingRunsOnInstallOrRemoval_soThatCalibrationsAreLeftAlone(self):
        self.assertEqual(sorted(path.name for path in self.control.iterdir()), ["control", "md5sums"])
        self.assertFalse((self.tree / HOME.lstrip("/")).exists())

    def test_service_startsTheLauncherAndLeavesTheRestartOfTheInstrumentAlone(self):
        lines = (self.tree / SERVICE).read_text().splitlines()
        self.assertIn(f"ExecStart=/{LAUNCHER}", lines)
        self.assertIn("KillMode=process", lines)
        self.assertIn(f"AssertPathIsDirectory={HOME}", lines)


if __name__ == "__main__":
    unittest.main(verbosity=2)
