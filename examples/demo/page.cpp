// SPDX-License-Identifier: Apache-2.0
// The page: one file without scripts, fonts or anything else from outside, but for the pictures beside it.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "gallery.h"

namespace demo {

namespace {

constexpr const char *style = R"(
:root { color-scheme: light dark; --paper: #f6f5f2; --card: #fff; --ink: #22252a; --faint: #666c75; --line: #dedcd6; --accent: #8a4b16;
  --code: #f3f1ec; --check: #d9d9d9; }
@media (prefers-color-scheme: dark) { :root { --paper: #16181b; --card: #1f2226; --ink: #e6e4df; --faint: #9aa0a8; --line: #33373d;
  --accent: #e0a06a; --code: #17191c; --check: #3a3d42; } }
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 4rem; }
body { margin: 0; background: var(--paper); color: var(--ink); 
  font: 16px/1.55 system-ui, -apple-system, "Segoe UI", Roboto, "Liberation Sans", sans-serif; }
header, main, footer { max-width: 1480px; margin: 0 auto; padding: 0 1.5rem; }
header { padding-top: 2.5rem; padding-bottom: 1rem; }
h1 { margin: 0 0 .25rem; font-size: 2.1rem; line-height: 1.2; letter-spacing: -.02em; }
header p { margin: .25rem 0; color: var(--faint); max-width: 62rem; }
nav { position: sticky; top: 0; z-index: 1; background: var(--paper); border-bottom: 1px solid var(--line); }
nav div { max-width: 1480px; margin: 0 auto; padding: .55rem 1.5rem; display: flex; gap: .3rem; overflow-x: auto; }
nav a { padding: .15rem .65rem; border-radius: 1rem; color: var(--ink); text-decoration: none; font-size: .92rem; white-space: nowrap; }
nav a:hover { background: var(--card); color: var(--accent); }
section { padding: 2rem 0 .5rem; }
h2 { margin: 0; font-size: 1.5rem; letter-spacing: -.01em; }
h2 + p { margin: .1rem 0 1rem; color: var(--faint); }
.shots { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(100%, 34rem), 1fr)); gap: 1.25rem; }
article { background: var(--card); border: 1px solid var(--line); border-radius: .6rem; padding: 1.1rem 1.2rem 1rem; min-width: 0; }
h3 { margin: 0; font-size: 1.08rem; }
article > p { margin: .15rem 0 .8rem; color: var(--faint); font-size: .94rem; }
.figures { display: flex; flex-wrap: wrap; gap: .6rem; align-items: start; }
figure { margin: 0; flex: 1 1 6.5rem; min-width: 0; max-width: 34rem; }
figure a { display: block; line-height: 0; border-radius: .35rem; overflow: hidden; outline: 1px solid var(--line); }
figure.after a { outline: 2px solid var(--accent); }
figure img { width: 100%; height: auto; }
.transparent img { background: repeating-conic-gradient(var(--check) 0 25%, transparent 0 50%) 0 0 / 1.4rem 1.4rem; }
figcaption { font-size: .8rem; color: var(--faint); padding-top: .3rem; overflow-wrap: anywhere; }
figcaption b { font-weight: 600; color: var(--ink); }
figure.after figcaption b { color: var(--accent); }
pre { margin: .85rem 0 0; padding: .65rem .8rem; background: var(--code); border-radius: .35rem; overflow-x: auto; white-space: pre-wrap;
  font: .82rem/1.5 ui-monospace, "SFMono-Regular", Menlo, Consolas, "DejaVu Sans Mono", monospace; }
pre .speed { display: block; color: var(--faint); }
pre .speed b { color: var(--accent); font-weight: 600; }
@media (min-width: 72rem) { /* two columns: a shot that is left over takes both, its text beside its pictures */
  article:last-child:nth-child(odd) { grid-column: 1 / -1; display: grid; column-gap: 1.5rem;
    grid-template: "figures ." auto "figures ." auto "figures ." 1fr / fit-content(60%) minmax(24rem, 1fr); }
  article:last-child:nth-child(odd) .figures { grid-area: figures; }
  article:last-child:nth-child(odd) pre { align-self: start; margin-top: 0; }
}
footer { padding: 2rem 1.5rem 3rem; color: var(--faint); font-size: .9rem; }
)";

std::string escaped(const std::string &text) {
    std::string out;
    for (const char c : text) {
        if (c == '&') out += "&amp;";
        else if (c == '<') out += "&lt;";
        else if (c == '>') out += "&gt;";
        else if (c == '"') out += "&quot;";
        else out += c;
    }
    return out;
}

std::string number(double value, const char *unit) {
    char text[64];
    std::snprintf(text, sizeof text, value < 10 ? "%.2f %s" : value < 100 ? "%.1f %s" : "%.0f %s", value, unit);
    return text;
}

std::string time_of(double seconds) {
    return seconds < 1e-6 ? number(seconds * 1e9, "ns") : seconds < 1e-3 ? number(seconds * 1e6, "µs") : number(seconds * 1e3, "ms");
}

std::string figure(const Figure &f, bool after) {
    return std::string("<figure class=\"") + (after ? "after" : "before") + (f.transparent ? " transparent" : "") + "\"><a href=\"" +
           f.file + "\"><img loading=\"lazy\" src=\"" + f.file + "\" width=\"" + std::to_string(f.size.width) + "\" height=\"" +
           std::to_string(f.size.height) + "\" alt=\"" + escaped(f.caption) + "\"></a><figcaption><b>" + (after ? "after" : "before") +
           "</b> " + escaped(f.caption) + "</figcaption></figure>\n";
}

std::string call(const Call &c, ZetiSize region) {
    std::string text = escaped(c.text) + ";\n<span class=\"speed\">/* ";
    if (c.times > 1) text += std::to_string(c.times) + " times; each ";
    const double megapixels = 1e-6 * region.width * region.height;
    text += "<b>" + (c.status.empty() ? "" : number(megapixels / c.seconds, "MP/s") + "</b>, ") + time_of(c.seconds) +
            (c.status.empty() ? "</b>" : "");
    if (!c.status.empty()) text += ", " + c.status;
    return text + " */</span>";
}

std::string article(const Item &item) {
    std::string text = "<article><h3>" + escaped(item.title) + "</h3>\n<p>" + escaped(item.note) + "</p>\n<div class=\"figures\">\n";
    for (const Figure &f : item.before) text += figure(f, false);
    for (const Figure &f : item.after) text += figure(f, true);
    text += "</div>\n<pre>";
    for (const std::string &d : item.declarations) text += escaped(d) + "\n";
    for (const Call &c : item.calls) text += call(c, item.region);
    return text + "</pre></article>\n";
}

// What a speed means nothing without.
std::string machine() {
    std::string name = "unknown processor";
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.starts_with("model name")) {
            name = line.substr(line.find(':') + 2);
            break;
        }
    name += ", " + std::to_string(std::thread::hardware_concurrency()) + " processors";
    for (const char *setting : {"OMP_NUM_THREADS", "OMP_WAIT_POLICY"})
        if (const char *const value = std::getenv(setting))
            name += std::string(", ") + setting + "=" + value; // NOLINT: one thread runs here
    return name;
}

} // namespace

std::string page_of(const std::vector<Section> &sections) {
    const ZetLibraryVersion *const version = zetiGetLibVersion();
    std::string text = "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>zeti: gallery</title>\n<style>";
    text += style;
    text += "</style></head>\n<body>\n<header><h1>zeti: gallery</h1>\n<p>Every family of the library, run on photographs through the "
            "public C interface. "
            "Each picture stands beside the calls that made it, as they were compiled, with the median speed of repeated calls in "
            "megapixels per "
            "second.</p>\n<p>";
    text += escaped(std::string(version->Name) + ", " + version->Version + ". " + machine()) + ".</p></header>\n<nav><div>";
    for (const Section &s : sections) text += "<a href=\"#" + s.operation + "\">" + s.operation + "</a>";
    text += "</div></nav>\n<main>\n";
    for (const Section &s : sections) {
        text +=
            "<section id=\"" + s.operation + "\"><h2>" + s.operation + "</h2>\n<p>" + escaped(s.brief) + "</p>\n<div class=\"shots\">\n";
        for (const Item &item : s.items) text += article(item);
        text += "</div></section>\n";
    }
    return text + "</main>\n<footer>A picture opens in its own size when clicked.</footer>\n</body></html>\n";
}

} // namespace demo
