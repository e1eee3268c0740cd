"""Reads Windows executables and objects: as much of the format as the checks need."""

import dataclasses
import struct

COMDAT_SECTION = 0x1000
WEAK_EXTERNAL = 105
RELOCATIONS_STRIPPED = 0x0001
DLL_CHARACTERISTICS = {"HIGH_ENTROPY_VA": 0x0020, "DYNAMIC_BASE": 0x0040, "NX_COMPAT": 0x0100}

EXPORTS, IMPORTS, RESOURCES, RELOCATIONS, THREAD_STORAGE = 0, 1, 2, 5, 9
VERSION_RESOURCE = 16


@dataclasses.dataclass
class Section:
    name: str
    address: int
    size: int
    offset: int
    flags: int


def read_sections(data, at, count):
    sections = []
    for i in range(count):
        name, virtual_size, address, raw_size, offset = struct.unpack_from("<8sIIII", data, at + i * 40)
        (flags,) = struct.unpack_from("<I", data, at + i * 40 + 36)
        sections.append(Section(name.rstrip(b"\0").decode(), address, max(virtual_size, raw_size), offset, flags))
    return sections


class PeFile:
    """A linked DLL or program for x64."""

    def __init__(self, data):
        self.data = data
        header = self.unpack("<I", 0x3C)[0]
        if data[:2] != b"MZ" or data[header:header + 4] != b"PE\0\0":
            raise ValueError("not a Windows executable")
        _, count, self.time_stamp, _, _, optional_size, self.flags = self.unpack("<HHIIIHH", header + 4)
        optional = header + 24
        if self.unpack("<H", optional)[0] != 0x20B:
            raise ValueError("not for x64")
        self.dll_characteristics = self.unpack("<H", optional + 70)[0]
        self.directories = [self.unpack("<II", optional + 112 + 8 * i) for i in range(16)]
        self.sections = read_sections(data, optional + optional_size, count)

    def unpack(self, form, offset):
        return struct.unpack_from(form, self.data, offset)

    def offset(self, address):
        for section in self.sections:
            if section.address <= address < section.address + section.size:
                return address - section.address + section.offset
        raise ValueError(f"address {address:#x} is in no section")

    def text(self, address):
        start = self.offset(address)
        return self.data[start:self.data.index(b"\0", start)].decode("ascii")

    def export_names(self):
        table = self.offset(self.directories[EXPORTS][0])
        count, names = self.unpack("<I", table + 24)[0], self.unpack("<I", table + 32)[0]
        return [self.text(self.unpack("<I", self.offset(names) + 4 * i)[0]) for i in range(count)]

    def export_count(self):
        """Exported addresses; more than there are names when some are exported by number alone."""
        return self.unpack("<I", self.offset(self.directories[EXPORTS][0]) + 20)[0]

    def imports(self):
        """{name of a DLL: names taken from it}"""
        found = {}
        at = self.offset(self.directories[IMPORTS][0])
        while True:
            look_up, _, _, name, thunks = self.unpack("<IIIII", at)
            if name == 0:
                return found
            entry = self.offset(look_up or thunks)
            names = found.setdefault(self.text(name), [])
            while (value := self.unpack("<Q", entry)[0]) != 0:
                names.append(f"#{value & 0xFFFF}" if value >> 63 else self.text(value + 2))
                entry += 8
            at += 20

    def resource(self, kind):
        """The bytes of the first resource of a kind."""
        base = self.offset(self.directories[RESOURCES][0])

        def entries(directory):
            named, numbered = self.unpack("<HH", base + directory + 12)
            return [self.unpack("<II", base + directory + 16 + 8 * i) for i in range(named + numbered)]

        target = next(value for key, value in entries(0) if key == kind)
        while target & 0x80000000:
            target = entries(target & 0x7FFFFFFF)[0][1]
        address, size = self.unpack("<II", base + target)
        return self.data[self.offset(address):self.offset(address) + size]


def version_strings(resource):
    """{name: text} of the string tables of a version resource, with its fixed numbers under FILEVERSION."""
    found = {}

    def aligned(at):
        return (at + 3) & ~3

    def read_block(at):
        length, value_length, is_text = struct.unpack_from("<HHH", resource, at)
        key_end = at + 6
        while resource[key_end:key_end + 2] != b"\0\0":
            key_end += 2
        key = resource[at + 6:key_end].decode("utf-16-le")
        value = aligned(key_end + 2)
        value_bytes = value_length * 2 if is_text else value_length
        if key == "VS_VERSION_INFO":
            signature, _, high, low = struct.unpack_from("<IIII", resource, value)
            if signature != 0xFEEF04BD:
                raise ValueError("no fixed version block")
            found["FILEVERSION"] = (high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF)
        elif is_text and value_length:
            found[key] = resource[value:value + value_bytes].decode("utf-16-le").rstrip("\0")
        child = aligned(value + value_bytes)
        while child < at + length:
            child = aligned(child + read_block(child))
        return length

    read_block(0)
    return found


class CoffObject:
    """What the compiler writes for Windows, before the link."""

    def __init__(self, data):
        machine, section_count, _, symbols, symbol_count, optional_size, _ = struct.unpack_from("<HHIIIHH", data, 0)
        if machine == 0 and section_count == 0xFFFF:
            raise ValueError("a big object, which this reader does not know")
        if machine != 0x8664:
            raise ValueError("not an object for x64")
        self.sections = read_sections(data, 20 + optional_size, section_count)
        strings = symbols + 18 * symbol_count
        self.symbols = []  # (name, section number, storage class)
        i = 0
        while i < symbol_count:
            name, _, section, _, storage, auxiliary = struct.unpack_from("<8sIhHBB", data, symbols + 18 * i)
            if name[:4] == b"\0\0\0\0":
                start = strings + struct.unpack("<I", name[4:])[0]
                name = data[start:data.index(b"\0", start)]
            self.symbols.append((name.rstrip(b"\0").decode(), section, storage))
            i += 1 + auxiliary

    def mergeable_symbols(self):
        """Symbols of which the linker keeps one copy of many: weak ones, and external ones of COMDAT sections."""
        external = 2
        for name, section, storage in self.symbols:
            in_comdat = section > 0 and self.sections[section - 1].flags & COMDAT_SECTION
            if storage == WEAK_EXTERNAL or (storage == external and in_comdat):
                yield name
