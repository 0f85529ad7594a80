# SPDX-License-Identifier: Apache-2.0
"""Both libraries hold base x86, SSE and SSE2 instructions only: instructions.txt lists them, anything else is a finding."""
import json
import re
import tempfile
import unittest
from pathlib import Path

from subject import BUILD, CC, CFLAGS, SOURCE, ZETCORE, ZETI, run

ALLOWED = set(re.sub(r"^[#[].*", "", (Path(__file__).parent / "instructions.txt").read_text(), flags=re.MULTILINE).split())

PREFIXES = re.compile(r"^(?:(?:lock|rep|repz|repnz|repe|repne|data16|addr32|[cdefgs]s|bnd|notrack|rex(?:\.\w+)?) )+")
LINE = re.compile(r"\s*[0-9a-f]+:\t((?:[0-9a-f]{2} )+)\s*\t?(.*)")
FUNCTION = re.compile(r"[0-9a-f]+ <(.+)>:")
LATE_OPCODES = re.compile(r"^(?:(?:66|67|f2|f3|2e|36|3e|26|64|65|4[0-9a-f]) )*0f 3[8a] ")  # both maps came after SSE2


def findings(binary):
    """(function, instruction) for everything outside the list, and the number of instructions seen."""
    found, seen, function = [], 0, ""
    for line in run("objdump", "-d", "-w", "-M", "intel", binary).splitlines():
        if header := FUNCTION.fullmatch(line):
            function = header[1]
        elif (match := LINE.fullmatch(line)) and match[2]:
            seen += 1
            if not allowed(match[1], match[2].split("#")[0].strip()):
                found.append((function, match[2].strip()))
    return found, seen


def allowed(code, text):
    bare = PREFIXES.sub("", text + " ").strip()
    mnemonic = bare.split()[0] if bare else "nop"  # prefixes alone: padding
    if LATE_OPCODES.match(code) or re.search(r"\bmm[0-7]\b", bare):
        return False
    if mnemonic == "tzcnt":
        # How the disassembler reads `rep bsf`, the compiler's bsf for a source that is known not to be zero. Every
        # processor runs it, with the same result. The other tzcnt needs a flag or an attribute: see below.
        return True
    return mnemonic in ALLOWED


class Instructions(unittest.TestCase):
    def test_both_libraries(self):
        for library, least in ((ZETI, 1000), (ZETCORE, 20)):
            found, seen = findings(library)
            self.assertEqual(found, [])
            self.assertGreater(seen, least)

    def test_no_source_asks_for_more(self):
        others = tuple(str(SOURCE / folder) for folder in ("tests", "bench", "examples"))
        commands = json.loads((BUILD / "compile_commands.json").read_text())
        flags = {flag for c in commands if not c["file"].startswith(others) for flag in c["command"].split() if flag.startswith("-m")}
        self.assertIn("-msse2", flags)
        self.assertLessEqual(flags, {"-m32", "-msse2", "-mfpmath=sse", "-mstackrealign"})
        for path in SOURCE.glob("*/*.[ch]*"):
            self.assertNotRegex(path.read_text(), r"target\s*\(|GCC\s+target|_tzcnt_|_blsr_", str(path))

    def test_the_checker_sees_what_it_is_there_to_see(self):
        late = ["pshufb %xmm1, %xmm0", "haddps %xmm1, %xmm0", "lddqu (%ecx), %xmm0", "movddup %xmm1, %xmm0", "pmulld %xmm1, %xmm0",
                "pextrw $1, %xmm0, (%ecx)", "popcnt %eax, %eax", "lzcnt %eax, %eax", "andn %eax, %eax, %eax", "movbe (%ecx), %eax",
                "crc32b %al, %eax", "vaddps %xmm0, %xmm0, %xmm0", "paddb %mm1, %mm0", "emms", "fld1", "fisttpl (%ecx)", "rdtscp"]
        base = ["pextrw $1, %xmm0, %eax", "cmpltps %xmm1, %xmm0", "rep movsb", "rep stosl", "lock xaddl %eax, (%ecx)", "rep ret",
                "rep bsf %eax, %eax", "cs nopw 0(%eax,%eax,1)", ".byte 0x66, 0x66, 0x2e, 0x0f, 0x1f, 0x84, 0, 0, 0, 0, 0", "mfence"]
        with tempfile.TemporaryDirectory() as folder:
            binary = Path(folder) / "sample.o"
            for instructions, bad in ((late, len(late)), (base, 0)):
                run(CC, *CFLAGS, "-c", "-x", "assembler", "-", "-o", binary, input="\n".join(["sample:", *instructions, ""]))
                found, seen = findings(binary)
                self.assertEqual((len(found), seen), (bad, len(instructions)), f"these were found: {found}")
