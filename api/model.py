# SPDX-License-Identifier: Apache-2.0
"""The list of members: reads api/*.toml and multiplies every family out into its members.

Vocabulary of the TOML files
  [members.NAME]      a list of {types, layouts, suffixes}: the product of the three is the set of members; an entry may have
                      arguments and a template of its own
  [arguments.NAME]    a list of arguments "kind name [step]", or such lists by suffix, by layout and suffix, or by type; Sfs appends the
                      scale factor by itself
  [notes.NAME]        text shared by the reference pages of several families
  [[family]]          operation, members, arguments, template, header, returns (ZetStatus if not given) and the texts of
                      its reference page; or, for operations that share most of these,
  [family.operations.NAME]   what an operation has beside its family's

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
  bits                        an image of packed bits that is read; the types token names it 1u
  value                       one constant by value on C1, C3C and C4C, else a pointer to one per colour channel
  count                       likewise, of Zet32u whatever the sample type
  order                       a pointer to one channel number per colour channel
  sample                      one constant of the sample type by value, whatever the layout
  value_out                   a pointer to a sample that the function writes
  values_out, doubles_out, indices_out   results, one per colour channel: samples, Zet64f, Zet32s
  size, point, scale          ZetiSize; ZetiPoint; the scale factor
  round_mode, cmp_op, alpha_type, hint   ZetRoundMode, ZetCmpOp, ZetAlphaType, ZetHintAlgorithm
  int, float                  a plain number (flags, extents, tolerances)
  int_out                     a pointer to an integer that the function writes
  seed                        a pointer to a Zet32u that the function reads and writes
  memory                      a plain pointer
  bound                       one number by value on C1, else a pointer to one per colour channel, of the sample's type of levels: Zet32f for
                              32f, else Zet32s; `number` likewise, of int; `counts_out` a pointer to as many counts that are written
  bins, levels, levels_out, table   one array on C1, else an array of one per colour channel: counts that are written, numbers as of
                              `bound`, the same written, entries of the destination's type
  state:R, state_read:R, state_out:R   a pointer to a record R, to one that is only read, to a pointer to one; {T} in R is the type
  values_out:N                a pointer to N samples that the function writes
"""
import re
import tomllib
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDERS = ["core", "arith", "move", "stats", "filter", "geometry", "transform", "correlate"]

TYPES = ["16sc", "32sc", "32fc", "24u", "16u", "16s", "32u", "32s", "32f", "64s", "64f", "8u", "8s", "1u"]
CHANNELS = {"C1": 1, "C2": 2, "C3": 3, "C4": 4, "AC4": 4, "C3C": 3, "C4C": 4, "P2": 2, "P3": 3, "P4": 4, "AP4": 4, "AC1": 2, "A0C4": 4}
COLOURS = {**CHANNELS, "AC4": 3, "A0C4": 3, "C3C": 1, "C4C": 1}
# C types of the arguments that do not depend on the sample type.
PLAIN = {"size": "ZetiSize ", "point": "ZetiPoint ", "scale": "int ", "int": "int ", "float": "Zet32f ", "int_out": "int *", "memory": "void *",
         "seed": "Zet32u *",
         "round_mode": "ZetRoundMode ", "cmp_op": "ZetCmpOp ", "hint": "ZetHintAlgorithm ", "alpha_type": "ZetAlphaType "}
BY_VALUE = {"C1", "C3C", "C4C"}
# One by itself on C1, else an array of one per colour channel: {L} is the type of levels, {D} that of the destination.
PER_CHANNEL = {"bound": "{L} ", "number": "int ", "bins": "Zet32s *", "levels": "const {L} *", "levels_out": "{L} *", "table": "const {D} *"}
SAMPLES_24U = {"Zet24u": ("Zet8u", "Zet32u")}  # in an image; in a table
RESULTS = {"values_out": "", "doubles_out": "Zet64f", "indices_out": "Zet32s"}  # one per colour channel; "": of the sample type


def split_types(token):
    """'8u32f' -> ['8u', '32f']."""
    parts = re.findall("|".join(TYPES), token)
    assert "".join(parts) == token, f"unknown type token {token}"
    return parts


def split_layout(token):
    """'C3P3' -> ('C3', 'P3'); 'AC4' -> ('AC4', 'AC4')."""
    if token in CHANNELS:
        return token, token
    parts = re.fullmatch(r"(A?[CP]\d)(A?0?[CP]\d)", token)
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
    destination_type, entry_type = SAMPLES_24U.get(destination_type, (destination_type, destination_type))

    def image(type_, side, const):
        if side.lstrip("A").startswith("P"):
            return f"{const}{type_} *const {name}[{CHANNELS[side]}]"
        return f"{const}{type_} *{name}"

    if kind == "source":
        declaration = image(source_type, source, "const ")
    elif kind in ("destination", "both"):
        declaration = image(destination_type, destination, "")
    elif kind in PER_CHANNEL:
        one = PER_CHANNEL[kind].format(L="Zet32f" if types[0] == "32f" else "Zet32s", D=entry_type)
        const = "*const " if one.endswith("*") else ""
        declaration = f"{one}{name}" if destination in BY_VALUE else f"{one.rstrip('*') or one}{const}{name}[{COLOURS[destination]}]"
        if not const and destination not in BY_VALUE:
            declaration = "const " + declaration
    elif kind == "counts_out":
        declaration = f"Zet32s *{name}" if destination in BY_VALUE else f"Zet32s {name}[{COLOURS[destination]}]"
    elif ":" in kind:
        kind, _, what = kind.partition(":")
        what = what.format(T=types[-1])
        declaration = {"state": f"{what} *{name}", "state_read": f"const {what} *{name}", "state_out": f"{what} **{name}",
                       "values_out": f"{destination_type} {name}[{what}]"}[kind]
    elif kind in ("mask", "bits"):
        declaration = f"const Zet8u *{name}"
    elif kind == "mask_out":
        declaration = f"Zet8u *{name}"
    elif kind in ("value", "count"):
        by_value = destination in BY_VALUE
        value_type = "Zet32u" if kind == "count" else destination_type
        declaration = f"{value_type} {name}" if by_value else f"const {value_type} {name}[{COLOURS[destination]}]"
        kind += "" if by_value else "s"
    elif kind in RESULTS:
        result = RESULTS[kind] or destination_type
        declaration = f"{result} *{name}" if destination in BY_VALUE else f"{result} {name}[{COLOURS[destination]}]"
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
                    yield _member(family, group, shapes, type_token, layout, suffix)


def _member(family, group, shapes, type_token, layout, suffix):
    types = tuple(split_types(type_token)) if type_token else ()
    form = suffix.removesuffix("Sfs")
    shape = shapes[group.get("arguments", family.arguments)]
    if isinstance(shape, dict):
        shape = next(shape[key] for key in (layout + form, form, type_token) if key in shape)
    texts = list(shape)
    if suffix.endswith("Sfs"):
        texts.append("scale scaleFactor")
    arguments = tuple(a for text in texts for a in _declare(text, types, layout))
    name = "_".join(part for part in ("zeti" + family.operation, type_token, layout + suffix) if part)
    template = group.get("template", family.template)
    template = template[form] if isinstance(template, dict) else template
    filled = [f"Zet{t}" for t in types] + ([layout] if layout else [])
    if filled:
        head, _, tail = template.rstrip(">").partition("<")
        template = f"{head}<{', '.join(([tail] if tail else []) + filled)}>"
    result = family.returns.format(T=f"Zet{types[0]}" if types else "void") if family.returns else "ZetStatus"
    return Member(family, name, types, layout, suffix, result, arguments, template)


def _files():
    """The lists of the folders, in order; those of a folder in several files are FOLDER.toml and FOLDER_PART.toml."""
    paths = sorted((ROOT / "api").glob("*.toml"))
    return [(folder, path) for folder in FOLDERS for path in paths if path.stem.split("_")[0] == folder]


def load():
    """-> (list of families, list of members, shared notes), all in list order."""
    families, members, notes = [], [], {}
    sets, shapes = {}, {}
    for folder, path in _files():
        data = tomllib.loads(path.read_text())
        sets.update(data.get("members", {}))
        shapes.update(data.get("arguments", {}))
        notes.update(data.get("notes", {}))
        for entry in data.get("family", []):
            operations = entry.pop("operations", None) or {entry["operation"]: {}}
            for operation, own in operations.items():
                family = Family(folder, operation, {**entry, **own})
                chosen = family.members or []
                families.append(family)
                members.extend(_expand(family, sets[chosen] if isinstance(chosen, str) else chosen, shapes))
    names = [m.name for m in members]
    assert len(set(names)) == len(names), "a name is listed twice"
    return families, members, notes
