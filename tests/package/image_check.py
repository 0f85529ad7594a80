# SPDX-License-Identifier: Apache-2.0
"""What loading the libraries brings along: no writable data, no code at load time, no stray dependency."""
import unittest

import elf
from subject import ZETCORE, ZETI

PAGE = 4096


class Image(unittest.TestCase):
    def setUp(self):
        self.zeti, self.zetcore = elf.Elf(ZETI), elf.Elf(ZETCORE)

    def test_nothing_is_writable_once_loaded(self):
        protected = next(s for s in self.zeti.segments if s.kind == elf.PT_GNU_RELRO)
        end = protected.address + protected.size
        self.assertEqual(end % PAGE, 0, "the last page of the protected part stays writable")
        for s in self.zeti.sections:
            if s.flags & elf.SHF_WRITE and s.flags & elf.SHF_ALLOC and s.size:
                inside = protected.address <= s.address and s.address + s.size <= end
                self.assertTrue(inside, f"{s.name}: {s.size} bytes of writable data")

    def test_no_data_per_thread(self):
        self.assertEqual([s.name for s in self.zeti.sections if s.flags & elf.SHF_TLS], [])

    def test_nothing_runs_at_load_or_unload(self):
        tags = self.zeti.dynamic()
        for tag in (elf.DT_INIT, elf.DT_FINI, elf.DT_INIT_ARRAY, elf.DT_FINI_ARRAY):
            self.assertNotIn(tag, tags)
        for name in (".init", ".fini", ".init_array", ".fini_array", ".ctors", ".dtors", ".preinit_array"):
            self.assertIsNone(self.zeti.section(name), name)

    def test_dependencies(self):
        allowed = {"libzetcore.so.7", "libgomp.so.1", "libm.so.6", "libc.so.6"}
        needed = self.zeti.dynamic_texts(elf.DT_NEEDED)
        self.assertIn("libzetcore.so.7", needed)
        self.assertLessEqual(set(needed), allowed)
        self.assertLessEqual(set(self.zetcore.dynamic_texts(elf.DT_NEEDED)), {"libgomp.so.1", "libc.so.6"})

    def test_sonames(self):
        self.assertEqual(self.zeti.dynamic_texts(elf.DT_SONAME), ["libzeti.so.7"])
        self.assertEqual(self.zetcore.dynamic_texts(elf.DT_SONAME), ["libzetcore.so.7"])

    def test_hardening(self):
        for name, library in (("zeti", self.zeti), ("zetcore", self.zetcore)):
            with self.subTest(name):
                tags = library.dynamic()
                flags = tags.get(elf.DT_FLAGS, [0])[0]
                self.assertTrue(flags & elf.DF_BIND_NOW, "bound lazily")
                self.assertTrue(any(s.kind == elf.PT_GNU_RELRO for s in library.segments))
                self.assertFalse(flags & elf.DF_TEXTREL or elf.DT_TEXTREL in tags, "code is relocated")
                stacks = [s.flags for s in library.segments if s.kind == elf.PT_GNU_STACK]
                self.assertEqual([f & elf.PF_X for f in stacks], [0], "executable stack")
                mixed = [s for s in library.segments if s.kind == elf.PT_LOAD and s.flags & elf.PF_X and s.flags & elf.PF_W]
                self.assertEqual(mixed, [], "writable code")


if __name__ == "__main__":
    unittest.main()
