# SPDX-License-Identifier: Apache-2.0
"""What loading the libraries brings along: no writable data, no code at load time, no stray dependency."""
import unittest

import elf
from subject import ZETCORE, ZETI

PAGE = 4096


class Image(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.zeti, cls.zetcore = elf.Elf(ZETI), elf.Elf(ZETCORE)

    def test_nothing_is_writable_once_loaded(self):
        protected = next(s for s in self.zeti.segments if s.kind == "GNU_RELRO")
        end = protected.address + protected.size
        self.assertEqual(end % PAGE, 0, "the last page of the protected part stays writable")
        outside = [s for s in self.zeti.sections if {"W", "A"} <= set(s.flags) and s.size
                   and not protected.address <= s.address <= s.address + s.size <= end]
        self.assertEqual(outside, [])
        self.assertEqual([s for s in self.zeti.sections if "T" in s.flags], [], "data per thread")

    def test_nothing_runs_at_load_or_unload(self):
        self.assertFalse({"INIT", "FINI", "INIT_ARRAY", "FINI_ARRAY", "PREINIT_ARRAY"} & set(self.zeti.dynamic))

    def test_names_and_dependencies(self):
        needed = set(self.zeti.dynamic["NEEDED"])
        self.assertIn("libzetcore.so.7", needed)
        self.assertLessEqual(needed, {"libzetcore.so.7", "libgomp.so.1", "libm.so.6", "libc.so.6"})
        self.assertLessEqual(set(self.zetcore.dynamic["NEEDED"]), {"libgomp.so.1", "libc.so.6"})
        self.assertEqual([lib.dynamic["SONAME"] for lib in (self.zeti, self.zetcore)], [["libzeti.so.7"], ["libzetcore.so.7"]])

    def test_hardening(self):
        for library in (self.zeti, self.zetcore):
            with self.subTest(library.dynamic["SONAME"]):
                flags = " ".join(library.dynamic["FLAGS"])
                self.assertIn("BIND_NOW", flags)
                self.assertFalse("TEXTREL" in flags or "TEXTREL" in library.dynamic, "code is relocated")
                self.assertIn("GNU_RELRO", [s.kind for s in library.segments])
                self.assertEqual(["E" in s.flags for s in library.segments if s.kind == "GNU_STACK"], [False])
                self.assertEqual([s for s in library.segments if {"W", "E"} <= set(s.flags)], [], "writable code")
