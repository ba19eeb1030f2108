"""Numbers as the program holds them in single precision."""

import struct


def single(value):
    """The nearest number of single precision."""
    return struct.unpack("f", struct.pack("f", value))[0]
