"""A picture of the screen: pixels, simple statistics, and a PNG file of it."""

import struct
import zlib


class Picture:
    """Pixels of four bytes each (blue, green, red, unused), row by row without gaps."""

    def __init__(self, width, height, pixels):
        self.width = width
        self.height = height
        self._pixels = pixels

    @classmethod
    def from_xwd(cls, dump):
        """Reads the window dump that Xvfb keeps of its screen (24 planes in 32 bits, little-endian)."""
        head = struct.unpack(">25I", dump[:100])
        header_size, width, height, bytes_per_line, colours = head[0], head[4], head[5], head[12], head[19]
        if head[11] != 32 or bytes_per_line != 4 * width:
            raise ValueError("the screen is not one of 32 bits a pixel")
        begin = header_size + 12 * colours
        return cls(width, height, dump[begin : begin + height * bytes_per_line])

    def pixel(self, x, y):
        """Red, green and blue of one pixel, 0 to 255 each."""
        at = 4 * (y * self.width + x)
        blue, green, red = self._pixels[at : at + 3]
        return red, green, blue

    def part(self, x, y, width, height):
        """A rectangle of this picture as a picture of its own."""
        rows = [
            self._pixels[4 * (row * self.width + x) : 4 * (row * self.width + x + width)]
            for row in range(y, y + height)
        ]
        return Picture(width, height, b"".join(rows))

    def is_black(self):
        """Whether nothing at all is shown."""
        return self._pixels.count(0) == len(self._pixels)

    def colours(self):
        """All pixels as they are, to tell one picture from another."""
        return self._pixels

    def greys(self):
        """Grey values (the green plane), row by row."""
        return self._pixels[1::4]

    def mean_and_deviation(self):
        """Mean and standard deviation of the grey values."""
        greys = self.greys()
        mean = sum(greys) / len(greys)
        return mean, (sum((grey - mean) ** 2 for grey in greys) / len(greys)) ** 0.5

    def save(self, path):
        """Writes the picture as a PNG file."""
        colours = bytearray(3 * self.width * self.height)
        colours[0::3] = self._pixels[2::4]
        colours[1::3] = self._pixels[1::4]
        colours[2::3] = self._pixels[0::4]
        line = 3 * self.width
        rows = b"".join(b"\0" + colours[row * line : (row + 1) * line] for row in range(self.height))
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            file.write(_chunk(b"IHDR", struct.pack(">2I5B", self.width, self.height, 8, 2, 0, 0, 0)))
            file.write(_chunk(b"IDAT", zlib.compress(rows, 6)))
            file.write(_chunk(b"IEND", b""))


def _chunk(kind, content):
    return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))
