# SPDX-License-Identifier: Apache-2.0
"""Four sets of names are equal: the list, the header, the exported symbols, the version script."""
import re
import unittest

from subject import GENERATED, ZETCORE, ZETI, declared_names, listed_names, run


def exported(library):
    """Names with their versions, without the nodes themselves."""
    lines = run("nm", "-D", "--defined-only", "--with-symbol-versions", library).splitlines()
    return sorted(name for _, kind, name in (line.split() for line in lines) if kind != "A")


class Names(unittest.TestCase):
    maxDiff = None

    def test_all_are_the_list(self):
        names = listed_names()
        self.assertTrue(names)
        self.assertEqual(names, sorted(set(names)))
        self.assertEqual(sorted(declared_names()), names)
        self.assertEqual(sorted(re.findall(r"(\w+);", (GENERATED / "zeti.map").read_text())), names)
        self.assertEqual(exported(ZETI), [f"{name}@@ZETI_7" for name in names])

    def test_exports_of_core_services(self):
        names = ["ownGetNumThreads", "zetFree", "zetGetMaxCacheSizeB", "zetMalloc"]
        self.assertEqual(exported(ZETCORE), [f"{name}@@ZETCORE_7" for name in names])
