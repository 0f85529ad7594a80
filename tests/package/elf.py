# SPDX-License-Identifier: Apache-2.0
"""Reads as much of an ELF shared library as the checks of this folder ask for. Both widths, little-endian."""
import struct
from dataclasses import dataclass

SHT_SYMTAB, SHT_RELA, SHT_NOBITS, SHT_REL = 2, 4, 8, 9
SHF_WRITE, SHF_ALLOC, SHF_TLS = 1, 2, 0x400
PT_LOAD, PT_GNU_STACK, PT_GNU_RELRO = 1, 0x6474E551, 0x6474E552
PF_X, PF_W = 1, 2
DT_NEEDED, DT_INIT, DT_FINI, DT_SONAME, DT_TEXTREL, DT_INIT_ARRAY, DT_FINI_ARRAY, DT_RUNPATH = 1, 12, 13, 14, 22, 25, 26, 29
DT_FLAGS = 30
DF_TEXTREL, DF_BIND_NOW = 4, 8
STB_LOCAL, STT_OBJECT, STT_FUNC = 0, 1, 2
R_RELATIVE = 8  # the same number on x86-64 and on i386


@dataclass(frozen=True)
class Section:
    name: str
    kind: int
    flags: int
    address: int
    offset: int
    size: int
    link: int


@dataclass(frozen=True)
class Segment:
    kind: int
    flags: int
    address: int
    size: int


@dataclass(frozen=True)
class Symbol:
    name: str
    binding: int
    kind: int
    section: int
    value: int
    size: int


class Elf:
    def __init__(self, path):
        with open(path, "rb") as file:
            self.bytes = file.read()
        assert self.bytes[:4] == b"\x7fELF", f"{path} is no ELF file"
        self.wide = self.bytes[4] == 2
        self.word = 8 if self.wide else 4
        header = self._unpack("HHIQQQIHHHHHH" if self.wide else "HHIIIIIHHHHHH", 16)
        (_, _, _, _, phoff, shoff, _, _, phentsize, phnum, shentsize, shnum, shstrndx) = header
        self.segments = [self._segment(phoff + i * phentsize) for i in range(phnum)]
        raw = [self._unpack("IIQQQQII" if self.wide else "IIIIIIII", shoff + i * shentsize) for i in range(shnum)]
        self.sections = [Section(self._text(raw[shstrndx][4] + r[0]), *r[1:7]) for r in raw]

    def section(self, name):
        return next((s for s in self.sections if s.name == name), None)

    def content(self, address, size):
        """The bytes that the file gives for an address of the loaded library."""
        for s in self.sections:
            if s.flags & SHF_ALLOC and s.kind != SHT_NOBITS and s.address <= address < s.address + s.size:
                start = s.offset + address - s.address
                return self.bytes[start:start + size]
        raise AssertionError(f"nothing at {address:#x}")

    def pointer(self, address):
        return int.from_bytes(self.content(address, self.word), "little")

    def symbols(self):
        for s in self.sections:
            if s.kind == SHT_SYMTAB:
                size = 24 if self.wide else 16
                for offset in range(s.offset + size, s.offset + s.size, size):
                    if self.wide:
                        name, info, _, section, value, length = self._unpack("IBBHQQ", offset)
                    else:
                        name, value, length, info, _, section = self._unpack("IIIBBH", offset)
                    text = self._text(self.sections[s.link].offset + name)
                    yield Symbol(text, info >> 4, info & 15, section, value, length)

    def relocations(self):
        """address -> (type, what is added to the base of the library)."""
        found = {}
        for s in self.sections:
            if s.kind in (SHT_REL, SHT_RELA) and s.flags & SHF_ALLOC:
                form = ("QQq" if s.kind == SHT_RELA else "QQ") if self.wide else ("IIi" if s.kind == SHT_RELA else "II")
                size = struct.calcsize("<" + form)
                for offset in range(s.offset, s.offset + s.size, size):
                    address, info, *addend = self._unpack(form, offset)
                    kind = info & (0xFFFFFFFF if self.wide else 0xFF)
                    found[address] = (kind, addend[0] if addend else self.pointer(address))
        return found

    def dynamic(self):
        """tag -> list of values."""
        section, found = self.section(".dynamic"), {}
        for offset in range(section.offset, section.offset + section.size, 2 * self.word):
            tag, value = self._unpack("qQ" if self.wide else "iI", offset)
            found.setdefault(tag, []).append(value)
        return found

    def dynamic_texts(self, tag):
        strings = self.section(".dynstr").offset
        return [self._text(strings + value) for value in self.dynamic().get(tag, [])]

    def _segment(self, offset):
        if self.wide:
            kind, flags, _, address, _, _, size, _ = self._unpack("IIQQQQQQ", offset)
        else:
            kind, _, address, _, _, size, flags, _ = self._unpack("IIIIIIII", offset)
        return Segment(kind, flags, address, size)

    def _unpack(self, form, offset):
        return struct.unpack_from("<" + form, self.bytes, offset)

    def _text(self, offset):
        return self.bytes[offset:self.bytes.index(b"\0", offset)].decode()
