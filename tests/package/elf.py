# SPDX-License-Identifier: Apache-2.0
"""What a shared library consists of, as readelf tells it. Both widths, little-endian."""
import re
from collections import namedtuple
from pathlib import Path

from subject import run

Section = namedtuple("Section", "name kind address offset size flags")  # flags: W: writable, A: loaded, T: per thread
Segment = namedtuple("Segment", "kind address size flags")  # R, W and E
Symbol = namedtuple("Symbol", "value size kind binding section")


class Elf:
    def __init__(self, path):
        def found(form, option):
            return re.findall(form, run("readelf", "-W", option, path), re.MULTILINE)

        def number(text):
            return int(text or "0", 16)

        self.bytes = Path(path).read_bytes()
        self.wide = self.bytes[4] == 2
        self.word = 8 if self.wide else 4
        self.sections = [Section(name, kind, number(address), number(offset), number(size), flags) for name, kind, address, offset, size, flags
                         in found(r"^ +\[ *\d+\] (\S*) +(\S+) +(\w+) (\w+) (\w+) \w+ +([A-Z]*) ", "-S")]
        self.segments = [Segment(kind, number(address), number(size), flags) for kind, address, size, flags
                         in found(r"^ +(\w+) +0x\w+ (0x\w+) 0x\w+ 0x\w+ (0x\w+) (.{3}) 0x", "-l")]
        self.symbols = {name: Symbol(number(value), int(size, 0), kind, binding, int(section))
                        for value, size, kind, binding, section, name in found(r": (\w+) +(\w+) (OBJECT|FUNC) +(\w+) +\w+ +(\d+) (\S+)$", "-s")}
        self.relocations = {number(address): (kind, number(addend)) for address, kind, addend in found(r"^(\w+) +\w+ (R_\w+) *(\w*)", "-r")}
        self.dynamic = {}
        for tag, value in found(r"\((\w+)\) +(.+)", "-d"):
            self.dynamic.setdefault(tag, []).append(value.partition("[")[2].rstrip("]") or value)

    def content(self, address, size):
        """The bytes that the file gives for an address of the loaded library."""
        section = next(s for s in self.sections if "A" in s.flags and s.kind != "NOBITS" and s.address <= address < s.address + s.size)
        start = section.offset + address - section.address
        return self.bytes[start:start + size]
