# SPDX-License-Identifier: Apache-2.0
"""The list of members: reads api/*.toml and multiplies every family out into its members.

Vocabulary of the TOML files
  [members.NAME]      a list of {types, layouts, suffixes}: the product of the three is the set of members
  [arguments.NAME]    suffix (or layout and suffix) -> list of arguments "kind name [step]"; Sfs appends the scale factor by itself
  [notes.NAME]        text shared by the reference pages of several families
  [[family]]          operation, members, arguments, template, header, returns (ZetStatus if not given) and the texts of
                      its reference page

Texts of a reference page, all of them Markdown and none but `brief` required
  brief, formula      the head of the page; `author` ("Name, year") where the formula has one
  notes               heading -> name of a shared note, or a list of names, in the order of the page
  text                what holds for this family alone
  describe            argument -> what it is, or [what it is, unit, range], where the argument's kind does not tell
  steps               the values that the steps may have
  statuses            status -> when it is returned ("" where the status says it all); zetStsNoErr goes without saying

Argument kinds
  source, destination, both   an image (pointer and step); planar layouts take an array of plane pointers
  mask, mask_out              an image of Zet8u that is read; one that is written, one byte per pixel
  value                       one constant by value on C1, C3C and C4C, else a pointer to one per colour channel
  count                       likewise, of Zet32u whatever the sample type
  order                       a pointer to one channel number per colour channel
  sample                      one constant of the sample type by value, whatever the layout
  value_out                   a pointer to a sample that the function writes
  size, scale                 ZetiSize; the scale factor
  round_mode, cmp_op, alpha_type, hint   ZetRoundMode, ZetCmpOp, ZetAlphaType, ZetHintAlgorithm
  int, float                  a plain number (flags, extents, tolerances)
  int_out                     a pointer to an integer that the function writes
  seed                        a pointer to a Zet32u that the function reads and writes
  memory                      a plain pointer
"""
import re
import tomllib
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FILES = ["core", "arith", "move", "stats", "filter", "geometry", "transform", "correlate"]

TYPES = ["16sc", "32sc", "32fc", "24u", "16u", "16s", "32u", "32s", "32f", "64s", "64f", "8u", "8s", "1u"]
CHANNELS = {"C1": 1, "C2": 2, "C3": 3, "C4": 4, "AC4": 4, "C3C": 3, "C4C": 4, "P2": 2, "P3": 3, "P4": 4, "AP4": 4, "AC1": 2}
COLOURS = {**CHANNELS, "AC4": 3, "C3C": 1, "C4C": 1}
# C types of the arguments that do not depend on the sample type.
PLAIN = {"size": "ZetiSize ", "scale": "int ", "int": "int ", "float": "Zet32f ", "int_out": "int *", "memory": "void *", "seed": "Zet32u *",
         "round_mode": "ZetRoundMode ", "cmp_op": "ZetCmpOp ", "hint": "ZetHintAlgorithm ", "alpha_type": "ZetAlphaType "}
BY_VALUE = {"C1", "C3C", "C4C"}


def split_types(token):
    """'8u32f' -> ['8u', '32f']."""
    parts = re.findall("|".join(TYPES), token)
    assert "".join(parts) == token, f"unknown type token {token}"
    return parts


def split_layout(token):
    """'C3P3' -> ('C3', 'P3'); 'AC4' -> ('AC4', 'AC4')."""
    if token in CHANNELS:
        return token, token
    parts = re.fullmatch(r"(A?[CP]\d)(A?[CP]\d)", token)
    assert parts, f"unknown layout token {token}"
    return parts.groups()


@dataclass(frozen=True)
class Argument:
    kind: str
    name: str
    declaration: str  # C declaration, as in the header


@dataclass(frozen=True)
class Family:
    folder: str
    operation: str
    data: dict

    def __getattr__(self, key):
        return self.data.get(key, "")


@dataclass(frozen=True)
class Member:
    family: Family
    name: str
    types: tuple
    layout: str
    suffix: str
    result: str
    arguments: tuple
    call: str  # the template with type and layout filled in

    def parameters(self):
        return ", ".join(a.declaration for a in self.arguments) or "void"

    def declaration(self, prefix=""):
        space = "" if self.result.endswith("*") else " "
        return f"{self.result}{space}{prefix}{self.name}({self.parameters()})"


def _declare(text, types, layout):
    """Expands one 'kind name [step]' into C arguments."""
    kind, name, *step = text.split()
    source, destination = split_layout(layout) if layout else ("C1", "C1")
    source_type, destination_type = (f"Zet{t}" for t in (types[0], types[-1])) if types else ("void", "void")

    def image(type_, side, const):
        if side.lstrip("A").startswith("P"):
            return f"{const}{type_} *const {name}[{CHANNELS[side]}]"
        return f"{const}{type_} *{name}"

    if kind == "source":
        declaration = image(source_type, source, "const ")
    elif kind in ("destination", "both"):
        declaration = image(destination_type, destination, "")
    elif kind == "mask":
        declaration = f"const Zet8u *{name}"
    elif kind == "mask_out":
        declaration = f"Zet8u *{name}"
    elif kind in ("value", "count"):
        by_value = destination in BY_VALUE
        value_type = "Zet32u" if kind == "count" else destination_type
        declaration = f"{value_type} {name}" if by_value else f"const {value_type} {name}[{COLOURS[destination]}]"
        kind += "" if by_value else "s"
    elif kind == "order":
        declaration = f"const int {name}[{COLOURS[destination]}]"
    else:
        plain = {"sample": f"{destination_type} ", "value_out": f"{destination_type} *", **PLAIN}
        declaration = plain[kind] + name
    arguments = [Argument(kind, name, declaration)]
    if step:
        arguments.append(Argument("step", step[0], f"int {step[0]}"))
    return arguments


def _expand(family, members, shapes):
    """All members of one family, in the order of its list."""
    if not members:
        members = [{"types": "", "layouts": "", "suffixes": ""}]
    for group in members:
        for type_token in group["types"].split() or [""]:
            for layout in group["layouts"].split() or [""]:
                for suffix in group["suffixes"].split() or [""]:
                    yield _member(family, shapes, type_token, layout, suffix)


def _member(family, shapes, type_token, layout, suffix):
    types = tuple(split_types(type_token)) if type_token else ()
    form = suffix.removesuffix("Sfs")
    shape = shapes[family.arguments]
    texts = list(shape.get(layout + form, shape.get(form)) if isinstance(shape, dict) else shape)
    if suffix.endswith("Sfs"):
        texts.append("scale scaleFactor")
    arguments = tuple(a for text in texts for a in _declare(text, types, layout))
    name = "_".join(part for part in ("zeti" + family.operation, type_token, layout + suffix) if part)
    template = family.template[form] if isinstance(family.template, dict) else family.template
    filled = [f"Zet{t}" for t in types] + ([layout] if layout else [])
    if filled:
        head, _, tail = template.rstrip(">").partition("<")
        template = f"{head}<{', '.join(([tail] if tail else []) + filled)}>"
    result = family.returns.format(T=f"Zet{types[0]}" if types else "void") if family.returns else "ZetStatus"
    return Member(family, name, types, layout, suffix, result, arguments, template)


def load():
    """-> (list of families, list of members, shared notes), all in list order."""
    families, members, notes = [], [], {}
    sets, shapes = {}, {}
    for folder in FILES:
        path = ROOT / "api" / f"{folder}.toml"
        if not path.exists():
            continue
        data = tomllib.loads(path.read_text())
        sets.update(data.get("members", {}))
        shapes.update(data.get("arguments", {}))
        notes.update(data.get("notes", {}))
        for entry in data.get("family", []):
            family = Family(folder, entry["operation"], entry)
            chosen = entry.get("members", [])
            families.append(family)
            members.extend(_expand(family, sets[chosen] if isinstance(chosen, str) else chosen, shapes))
    names = [m.name for m in members]
    assert len(set(names)) == len(names), "a name is listed twice"
    return families, members, notes
