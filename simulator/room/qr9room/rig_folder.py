"""The temporary folder of a room, and the removal of those that killed launchers have left behind."""

import fcntl
import os
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

PREFIX = "qr9-room."
LONGEST_SHELF = 60  # characters; a socket's path may have about 100
FRESH = 60  # seconds in which a folder may not yet be locked by its owner


class RigFolder:
    """A new folder that is locked as long as its room stands."""

    def __init__(self):
        shelf = tempfile.gettempdir()
        if len(shelf) > LONGEST_SHELF:
            shelf = "/tmp"
        _sweep(Path(shelf))
        self.path = Path(tempfile.mkdtemp(prefix=PREFIX, dir=shelf))
        self._lock = os.open(self.path, os.O_RDONLY)
        fcntl.flock(self._lock, fcntl.LOCK_EX)

    def remove(self):
        _remove(self.path)
        os.close(self._lock)


def _sweep(shelf):
    for folder in shelf.glob(PREFIX + "*"):
        try:
            status = folder.stat()
            if status.st_uid != os.getuid() or time.time() - status.st_mtime < FRESH:
                continue
            descriptor = os.open(folder, os.O_RDONLY)
        except OSError:
            continue  # removed by its owner meanwhile
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
            _remove(folder)
        except BlockingIOError:
            pass  # its room stands
        finally:
            os.close(descriptor)


def _remove(folder):
    shutil.rmtree(folder, ignore_errors=True)
    if folder.exists():
        # The overlay of a stick leaves a work folder without any permission.
        subprocess.run(["chmod", "-R", "u+rwx", folder], check=False)
        shutil.rmtree(folder, ignore_errors=True)
