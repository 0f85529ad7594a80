# SPDX-License-Identifier: Apache-2.0
"""The reference manual as Markdown: one page per operation, an index by folder, and the table of statuses."""
import re

from model import BY_VALUE, COLOURS, PER_CHANNEL, RESULTS, ROOT, split_layout

FOLDERS = {
    "core": "Library and image memory",
    "arith": "Element-wise operations",
    "move": "Pixel movement and conversion",
    "stats": "Statistics",
    "filter": "Neighbourhood filters",
    "geometry": "Geometry",
    "transform": "Frequency transforms",
    "correlate": "Correlation and convolution",
}

LAYOUTS = {
    "C1": "one channel",
    "C2": "two interleaved channels",
    "C3": "three interleaved channels",
    "C4": "four interleaved channels, all processed",
    "AC4": "four interleaved channels, the fourth alpha: neither read into the result nor changed, but by composition under alpha",
    "C3C": "one channel of a three-channel image: the pointer addresses it (written `C3CR`)",
    "C4C": "one channel of a four-channel image: the pointer addresses it (written `C4CR`)",
    "P2": "two separate planes", "P3": "three separate planes", "P4": "four separate planes",
    "AP4": "four separate planes, the fourth alpha",
    "A0C4": "four interleaved channels, the first alpha, which stays as it is",
    "AC1": "pixels of one colour sample and its alpha, for composition",
}

SUFFIXES = {
    "I": "in place: the destination is also a source, `pSrcDst`",
    "M": "only pixels whose mask byte is not zero are written",
    "R": "works on a region, `roiSize`",
    "s": "negative values become 0 in an unsigned type",
    "Sfs": "the result is scaled by 2 to the power of minus `scaleFactor`, rounded and saturated",
}

MADE = "<!-- Made by api/generate.py from the lists in api/; do not edit. -->"


def table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return ["| " + " | ".join(cell.replace("|", "\\|") for cell in line) + " |" for line in lines]


def unique(items):
    return list(dict.fromkeys(items))


def statuses():
    """name -> (value, meaning), from the header."""
    header = (ROOT / "include/zeti/status.h").read_text()
    return {name: (int(value), meaning) for name, value, meaning in re.findall(r"(\w+) = (-?\d+),? +/\* (.*?) \*/", header)}


def link(status):
    return f"[`{status}`](Statuses.md#{status.lower()})"


# --- What a group of members has in common ---------------------------------------------------------------------------

# Kinds whose type does not follow the sample type; those of the type of levels.
FIXED = ("seed", "mask", "mask_out", "bits", "count", "float", "bins", "number", "counts_out", "doubles_out", "indices_out")
OF_LEVELS = ("bound", "levels", "levels_out")


def general(text, member, kind=""):
    """A declaration with T for the sample type (S and D where source and destination differ) and n for a count."""
    if kind in OF_LEVELS:
        text = re.sub(r"\bZet32[sf]\b", "ZetV", text)
    follows = kind not in FIXED and kind not in OF_LEVELS and not (member.types[-1:] == ("24u",) and kind in ("destination", "table"))
    for letter, token in zip("T" if len(member.types) == 1 else "SD", member.types):
        text = text if not follows else re.sub(rf"\bZet{token}\b", f"Zet{letter}", text)
    return re.sub(r"\[[1-4]\]", "[n]", text)


def shapes(members):
    """The argument shapes: (suffix, result, parameters) -> their members."""
    found = {}
    for m in members:
        parameters = tuple(general(a.declaration, m, a.kind) for a in m.arguments)
        found.setdefault((m.suffix, general(m.result, m), parameters or ("void",)), []).append(m)
    return found


def declaration(shape, members, family):
    """`family`: all members; types are told where another shape has the same name but for its type."""
    suffix, result, parameters = shape
    types, layouts = unique(m.types for m in members), unique(m.layout for m in members)
    letters = "" if types == [()] else "T" if len(types[0]) == 1 else "SD"
    layout = layouts[0] if len(layouts) == 1 else "L"
    name = "_".join(part for part in ("zeti" + members[0].family.operation, letters, layout + suffix) if part)
    head = f"{result}{'' if result.endswith('*') else ' '}{name}("
    text = head + ", ".join(parameters) + ");"
    if len(text) > 110:  # one argument a line, steps with their images
        text = head + "\n    " + re.sub(r", (?!int \w+Step\b)", ",\n    ", ", ".join(parameters)) + ");"
    alike = {m.types for m in family if m.suffix == suffix and m.layout in layouts}
    told = [f"{letters}: {', '.join(''.join(t) for t in types)}"] if letters and len(types) < len(alike) else []
    told += [f"L: {', '.join(layouts)}"] if len(layouts) > 1 else []
    return (f"/* {'; '.join(told)} */\n" if told else "") + text


def matrix(members):
    types, layouts = unique(m.types for m in members), unique(m.layout for m in members)
    cells = {}
    for m in members:
        cells.setdefault((m.types, m.layout), []).append(f"`{m.suffix}`" if m.suffix else "yes")
    rows = [[f"`{''.join(t)}`", *(" ".join(cells.get((t, layout), [])) for layout in layouts)] for t in types]
    return table(["", *layouts], rows)


# --- Arguments -------------------------------------------------------------------------------------------------------

KINDS = {  # kind -> what it is, unit, range
    "source": ("source image, at the first pixel of the region", "samples", "not null"),
    "destination": ("destination image, at the first pixel of the region", "samples", "not null"),
    "both": ("image that is source and destination, at the first pixel of the region", "samples", "not null"),
    "mask": ("mask image, at the first pixel of the region; a byte that is not zero selects its pixel", "bytes", "not null"),
    "bits": ("source image of packed bits, at the byte from which the offset counts; the most significant bit first", "bytes", "not null"),
    "mask_out": ("mask image that is written, at the first pixel of the region", "bytes", "not null"),
    "value": ("the constant", "sample", "any"),
    "values": ("the constants, one for each colour channel", "samples", "not null"),
    "sample": ("the constant alpha", "sample", "any"),
    "hint": ("speed or accuracy: 2 takes the accurate path, any other value the fast one", "", "any"),
    "alpha_type": ("the operator, one of those below", "", "as checked"),
    "count": ("the count", "bits", "any"),
    "counts": ("the counts, one for each colour channel", "bits", "not null"),
    "seed": ("the state of the generator: any number at first, then what the last call left", "", "not null"),
    "order": ("the source channel of each destination channel", "", "as checked"),
    "value_out": ("receives the result", "sample", "not null"),
    "values_out": ("receives the result of each colour channel", "samples", "not null"),
    "doubles_out": ("receives the result of each colour channel", "", "not null"),
    "indices_out": ("receives the position of each colour channel's result", "pixels from the region's origin", "not null"),
    "cmp_op": ("the operator: `zetCmpLess`, `zetCmpLessEq`, `zetCmpEq`, `zetCmpGreaterEq`, `zetCmpGreater`", "", "any"),
    "point": ("the point", "pixels", "any"),
    "size": ("the region", "pixels", "width and height at least 1"),
    "scale": ("the result is multiplied by 2 to the power of minus this", "", "any"),
    "round_mode": ("how a quotient becomes an integer", "", "`zetRndZero`, `zetRndNear`, `zetRndFinancial`"),
}


def explanation(family, argument, layouts, previous):
    what, unit, range_ = KINDS.get(argument.kind, ("", "", "any"))
    if argument.kind == "source" and argument.name[-1] in "12":
        what = {"1": "first ", "2": "second "}[argument.name[-1]] + what
    if argument.kind == "step":
        what, unit, range_ = f"from one row of `{previous}` to the next", "bytes", family.steps or "any"
    if argument.kind in ("source", "destination", "both") and all("P" in side_of(layout, argument) for layout in layouts):
        what, range_ = "array of the planes, each at the first pixel of the region", "the array and every plane not null"
    told = (family.describe or {}).get(argument.name, what)
    return [told, unit, range_] if isinstance(told, str) else told


def side_of(layout, argument):
    source, destination = split_layout(layout) if layout else ("C1", "C1")
    return source if argument.kind == "source" else destination


def ordered_names(members):
    """All argument names, an order that no member contradicts."""
    order = []
    for m in members:
        names = [a.name for a in m.arguments]
        for i, name in enumerate(names):
            if name not in order:
                later = [order.index(n) for n in names[i:] if n in order]
                order.insert(min(later, default=len(order)), name)
    return order


def arguments(family, members):
    """A row per argument and form of its declaration."""
    forms = {}
    for m in members:
        previous = ""
        for a in m.arguments:
            forms.setdefault((a.name, general(a.declaration, m, a.kind)), (a, previous, []))[2].append(m.layout)
            if a.kind != "step":
                previous = a.name
    rows = []
    for name in ordered_names(members):
        own = [(text, *rest) for (key, text), rest in forms.items() if key == name]
        for text, argument, previous, layouts in own:
            what, unit, range_ = explanation(family, argument, layouts, previous)
            if len(own) > 1:
                listed = unique(layouts)
                what += f" ({', '.join(listed) if len(listed) <= 4 else 'the other layouts'})"
            rows.append([f"`{text}`", what, unit, range_])
    return table(["argument", "what it is", "unit", "range"], rows)


def legend(members):
    """What the letters of the declarations stand for."""
    types = unique(m.types for m in members)
    if types == [()]:
        return []
    letters = "`T` is a sample type" if len(types[0]) == 1 else "`S` and `D` are the sample types of source and destination"
    lines = [f"{letters}, `L` a layout; the table shows which suffixes exist for each pair. Read `ZetT` as `Zet8u` for `8u`."]
    colours = {}
    for m in members:
        if any(a.kind in ("values", "counts", "order", *RESULTS, *PER_CHANNEL) for a in m.arguments) and m.layout not in {"", *BY_VALUE}:
            colours.setdefault(COLOURS[split_layout(m.layout)[1]], []).append(m.layout)
    parts = [f"{n} on {' and '.join(unique(layouts))}" for n, layouts in colours.items()]
    if any(a.kind in OF_LEVELS for m in members for a in m.arguments):
        lines.append("`ZetV` is `Zet32f` on 32f, else `Zet32s`.")
    if any("*const" in a.declaration and a.kind in ("source", "destination") for m in members for a in m.arguments):
        parts.append("the number of planes")
    return lines + [f"`n` is {', '.join(parts)}."] if parts else lines


# --- Pages -----------------------------------------------------------------------------------------------------------

def section(title, lines):
    return ["", f"## {title}", "", *lines] if lines else []


def page(family, members, notes, known):
    lines = [MADE, f"# {family.operation}", "", f"{family.brief}."]
    if family.formula:
        lines += ["", f"    {family.formula}", *(["", f"By {family.author}."] if family.author else [])]
    declared = "\n\n".join(declaration(shape, group, members) for shape, group in shapes(members).items())
    lines += section("Declarations", ["```c", declared, "```", *(["", *legend(members)] if legend(members) else [])])
    if members[0].types:
        lines += section("Types and layouts", matrix(members))
    if any(m.arguments for m in members):
        lines += section("Arguments", arguments(family, members))
    for title, names in (family.notes or {}).items():
        texts = [notes[name].strip() for name in ([names] if isinstance(names, str) else names)]
        lines += section(title, ["\n\n".join(texts)])
    if not family.returns:
        rows = [[link(name), str(known[name][0]), known[name][1] + (f": {when}" if when else "")]
                for name, when in {"zetStsNoErr": "", **(family.statuses or {})}.items()]
        lines += section("Statuses", table(["status", "value", "meaning"], rows))
    lines += section("Notes", family.text.strip().split("\n") if family.text else [])
    return "\n".join(lines) + "\n"


def index(families, members):
    lines = [MADE, "# Reference", "", f"{len(members)} functions in {len(families)} operations. Statuses: [Statuses](Statuses.md)."]
    for folder, title in FOLDERS.items():
        own = [f for f in families if f.folder == folder]
        if own:
            rows = [[f"[{f.operation}]({f.operation}.md)", f.brief, f"`{f.formula}`" if f.formula else "",
                     str(sum(m.family is f for m in members))] for f in own]
            lines += section(title, table(["operation", "what it does", "formula", "functions"], rows))
    layouts = unique(part for m in members if m.layout for part in split_layout(m.layout))
    lines += section("Names", [
        "A name is `zeti`, the operation, the sample type, the layout and a suffix: `zetiAdd_8u_C3IRSfs`. Two layouts run together are "
        "those of source and destination: `C3P3`.", "",
        *table(["layout", "meaning"], [[f"`{k}`", v] for k, v in LAYOUTS.items() if k in layouts]), "",
        *table(["suffix", "meaning"], [[f"`{k}`", v] for k, v in SUFFIXES.items()])])
    lines += section("Images", [
        "An image argument is a pointer to the first pixel of the region and a step: the bytes from the start of one row to the start of "
        "the next. Nothing is assumed about the alignment of either, and no function knows more of the image than the region. The caller "
        "owns all memory; no pointer is kept beyond a call.", "",
        "The checks of a call come in the order that its page gives; the first that fails decides the status, and the destination is left "
        "as it was. A positive status is a warning: the result is complete. All functions may be called from several threads at once on "
        "disjoint destinations."])
    return "\n".join(lines) + "\n"


def status_page(families, known):
    users = {name: [f for f in families if name in (f.statuses or {})] for name in known}
    rows = []
    for name, (value, meaning) in known.items():
        whose = "all" if value == 0 else ", ".join(f"[{f.operation}]({f.operation}.md)" for f in users[name])
        rows.append([f'<a id="{name.lower()}"></a>`{name}`', str(value), meaning, whose])
    return "\n".join([MADE, "# Statuses", "",
                      "Negative values are errors: the destination is as it was. Positive values are warnings: the result is complete.", "",
                      *table(["status", "value", "meaning", "returned by"], rows)]) + "\n"


def write_pages(families, members, notes, out, write):
    known = statuses()
    for family in families:
        own = [m for m in members if m.family is family]
        write(out / f"{family.operation}.md", page(family, own, notes, known))
    write(out / "index.md", index(families, members))
    write(out / "Statuses.md", status_page(families, known))
