# SPDX-License-Identifier: Apache-2.0
"""The entry table: sorted, gapless, constant after relocation; every stub jumps through its own slot to its own function."""
import unittest

import elf
from subject import VARIANT, ZETI, listed_names

SLOT = 16


class Table(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.library = elf.Elf(ZETI)
        cls.names = listed_names()
        cls.symbols = {s.name: s for s in cls.library.symbols() if s.kind in (elf.STT_OBJECT, elf.STT_FUNC)}
        cls.slots = {n.removesuffix("_arraddr"): s for n, s in cls.symbols.items() if n.endswith("_arraddr")}

    def test_one_private_slot_per_name(self):
        self.assertEqual(sorted(self.slots), self.names)
        for name, slot in self.slots.items():
            self.assertEqual((slot.binding, slot.kind, slot.size), (elf.STB_LOCAL, elf.STT_OBJECT, SLOT), name)
            self.assertEqual(self.library.sections[slot.section].name, ".data.rel.ro", name)

    def test_slots_stand_in_the_order_of_the_names(self):
        first = self.slots[self.names[0]].value
        self.assertEqual(first % SLOT, 0)
        self.assertEqual([self.slots[n].value for n in self.names], [first + SLOT * i for i in range(len(self.names))])

    def test_each_slot_holds_its_own_function(self):
        relocations = self.library.relocations()
        for name in self.names:
            slot, function = self.slots[name].value, self.symbols[f"{VARIANT}_{name}"]
            self.assertEqual((function.binding, function.kind), (elf.STB_LOCAL, elf.STT_FUNC), name)
            self.assertEqual(relocations.get(slot), (elf.R_RELATIVE, function.value), name)
            rest = self.library.content(slot + self.library.word, SLOT - self.library.word)
            self.assertEqual(rest.strip(b"\0"), b"", name)
            inside = [a for a in range(slot + 1, slot + SLOT) if a in relocations]
            self.assertEqual(inside, [], name)

    def test_each_stub_is_one_jump_through_its_own_slot(self):
        decode = self.decode_x86_64 if self.library.wide else self.decode_i386
        for name in self.names:
            stub = self.symbols[name]
            code = self.library.content(stub.value, stub.size)
            self.assertEqual(decode(stub.value, code), self.slots[name].value, f"{name}: {code.hex(' ')}")

    def decode_x86_64(self, address, code):
        if len(code) != 6 or code[:2] != b"\xff\x25":  # jmp *displacement(%rip)
            return None
        return address + 6 + signed(code[2:])

    def decode_i386(self, address, code):
        if len(code) != 11 or code[:1] != b"\xe8" or code[5:7] != b"\xff\xa1":  # call helper; jmp *displacement(%ecx)
            return None
        helper = address + 5 + signed(code[1:5])
        if self.library.content(helper, 4) != b"\x8b\x0c\x24\xc3":  # movl (%esp), %ecx; ret
            return None
        return address + 5 + signed(code[7:])


def signed(code):
    return int.from_bytes(code, "little", signed=True)


if __name__ == "__main__":
    unittest.main()
