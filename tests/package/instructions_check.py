# SPDX-License-Identifier: Apache-2.0
"""Both libraries hold base x86, SSE and SSE2 instructions only: instructions.txt lists them, anything else is a finding."""
import json
import re
import tempfile
import unittest
from pathlib import Path

from subject import BUILD, CC, CFLAGS, SOURCE, ZETCORE, ZETI, run

ALLOWED = {word for line in (Path(__file__).parent / "instructions.txt").read_text().splitlines()
           if not line.startswith(("#", "[")) for word in line.split()}

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
        # processor runs it, with the same result. The other tzcnt needs a flag or an attribute: see Flags below.
        return True
    return mnemonic in ALLOWED


class Instructions(unittest.TestCase):
    def test_both_libraries(self):
        for library, least in ((ZETI, 1000), (ZETCORE, 20)):
            found, seen = findings(library)
            self.assertEqual(found, [])
            self.assertGreater(seen, least)


class Flags(unittest.TestCase):
    """No source asks the compiler for more, for a file or for a single function."""

    def test_machine_flags(self):
        others = tuple(str(SOURCE / folder) for folder in ("tests", "bench", "examples"))
        commands = json.loads((BUILD / "compile_commands.json").read_text())
        product = [c["command"] for c in commands if not c["file"].startswith(others)]
        self.assertTrue(product)
        flags = {flag for command in product for flag in command.split() if flag.startswith("-m")}
        self.assertLessEqual(flags, {"-m32", "-msse2", "-mfpmath=sse", "-mstackrealign"})

    def test_no_target_attributes(self):
        for path in SOURCE.glob("*/*.[ch]*"):
            self.assertNotRegex(path.read_text(), r"target\s*\(|GCC\s+target|_tzcnt_|_blsr_", str(path))


class SelfTest(unittest.TestCase):
    """The checker sees what it is there to see."""

    def check(self, instructions):
        with tempfile.TemporaryDirectory() as folder:
            binary = Path(folder) / "sample.o"
            source = "sample:\n" + "\n".join(instructions) + "\n"
            run(CC, *CFLAGS, "-c", "-x", "assembler", "-", "-o", binary, input=source)
            return findings(binary)

    def test_later_instructions_are_found(self):
        late = ["pshufb %xmm1, %xmm0", "pabsw %xmm1, %xmm0", "haddps %xmm1, %xmm0", "lddqu (%ecx), %xmm0", "movddup %xmm1, %xmm0",
                "pmulld %xmm1, %xmm0", "ptest %xmm1, %xmm0", "pblendw $1, %xmm1, %xmm0", "roundps $0, %xmm1, %xmm0",
                "pextrw $1, %xmm0, (%ecx)", "pextrb $1, %xmm0, %eax", "insertps $1, %xmm1, %xmm0", "movntdqa (%ecx), %xmm0",
                "pcmpgtq %xmm1, %xmm0", "popcnt %eax, %eax", "lzcnt %eax, %eax", "andn %eax, %eax, %eax", "movbe (%ecx), %eax",
                "crc32b %al, %eax", "vaddps %xmm0, %xmm0, %xmm0", "vpaddb %ymm0, %ymm0, %ymm0", "vfmadd231ps %xmm0, %xmm0, %xmm0",
                "paddb %mm1, %mm0", "emms", "fld1", "fisttpl (%ecx)", "rdtscp"]
        found, seen = self.check(late)
        self.assertEqual(seen, len(late))
        self.assertEqual(len(found), len(late), f"only these were found: {found}")

    def test_base_instructions_pass(self):
        base = ["paddb %xmm1, %xmm0", "pextrw $1, %xmm0, %eax", "pshufd $0, %xmm1, %xmm0", "cmpltps %xmm1, %xmm0", "rep movsb",
                "rep stosl", "lock xaddl %eax, (%ecx)", "rep ret", "rep bsf %eax, %eax", "cs nopw 0(%eax,%eax,1)", ".byte 0x66, 0x66, 0x2e, 0x0f, 0x1f, 0x84, 0, 0, 0, 0, 0",
                "movsd (%ecx), %xmm0", "cmovbe %eax, %ecx", "mfence"]
        found, seen = self.check(base)
        self.assertEqual(found, [])
        self.assertEqual(seen, len(base))
