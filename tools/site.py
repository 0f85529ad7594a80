#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The documentation as a small static site:  site.py [DIR_IN [DIR_OUT]]   (docs and build/docs if not given)

Every DIR_IN/*.md and DIR_IN/reference/*.md becomes a page; each carries the navigation, none needs anything from elsewhere.
Needs Debian's python3-markdown.
"""
import html
import re
import sys
from pathlib import Path

try:
    import markdown
except ImportError:  # a python3 that is not Debian's own may still read its packages
    sys.path.append("/usr/lib/python3/dist-packages")
    try:
        import markdown
    except ImportError:
        sys.exit("site.py: the package python3-markdown is missing")

STYLE = """
:root { color-scheme: light dark; --paper: #fff; --side: #f6f5f2; --ink: #22252a; --faint: #666c75; --line: #dedcd6; --accent: #8a4b16;
  --code: #f3f1ec; }
@media (prefers-color-scheme: dark) { :root { --paper: #16181b; --side: #1c1f22; --ink: #e6e4df; --faint: #9aa0a8; --line: #33373d;
  --accent: #e0a06a; --code: #22262a; } }
* { box-sizing: border-box; }
body { margin: 0; display: grid; grid-template-columns: 15rem minmax(0, 1fr); background: var(--paper); color: var(--ink);
  font: 16px/1.6 system-ui, -apple-system, "Segoe UI", Roboto, "Liberation Sans", sans-serif; }
nav { background: var(--side); border-right: 1px solid var(--line); padding: 1.2rem 1rem 2rem; font-size: .93rem; height: 100vh;
  position: sticky; top: 0; overflow-y: auto; }
nav h2 { margin: 1.2rem 0 .3rem; font-size: .78rem; letter-spacing: .06em; text-transform: uppercase; color: var(--faint); }
nav ul { list-style: none; margin: 0; padding: 0; }
nav a { display: block; padding: .1rem .5rem; border-radius: .3rem; color: var(--ink); text-decoration: none; }
nav a:hover, nav a[aria-current] { background: var(--code); color: var(--accent); }
main { padding: 1.5rem 2.5rem 4rem; max-width: 66rem; }
h1 { margin: .2rem 0 .6rem; font-size: 1.9rem; letter-spacing: -.02em; }
main h2 { margin: 2rem 0 .5rem; font-size: 1.3rem; }
main h3 { margin: 1.4rem 0 .4rem; font-size: 1.08rem; }
a { color: var(--accent); }
code { font: .86em/1.5 ui-monospace, "SFMono-Regular", Menlo, Consolas, "DejaVu Sans Mono", monospace; background: var(--code);
  padding: .1em .3em; border-radius: .25rem; }
pre { background: var(--code); padding: .8rem 1rem; border-radius: .4rem; overflow-x: auto; }
pre code { padding: 0; background: none; }
.table { overflow-x: auto; margin: 1rem 0; }
table { border-collapse: collapse; font-size: .93rem; }
td:first-child code { white-space: nowrap; }
th, td { text-align: left; vertical-align: top; padding: .3rem .7rem; border-bottom: 1px solid var(--line); }
@media (max-width: 48rem) { body { display: block; } nav { height: auto; position: static; border-right: 0; border-bottom: 1px solid
  var(--line); } main { padding: 1rem 1.2rem 3rem; } }
"""


def title(text):
    return re.search(r"^# (.+)$", text, re.MULTILINE)[1]


def reference_groups(index):
    """(heading, [page names]) in the order of the reference's own index."""
    for heading, body in re.findall(r"^## ([^\n]+)\n(.*?)(?=^## |\Z)", index, re.MULTILINE | re.DOTALL):
        if names := re.findall(r"^\| \[\w+\]\((\w+)\.md\)", body, re.MULTILINE):
            yield heading, names


def navigation(pages, here):
    """The list of all pages as seen from `here`."""
    up = "../" * here.count("/")

    def item(name, text):
        current = ' aria-current="page"' if name == here else ""
        return f'<li><a href="{up}{name}.html"{current}>{html.escape(text)}</a></li>'

    guides = sorted((n for n in pages if "/" not in n), key=lambda n: (n != "index", n))
    groups = [("Guides", [(n, title(pages[n])) for n in guides])]
    if "reference/index" in pages:
        groups.append(("Reference", [("reference/index", "All operations"), ("reference/Statuses", "Statuses")]))
        groups += [(heading, [(f"reference/{n}", n) for n in names]) for heading, names in reference_groups(pages["reference/index"])]
    return "\n".join(f"<h2>{html.escape(heading)}</h2>\n<ul>{''.join(item(*i) for i in items)}</ul>" for heading, items in groups)


def page(pages, here):
    body = markdown.markdown(pages[here], extensions=["tables", "fenced_code", "toc", "sane_lists"])
    body = re.sub(r'href="(?!\w+:)([^"#]+)\.md(#[^"]*)?"', lambda m: f'href="{m[1]}.html{m[2] or ""}"', body)
    body = body.replace("<table>", '<div class="table"><table>').replace("</table>", "</table></div>")
    return (f'<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8">\n'
            f'<meta name="viewport" content="width=device-width, initial-scale=1">\n'
            f"<title>{html.escape(title(pages[here]))}: zeti</title>\n<style>{STYLE}</style></head>\n"
            f"<body><nav>{navigation(pages, here)}</nav>\n<main>\n{body}\n</main></body></html>\n")


def broken_links(out):
    for file in sorted(out.rglob("*.html")):
        text = file.read_text()
        for target, anchor in re.findall(r'href="(?!\w+:)([^"#]*)(?:#([^"]*))?"', text):
            to = (file.parent / target).resolve() if target else file
            if not to.exists():
                yield f"{file}: {target} does not exist"
            elif anchor and f'id="{anchor}"' not in to.read_text():
                yield f"{file}: {target} has no #{anchor}"


def main():
    source, out = (Path(p) for p in (sys.argv[1:] + ["docs", "build/docs"][len(sys.argv) - 1:]))
    pages = {file.relative_to(source).with_suffix("").as_posix(): file.read_text()
             for pattern in ("*.md", "reference/*.md") for file in sorted(source.glob(pattern))}
    for name in pages:
        target = out / f"{name}.html"
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(page(pages, name))
    if bad := list(broken_links(out)):
        sys.exit("\n".join(bad))
    print(f"{out / 'index.html'}: {len(pages)} pages")


if __name__ == "__main__":
    main()
