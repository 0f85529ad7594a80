# SPDX-License-Identifier: Apache-2.0
"""The demo shows every operation of the list, and says clearly what is wrong with a file.  demo_check.py PROGRAM"""
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

PROGRAM = sys.argv.pop(1)
SOURCE = Path(__file__).resolve().parents[2]
IMAGES = SOURCE / "examples/images"
sys.path.insert(0, str(SOURCE / "api"))
import model  # noqa: E402


class Demo(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def run_demo(self, *arguments, **options):
        return subprocess.run([PROGRAM, *map(str, arguments)], cwd=self.folder, capture_output=True, text=True, **options)

    def page(self, *arguments, folder="build/demo"):
        done = self.run_demo(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return (self.folder / folder / "index.html").read_text()

    def test_every_operation_is_shown(self):
        page = self.page()
        listed = {family.operation for family in model.load()[0]}
        missing = {o for o in listed if not re.search(rf"\bzeti{o}(_\d|\()", page)}
        self.assertEqual(missing, {"GetLibVersion"})  # whose answer heads the page
        self.assertIn("7.1.1 (r37466)", page)

    def test_the_page_needs_nothing_but_its_pictures(self):
        page = self.page("--out", "there", IMAGES / "camera.png", folder="there")
        self.assertNotRegex(page, r"<script|https?:|@import|url\(")
        pictures = set(re.findall(r'src="([^"]+)"', page))
        files = {p.relative_to(self.folder / "there").as_posix() for p in (self.folder / "there/pictures").iterdir()}
        self.assertEqual(pictures, files)
        for picture in pictures:
            self.assertTrue((self.folder / "there" / picture).read_bytes().endswith(b"IEND\xaeB`\x82"), picture)

    def test_the_smallest_photograph(self):
        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

        rows = b"".join(b"\0" + bytes(range(16 * y, 16 * y + 16)) for y in range(16))
        head = struct.pack(">IIBBBBB", 16, 16, 8, 0, 0, 0, 0)
        chunks = chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")
        (self.folder / "tiny.png").write_bytes(b"\x89PNG\r\n\x1a\n" + chunks)
        self.page("tiny.png")

    def test_bad_files(self):
        def cut(name, keep):
            bytes_ = (IMAGES / name).read_bytes()
            (self.folder / name).write_bytes(bytes_[:int(len(bytes_) * keep)])
            return name

        (self.folder / "text.png").write_text("no picture")
        (self.folder / "empty.jpg").touch()
        (self.folder / "folder.png").mkdir()
        cases = [("missing.png", "No such file"), ("text.png", "neither a PNG nor a JPEG"), ("empty.jpg", "neither a PNG nor a JPEG"),
                 ("folder.png", "Is a directory"), (cut("coffee.png", 0.5), "damaged PNG"), (cut("camera.png", 0.0001), "damaged PNG"),
                 (cut("rocket.jpg", 0.5), "damaged JPEG"), ("--in", "unknown option")]
        for name, message in cases:
            with self.subTest(name):
                done = self.run_demo(IMAGES / "camera.png", name)  # a good one before it saves nothing
                self.assertEqual((done.returncode, done.stdout), (1, ""))
                self.assertIn(name, done.stderr)
                self.assertIn(message, done.stderr)
        self.assertFalse((self.folder / "build").exists())

    def test_a_folder_that_cannot_be_made(self):
        (self.folder / "file").touch()
        done = self.run_demo("--out", "file/below")
        self.assertEqual(done.returncode, 1)
        self.assertIn("file/below", done.stderr)


if __name__ == "__main__":
    unittest.main()
