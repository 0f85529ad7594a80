# SPDX-License-Identifier: Apache-2.0
"""What a shared library consists of, as readelf tells it. Both widths, little-endian."""
import re
from pathlib import Path
from typing import NamedTuple

from subject import run


class Section(NamedTuple):
    name: str
    kind: str
    address: int
    offset: int
    size: int
    flags: str  # W: writable, A: loaded, T: per thread


class Segment(NamedTuple):
    kind: str
    address: int
    size: int
    flags: str  # R, W and E


class Symbol(NamedTuple):
    value: int
    size: int
    kind: str
    binding: str
    section: int


def matches(kind, form, text):
    """A tuple of this kind for each line that fits the form; its integers are hexadecimal."""
    types = kind.__annotations__.values()
    return [kind(*(int(v, 16) if t is int else v for v, t in zip(found, types))) for found in re.findall(form, text, re.MULTILINE)]


class Elf:
    def __init__(self, path):
        def readelf(option):
            return run("readelf", "-W", option, path)

        self.bytes = Path(path).read_bytes()
        self.wide = self.bytes[4] == 2
        self.word = 8 if self.wide else 4
        self.sections = matches(Section, r"^ +\[ *\d+\] (\S*) +(\S+) +(\w+) (\w+) (\w+) \w+ +([A-Z]*) ", readelf("-S"))
        self.segments = matches(Segment, r"^ +(\w+) +0x\w+ (0x\w+) 0x\w+ 0x\w+ (0x\w+) (.{3}) 0x", readelf("-l"))
        symbols = readelf("-s").partition("'.symtab'")[2]
        self.symbols = {name: Symbol(int(value, 16), int(size, 0), kind, binding, int(section))
                        for value, size, kind, binding, section, name
                        in re.findall(r": (\w+) +(\w+) (OBJECT|FUNC) +(\w+) +\w+ +(\d+) (\S+)", symbols)}
        self.relocations = {int(address, 16): (kind, int(addend or "0", 16))
                            for address, kind, addend in re.findall(r"^(\w+) +\w+ (R_\w+) *(\w*)", readelf("-r"), re.MULTILINE)}
        self.dynamic = {}
        for tag, value in re.findall(r"\((\w+)\) +(.+)", readelf("-d")):
            self.dynamic.setdefault(tag, []).append(value.partition("[")[2].rstrip("]") or value)

    def content(self, address, size):
        """The bytes that the file gives for an address of the loaded library."""
        for s in self.sections:
            if "A" in s.flags and s.kind != "NOBITS" and s.address <= address < s.address + s.size:
                start = s.offset + address - s.address
                return self.bytes[start:start + size]
        raise AssertionError(f"nothing at {address:#x}")
