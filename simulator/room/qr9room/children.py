"""Child processes that never outlive the launcher.

The kernel sends them SIGKILL when the thread that started them ends, however it ends. So children are started
from the main thread.
"""

import os
import select
import subprocess
import time


def start(argv, **popen_arguments):
    """Starts `argv` as a child that dies with us; the further arguments are those of subprocess.Popen."""
    return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *map(str, argv)], **popen_arguments)


def stop(process, limit=5.0):
    """Asks the process to end, and insists after `limit` seconds. Returns its exit code."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(limit)
        except subprocess.TimeoutExpired:
            process.kill()
    return process.wait()


def first_line(descriptor, limit):
    """The first line that arrives on a pipe, without its end; None when the pipe closes or `limit` passes."""
    end = time.monotonic() + limit
    text = b""
    while b"\n" not in text:
        readable, _, _ = select.select([descriptor], [], [], max(0.0, end - time.monotonic()))
        piece = os.read(descriptor, 4096) if readable else b""
        if not piece:
            return None
        text += piece
    return text.split(b"\n")[0].decode()
