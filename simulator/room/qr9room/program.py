"""The program in the room: its output as a log file, and its end."""

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
        # bubblewrap itself is told to die with its parent, together with everything in the room.
        self._process = subprocess.Popen(
            words, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT
        )
        self._pump = threading.Thread(target=self._copy_output, daemon=True)
        self._pump.start()

    def _copy_output(self):
        with open(self._log_file, "ab", buffering=0) as log:
            for line in self._process.stdout:
                log.write(line)
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
        if self.exit_code() is None:
            self._process.kill()
        self._process.wait()
        self._pump.join(5)
        self._process.stdout.close()
