"""Pictures for the tests, written and read without any imaging library: PNG and BMP byte by byte."""
import dataclasses
import struct
import zlib

PNG_COLOUR_TYPE = {1: 0, 2: 4, 3: 2, 4: 6}
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"


@dataclasses.dataclass
class Picture:
    width: int
    height: int
    channels: int
    samples: bytes

    def pixel(self, x, y):
        at = (y * self.width + x) * self.channels
        return tuple(self.samples[at:at + self.channels])


def pattern(width, height, channels, seed=1):
    """Samples that differ from pixel to pixel and from channel to channel."""
    state, samples = seed, bytearray()
    for _ in range(width * height * channels):
        state = (state * 1103515245 + 12345) & 0x7FFFFFFF
        samples.append(state >> 16 & 255)
    return Picture(width, height, channels, bytes(samples))


def smooth(width, height, channels):
    """A ramp without edges, which JPEG keeps almost as it is. For small pictures: it must end below 256."""
    samples = bytes(x * 3 + y * 2 + c * 20 + 10 for y in range(height) for x in range(width) for c in range(channels))
    return Picture(width, height, channels, samples)


def inverted(picture, skipped=()):
    samples = bytes(v if i % picture.channels in skipped else 255 - v for i, v in enumerate(picture.samples))
    return dataclasses.replace(picture, samples=samples)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png_bytes(picture, depth=8):
    """A PNG file without filters. With 16 bits a sample, each sample is repeated in its low byte's complement."""
    stride = picture.width * picture.channels
    rows = [picture.samples[y * stride:(y + 1) * stride] for y in range(picture.height)]
    if depth == 16:
        rows = [bytes(part for v in row for part in (v, 255 - v)) for row in rows]
    header = struct.pack(">IIBBBBB", picture.width, picture.height, depth, PNG_COLOUR_TYPE[picture.channels], 0, 0, 0)
    data = zlib.compress(b"".join(b"\0" + row for row in rows))
    return PNG_SIGNATURE + chunk(b"IHDR", header) + chunk(b"IDAT", data) + chunk(b"IEND", b"")


def bmp_bytes(picture):
    """A BMP file of 24 bits a pixel, bottom row first, rows padded to four bytes."""
    padding = b"\xEE" * (-picture.width * 3 % 4)
    rows = b"".join(b"".join(bytes(reversed(picture.pixel(x, y))) for x in range(picture.width)) + padding
                    for y in reversed(range(picture.height)))
    header = struct.pack("<IiiHHIIiiII", 40, picture.width, picture.height, 1, 24, 0, len(rows), 2835, 2835, 0, 0)
    return b"BM" + struct.pack("<IHHI", 54 + len(rows), 0, 0, 54) + header + rows


def paeth(left, up, corner):
    guess = left + up - corner
    return min((left, up, corner), key=lambda value: abs(guess - value))


def unfiltered(kind, row, above, channels):
    """A row of a PNG file with its filter undone."""
    row = bytearray(row)
    for i in range(len(row)):
        left = row[i - channels] if i >= channels else 0
        corner = above[i - channels] if i >= channels else 0
        row[i] = (row[i] + (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]) & 255
    return bytes(row)


def read_png(data):
    assert data[:8] == PNG_SIGNATURE, "not a PNG file"
    at, packed, header = 8, b"", None
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        assert struct.unpack(">I", data[at + 8 + length:at + 12 + length])[0] == zlib.crc32(kind + body), "bad checksum"
        header = struct.unpack(">IIBBBBB", body) if kind == b"IHDR" else header
        packed += body if kind == b"IDAT" else b""
        at += 12 + length
    assert kind == b"IEND", "the file ends early"
    width, height, depth, colour_type = header[:4]
    assert depth == 8 and header[6] == 0
    channels = {value: key for key, value in PNG_COLOUR_TYPE.items()}[colour_type]
    raw, stride = zlib.decompress(packed), width * channels
    assert len(raw) == (stride + 1) * height
    rows = [bytes(stride)]
    for y in range(height):
        line = raw[y * (stride + 1):(y + 1) * (stride + 1)]
        rows.append(unfiltered(line[0], line[1:], rows[-1], channels))
    return Picture(width, height, channels, b"".join(rows[1:]))


def read_bmp(data):
    """24 and 32 bits a pixel, as RGB or RGBA. The length must be that of whole padded rows."""
    assert data[:2] == b"BM", "not a BMP file"
    start, width, height, bits = struct.unpack_from("<I4xiixxH", data, 10)
    channels = bits // 8
    stride = (width * channels + 3) // 4 * 4
    assert len(data) == start + stride * height, "rows of a BMP file are padded to four bytes"
    samples = bytearray()
    for y in reversed(range(height)):
        for x in range(width):
            blue, green, red, *alpha = data[start + y * stride + x * channels:][:channels]
            samples += bytes((red, green, blue, *alpha))
    return Picture(width, height, channels, bytes(samples))
