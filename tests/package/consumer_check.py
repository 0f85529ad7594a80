# SPDX-License-Identifier: Apache-2.0
"""The installed package serves a project of its users, through CMake and through pkg-config, wherever it is moved to."""
import os
import tempfile
import unittest
from pathlib import Path

import elf
from subject import BUILD, CC, CFLAGS, HEADERS, ZETI, run

PROJECT = Path(__file__).parent / "consumer"


class Consumer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        run("cmake", "--install", BUILD, "--prefix", f"{folder}/first", env={**os.environ, "DESTDIR": ""})
        cls.folder = Path(folder)
        cls.prefix = (cls.folder / "first").rename(cls.folder / "moved")
        cls.libraries = next(cls.prefix.rglob("libzeti.so")).parent
        width = 64 if elf.Elf(ZETI).wide else 32
        cls.answer = f"7.1.1 (r37466), step 128, {width} bits\n"

    def test_what_is_installed(self):
        names = sorted(p.name for p in self.libraries.glob("*.so*"))
        self.assertEqual(names, ["libzetcore.so.7", "libzetcore.so.7.1.1", "libzeti.so", "libzeti.so.7", "libzeti.so.7.1.1"])
        headers = sorted(p.relative_to(self.prefix / "include").as_posix() for p in (self.prefix / "include").rglob("*.*"))
        self.assertEqual(headers, [f"zeti/{h.name}" for h in HEADERS])
        self.assertEqual(elf.Elf(self.libraries / "libzeti.so").dynamic["RUNPATH"], ["$ORIGIN"])

    def test_find_package(self):
        build = self.folder / "consumer"
        run("cmake", "-G", "Ninja", "-S", PROJECT, "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_C_COMPILER={CC}",
            f"-DCMAKE_C_FLAGS={' '.join(CFLAGS)}")
        run("cmake", "--build", build)
        self.assertEqual(run(build / "consumer"), self.answer)

    def test_pkg_config(self):
        environment = {**os.environ, "PKG_CONFIG_PATH": str(self.libraries / "pkgconfig")}
        flags = run("pkg-config", "--cflags", "--libs", "zeti", env=environment).split()
        program = self.folder / "program"
        run(CC, *CFLAGS, PROJECT / "consumer.c", *flags, f"-Wl,-rpath,{self.libraries}", "-o", program)
        self.assertEqual(run(program), self.answer)
        self.assertEqual(run("pkg-config", "--modversion", "zeti", env=environment).strip(), "7.1.1")
