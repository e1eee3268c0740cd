#!/usr/bin/env python3
"""Works out the golden checksums without the library: a plain statement of each effect over the test picture.

    checksums.py            prints the checksum of every row
"""
MASK = (1 << 64) - 1
WIDTH, HEIGHT, PADDING = 61, 37, 5


def random_bytes(count, seed):
    """The generator of tests/support/bytes.h."""
    state = (seed * 0x9E3779B97F4A7C15 + 0x2545F4914F6CDD1D) & MASK
    values = []
    for _ in range(count + 1):
        state = (state * 6364136223846793005 + 1442695040888963407) & MASK
        values.append((state >> 56) & 255)
    return bytearray(values[1:])


def checksum(data):
    """FNV-1a, 64 bits."""
    total = 0xCBF29CE484222325
    for byte in data:
        total = ((total ^ byte) * 0x100000001B3) & MASK
    return total


def invert(channels, protects_alpha):
    stride = WIDTH * channels + PADDING
    data = random_bytes(stride * HEIGHT, channels)
    for y in range(HEIGHT):
        for x in range(WIDTH):
            for c in range(channels):
                if not (protects_alpha and c == 3):
                    data[y * stride + x * channels + c] ^= 255
    return data


ROWS = [
    ("InvertImage, gray", invert(1, False)),
    ("InvertImage, RGB", invert(3, False)),
    ("InvertImage, RGBA", invert(4, False)),
    ("InvertImage, RGBA with alpha protected", invert(4, True)),
    ("InvertImage, eight channels", invert(8, False)),
]

if __name__ == "__main__":
    for name, data in ROWS:
        print(f"0x{checksum(data):016X}  {name}")
