# SPDX-License-Identifier: Apache-2.0
"""What the checks look at; the build system tells through the environment."""
import os
import subprocess
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ["ZETI_BUILD"])
GENERATED = BUILD / "generated"
ZETI = Path(os.environ["ZETI_LIBRARY"])
ZETCORE = Path(os.environ["ZETI_CORE_LIBRARY"])
VARIANT = os.environ["ZETI_VARIANT"]
CC, CXX = os.environ["ZETI_CC"], os.environ["ZETI_CXX"]
CFLAGS = os.environ.get("ZETI_CFLAGS", "").split()  # the width
HEADERS = sorted((SOURCE / "include/zeti").glob("*.h"))


def run(*command, **options):
    """Standard output of a command; a failure carries all that it said."""
    done = subprocess.run([str(c) for c in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    assert done.returncode == 0, f"{' '.join(map(str, command))}\n{done.stdout}"
    return done.stdout


def listed_names():
    return (GENERATED / "names.txt").read_text().split()
