"""The program in the room: its output as a log file, and its end."""

import contextlib
import json
import os
import signal
import subprocess
import threading
from pathlib import Path

from . import children
from .errors import RoomError

CHECK_FAILED = b"FAIL!"  # how Qt Test begins the line of a failed check


class Program:
    """A started program. Its standard output and error go to `log_file` and, when given, to `echo`.

    `on_failed_check` is called as soon as a failed check of Qt Test is reported, while the windows still
    stand.
    """

    def __init__(self, words, log_file, echo=None, on_failed_check=lambda: None):
        self._log_file = Path(log_file)
        self._echo = echo
        self._on_failed_check = on_failed_check
        self._log = open(self._log_file, "ab", buffering=0)
        told, tell = os.pipe()
        # bubblewrap itself is told to die with its parent, together with everything in the room.
        self._process = subprocess.Popen(
            [*words[:1], "--info-fd", str(tell), *words[1:]], pass_fds=[tell],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        )
        os.close(tell)
        self._first_process = _first_process(told)
        os.close(told)
        self._pump = threading.Thread(target=self._copy_output, daemon=True)
        self._pump.start()

    def _copy_output(self):
        with self._log, self._process.stdout as output:
            for line in output:
                self._log.write(line)
                if line.startswith(CHECK_FAILED):
                    self._on_failed_check()
                if self._echo:
                    self._echo.write(line)
                    self._echo.flush()

    def log(self):
        """Everything that the program has written so far."""
        return self._log_file.read_text(errors="replace")

    def exit_code(self):
        """None while it runs; as a shell gives it otherwise (128 and more for a signal)."""
        code = self._process.poll()
        return code if code is None or code >= 0 else 128 - code

    def holds(self, process):
        """Whether a process, by its number outside of the room, is one of the room's."""
        while process > 1:
            if process == self._first_process:
                return True
            try:
                words = Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
            except OSError:
                return False
            process = int(words[1])
        return False

    def must_run(self):
        """Raises RoomError when the program has ended."""
        if self.exit_code() is not None:
            raise RoomError(f"the program has ended with exit code {self.exit_code()}")

    def wait(self, limit=None):
        """Waits for the end; returns the exit code, or None when `limit` seconds have passed before."""
        try:
            self._process.wait(limit)
        except subprocess.TimeoutExpired:
            return None
        self._pump.join(5)
        return self.exit_code()

    def stop(self):
        """Ends the program and everything that it started."""
        if self.exit_code() is None and self._first_process:
            # With its first process a room loses all others. bubblewrap outside then ends by itself; killed
            # in place of it, it could leave a room behind that was still being built.
            with contextlib.suppress(ProcessLookupError):
                os.kill(self._first_process, signal.SIGKILL)
        children.stop(self._process)
        self._pump.join(5)


def _first_process(descriptor):
    """What bubblewrap tells about the room: the process number of its first process. None when it failed."""
    text = b""
    while piece := os.read(descriptor, 4096):
        text += piece
    return json.loads(text)["child-pid"] if text else None
