#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes everything that follows from the list of members.

  generate.py header FILE            the declarations of the public header
  generate.py build DIR --variant V  entry list, bindings, version script, test table, list of names
  generate.py reference DIR          the reference manual as Markdown

Files are rewritten only when their content changes, so that a build follows real changes only.
"""
import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
import model  # noqa: E402

LICENCE = "SPDX-License-Identifier: Apache-2.0"
MADE = "Made by api/generate.py from the lists in api/; do not edit."


def write(path, text):
    path = Path(path)
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def of(members, family):
    return [m for m in members if m.family is family]


def header(families, members):
    lines = [f"/* {LICENCE} */", f"/* {MADE} */", "#ifndef ZETI_FUNCTIONS_H", "#define ZETI_FUNCTIONS_H", "",
             '#include "status.h"', '#include "types.h"', "",
             "#ifdef __cplusplus", 'extern "C" {', "#endif"]
    for family in families:
        formula = f": {family.formula}" if family.formula else ""
        lines += ["", f"/* {family.operation}. {family.brief}{formula}. */"]
        lines += [f"ZETI_API {m.declaration()};" for m in of(members, family)]
    lines += ["", "#ifdef __cplusplus", "}", "#endif", "", "#endif", ""]
    return "\n".join(lines)


def bindings(family, members, variant):
    lines = [f"// {LICENCE}", f"// {MADE}", f'#include "{family.header}"', "", "using namespace zeti;", ""]
    for m in members:
        arguments = ", ".join(a.name for a in m.arguments)
        lines += [f'extern "C" {m.declaration(variant + "_")} {{', f"    return {m.call}({arguments});", "}"]
    return "\n".join(lines) + "\n"


def version_script(members):
    names = "".join(f"        {m.name};\n" for m in sorted(members, key=lambda m: m.name))
    return f"ZETI_7 {{\n    global:\n{names}    local:\n        *;\n}};\n"


def build(families, members, out, variant):
    ordered = sorted(m.name for m in members)
    write(out / "entries.inc", "".join(f"ENTRY {name}\n" for name in ordered))
    write(out / "zeti.map", version_script(members))
    write(out / "names.txt", "".join(f"{name}\n" for name in ordered))
    write(out / "members.inc", "".join(f"ZETI_MEMBER({name})\n" for name in ordered))
    for family in families:
        write(out / f"{family.folder}_{family.operation}.cpp", bindings(family, of(members, family), variant))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=["header", "build", "sources", "reference"])
    parser.add_argument("out", type=Path, nargs="?")
    parser.add_argument("--variant", default="w7")
    options = parser.parse_args()
    families, members, notes = model.load()
    if options.what == "header":
        write(options.out, header(families, members))
    elif options.what == "build":
        build(families, members, options.out, options.variant)
    elif options.what == "sources":  # what `build` will write, for the build system
        print(";".join(f"{f.folder}_{f.operation}.cpp" for f in families), end="")
    else:
        import reference
        reference.write_pages(families, members, notes, options.out, write)


if __name__ == "__main__":
    main()
