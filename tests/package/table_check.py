# SPDX-License-Identifier: Apache-2.0
"""The entry table: sorted, gapless, constant after relocation; every stub jumps through its own slot to its own function."""
import unittest

import elf
from subject import VARIANT, ZETI, listed_names

SLOT = 16


def signed(code):
    return int.from_bytes(code, "little", signed=True)


class Table(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.library = elf.Elf(ZETI)
        cls.names = listed_names()
        cls.slots = {n.removesuffix("_arraddr"): s for n, s in cls.library.symbols.items() if n.endswith("_arraddr")}

    def test_one_private_slot_per_name_in_their_order(self):
        self.assertEqual(sorted(self.slots), self.names)
        first = self.slots[self.names[0]].value
        self.assertEqual(first % SLOT, 0)
        for i, name in enumerate(self.names):
            value, *rest, section = self.slots[name]
            self.assertEqual((value, *rest), (first + SLOT * i, SLOT, "OBJECT", "LOCAL"), name)
            self.assertEqual(self.library.sections[section].name, ".data.rel.ro", name)

    def test_each_slot_holds_its_own_function(self):
        kind = "R_X86_64_RELATIVE" if self.library.wide else "R_386_RELATIVE"
        for name in self.names:
            slot, function = self.slots[name].value, self.library.symbols[f"{VARIANT}_{name}"]
            self.assertEqual((function.binding, function.kind), ("LOCAL", "FUNC"), name)
            found, target = self.library.relocations[slot]
            pointer, rest = self.library.content(slot, self.library.word), self.library.content(slot, SLOT)[self.library.word:]
            self.assertEqual((found, target or int.from_bytes(pointer, "little")), (kind, function.value), name)
            self.assertEqual(rest.strip(b"\0"), b"", name)
            self.assertFalse(self.library.relocations.keys() & set(range(slot + 1, slot + SLOT)), name)

    def test_each_stub_is_one_jump_through_its_own_slot(self):
        decode = self.decode_x86_64 if self.library.wide else self.decode_i386
        for name in self.names:
            stub = self.library.symbols[name]
            code = self.library.content(stub.value, stub.size)
            self.assertEqual(decode(stub.value, code), self.slots[name].value, f"{name}: {code.hex(' ')}")

    def decode_x86_64(self, address, code):
        jumps = len(code) == 6 and code[:2] == b"\xff\x25"  # jmp *displacement(%rip)
        return address + 6 + signed(code[2:]) if jumps else None

    def decode_i386(self, address, code):
        if len(code) != 11 or code[:1] != b"\xe8" or code[5:7] != b"\xff\xa1":  # call helper; jmp *displacement(%ecx)
            return None
        helper = address + 5 + signed(code[1:5])
        returns = self.library.content(helper, 4) == b"\x8b\x0c\x24\xc3"  # movl (%esp), %ecx; ret
        return address + 5 + signed(code[7:]) if returns else None
