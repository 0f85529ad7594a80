# SPDX-License-Identifier: Apache-2.0
"""README.md shows scale.c as it is."""
import re
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent


class Readme(unittest.TestCase):
    def test_the_program_is_the_one_that_is_compiled(self):
        blocks = re.findall(r"^```c\n(.*?)^```$", (HERE.parent / "README.md").read_text(), re.DOTALL | re.MULTILINE)
        self.assertIn((HERE / "scale.c").read_text(), blocks)


if __name__ == "__main__":
    unittest.main()
