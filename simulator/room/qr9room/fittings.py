"""The folders and files of a room: everything that the program finds at its fixed paths.

Layout of a rig folder: root/ is the program's "/", disk/ its /dev/disk, sdb1 the device file of the stick and
stick/ the stick's content, stubs/ the programs that stand first in its PATH, mtab its list of mounts.
"""

import shutil
import subprocess
from pathlib import Path

from .errors import RoomError

HERE = Path(__file__).resolve().parent.parent
HOME = "root/TAVO_QR9"  # below root/: the instrument's folder and the program's working directory
FOLDERS = [
    "dev", "proc", "sys", "tmp/.X11-unix", "run/lock", "run/user", "run/rig", "run/prog", "run/source",
    "usr", "media", HOME, "var/tmp", "var/cache",
]
# The machine's secrets have no business in a room.
NOT_COPIED = ["shadow", "shadow-", "gshadow", "gshadow-", "ssh", "ssl/private"]
MAIN_APPLICATION = "simulator/room/TAVO_QR9.app"


def furnish(rig, options):
    """Fills the empty folder `rig`."""
    rig = Path(rig)
    root = rig / "root"
    for folder in FOLDERS:
        (root / folder).mkdir(parents=True)
    (root / "tmp").chmod(0o1777)
    (root / "run/user").chmod(0o700)
    (root / "var/lock").symlink_to("../run/lock")
    for name in ("bin", "sbin", "lib", "lib32", "lib64", "libx32"):
        if Path("/", name).is_symlink():
            (root / name).symlink_to(Path("/", name).readlink())
    _copy_etc(rig)
    _place_stick(rig)
    _place_instrument_files(root / HOME, options)
    stubs = rig / "stubs"
    stubs.mkdir()
    for stub in (HERE / "stubs").iterdir():
        if stub.name != "Reset_BaslerCamera":
            shutil.copy(stub, stubs)
    (rig / "stubs.log").touch()
    (rig / "evidence").mkdir()
    (rig / "unopenable").touch()


def _copy_etc(rig):
    etc = rig / "root/etc"
    # What an ordinary user may not read stays out, without a word.
    subprocess.run(["cp", "-rP", "/etc", etc], stderr=subprocess.DEVNULL, check=False)
    for secret in NOT_COPIED:
        place = etc / secret
        if place.is_dir():
            shutil.rmtree(place)
        else:
            place.unlink(missing_ok=True)
    (etc / "mtab").unlink(missing_ok=True)
    (etc / "mtab").symlink_to("/run/rig/mtab")
    (rig / "mtab").touch()


def _place_stick(rig):
    for folder in ("disk/by-uuid", "disk/by-label", "stick", "work", "empty"):
        (rig / folder).mkdir(parents=True)
    (rig / "sdb1").touch()


def _place_instrument_files(home, options):
    main_application = Path(options.build) / MAIN_APPLICATION
    if not main_application.exists():
        raise RoomError(f"{main_application} is not built")
    shutil.copy(main_application, home)
    shutil.copy(HERE / "AR0134_Merel.cfg", home)
    if options.reset_program:
        shutil.copy(HERE / "stubs/Reset_BaslerCamera", home)
    if options.ini:
        shutil.copyfile(options.ini, home / "TAVO_QR9.ini")
