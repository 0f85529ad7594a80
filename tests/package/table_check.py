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
        for name in self.names:
            stub = self.library.symbols[name]
            code = self.library.content(stub.value, stub.size)
            if self.library.wide:
                opcodes, at = [(0, b"\xff\x25")], 2  # jmp *displacement(%rip)
            else:
                opcodes, at = [(0, b"\xe8"), (5, b"\xff\xa1")], 7  # call helper; jmp *displacement(%ecx)
                self.assertEqual(self.library.content(stub.value + 5 + signed(code[1:5]), 4), b"\x8b\x0c\x24\xc3", name)  # movl (%esp), %ecx; ret
            for place, opcode in opcodes:
                self.assertTrue(code.startswith(opcode, place), f"{name}: {code.hex(' ')}")
            base = stub.value + (6 if self.library.wide else 5)
            self.assertEqual((len(code), base + signed(code[at:])), (at + 4, self.slots[name].value), name)
