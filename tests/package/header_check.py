# SPDX-License-Identifier: Apache-2.0
"""The public header and the reference are fresh, each file of the header compiles alone, as C and as C++, and what it declares is what is
exported."""
import filecmp
import re
import sys
import tempfile
import unittest
from pathlib import Path

from subject import CC, CFLAGS, CXX, GENERATED, HEADERS, SOURCE, ZETCORE, ZETI, listed_names, run

STRICT = ["-pedantic", "-Wall", "-Wextra", "-Werror", "-fsyntax-only"]


class Header(unittest.TestCase):
    def test_what_is_committed_is_what_the_list_makes(self):
        with tempfile.TemporaryDirectory() as folder:
            fresh = Path(folder)
            run(sys.executable, SOURCE / "api/generate.py", "header", fresh / "functions.h")
            run(sys.executable, SOURCE / "api/generate.py", "reference", fresh / "reference")
            same = (fresh / "functions.h").read_bytes() == (SOURCE / "include/zeti/functions.h").read_bytes()
            self.assertTrue(same, "include/zeti/functions.h is stale: ./run header")
            pages = filecmp.dircmp(fresh / "reference", SOURCE / "docs/reference")
            self.assertEqual((pages.left_only, pages.right_only, pages.diff_files), ([], [], []), "docs/reference is stale: ./run docs")

    def test_each_file_compiles_alone(self):
        self.assertTrue(HEADERS)
        for header in HEADERS:
            for compiler, language, standard in [(CC, "c", "c89"), (CC, "c", "c17"), (CXX, "c++", "c++11"), (CXX, "c++", "c++20")]:
                with self.subTest(header=header.name, standard=standard):
                    # Twice: the second time the guard must hide it.
                    text = f"#include <zeti/{header.name}>\n" * 2
                    run(compiler, *CFLAGS, "-x", language, f"-std={standard}", *STRICT, "-I", SOURCE / "include", "-", input=text)

    def test_names_are_those_of_the_list(self):
        def exported(library):
            """Names with their versions, without the nodes themselves."""
            lines = run("nm", "-D", "--defined-only", "--with-symbol-versions", library).splitlines()
            return sorted(name for _, kind, name in (line.split() for line in lines) if kind != "A")

        header = re.sub(r"/\*.*?\*/", "", (SOURCE / "include/zeti/functions.h").read_text(), flags=re.DOTALL)
        names = listed_names()
        self.assertTrue(names)
        self.assertEqual(names, sorted(set(names)))
        self.assertEqual(sorted(re.findall(r"\b(\w+)\(", header)), names)
        self.assertEqual(sorted(re.findall(r"(\w+);", (GENERATED / "zeti.map").read_text())), names)
        self.assertEqual(exported(ZETI), [f"{name}@@ZETI_7" for name in names])
        services = ["ownGetNumThreads", "zetFree", "zetGetMaxCacheSizeB", "zetMalloc"]
        self.assertEqual(exported(ZETCORE), [f"{name}@@ZETCORE_7" for name in services])
