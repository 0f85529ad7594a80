# SPDX-License-Identifier: Apache-2.0
"""Every exported name has been called by some test program: names.txt against the lists that the programs left behind."""
import sys
from pathlib import Path

names, covered = Path(sys.argv[1]), Path(sys.argv[2])
called = {name for file in covered.glob("*.txt") for name in file.read_text().split()}
missing = [name for name in names.read_text().split() if name not in called]
print(*missing, f"{len(missing)} exported names are called by no test", sep="\n")
sys.exit(bool(missing))
