#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the benchmark, prints a table beside its yardstick and writes the figures to bench.json in the build folder.

A row's ratio is its bytes per second (reads plus writes) over those of its yardstick on as many bytes: memcpy; for an operation that
reads no image (marked w) memcpy that writes as many; for one that writes none (marked r) a loop that only reads. The two are measured by turns, in
several passes over all rows; the figures are of the fastest tenth of the turns in the best pass, and beside them stands the median.
"""

import argparse
import json
import pathlib
import re
import statistics
import subprocess
import sys

# What is to be reached on one thread: operations, sizes, least ratio to the yardstick. The first line that fits counts.
SIZES = "/(256x256|1920x1080|4096x4096)"
TARGETS = [
    ("scaled in cache", r"(Add|Sub|AddC|SubC|MulC|Mul)_.*/scale=[1-9]/256x256", 0.4),
    ("Mul in cache", r"Mul_.*/256x256", 0.4),
    ("streaming", r"(Add|Sub|AddC|MulC|Copy|Set)_(8u|16s|32f)_C[134]I?R(Sfs/scale=[01])?/4096x4096", 0.9),
    ("in cache", r"(Add|Sub|AddC|MulC|Copy|Set)_(8u|16s|32f)_C[134]I?R(Sfs/scale=0)?/256x256", 0.7),
    ("Div 32f", "Div_32f_.*" + SIZES, 0.3),
    ("Convert streaming", r"Convert_(8u(16[us]|32[sf])|(16[us]|32[sf])8u)_C[134]R.*/4096x4096", 0.9),
    ("Convert in cache", r"Convert_(8u(16[us]|32[sf])|(16[us]|32[sf])8u)_C[134]R.*/256x256", 0.7),
    ("planes and swaps", r"(SwapChannels_8u_C3I?R|Copy_8u_(C3P3|P3C3)R)/(256x256|4096x4096)", 0.5),
    ("Mirror streaming", r"Mirror_.*/4096x4096", 0.9),
    ("Mirror in cache", r"Mirror_.*/256x256", 0.7),
    ("Transpose", r"Transpose_(8u_C1|16s_C1|32f_C1|.*_C4)R/4096x4096", 0.4),
    ("borders", r"Copy(Const|Replicate|Wrap)Border_.*/(256x256|4096x4096)", 0.9),
    ("reading one channel", r"(Sum|Mean|Max|Min|MinMax|Norm(Diff)?_(Inf|L1|L2))_(8u|16s|32f)_C1R/4096x4096", 0.9),
    ("reading several", r"(Sum|Mean|Max|Min|MinMax|Norm(Diff)?_(Inf|L1|L2))_(8u|16s|32f)_A?C[34]R/4096x4096", 0.6),
    ("logic, thresholds, comparisons, Abs streaming", r"(And|Or|Xor|Not|Complement|LShift|RShift|Threshold|Compare|Abs).*/4096x4096", 0.9),
    ("logic, thresholds, comparisons, Abs in cache", r"(And|Or|Xor|Not|Complement|LShift|RShift|Threshold|Compare|Abs).*/256x256", 0.7),
]


# Rows ".../ours..." stand beside rows ".../by somebody...": least ratio of the speeds.
BESIDE = [(r"(AlphaComp|AlphaPremul|MulScale)_", 1), (r"(Ln|Exp)_", 4)]


def beside(rows):
    """Our row, the other one, how much faster ours is, and the target."""
    for other in rows:
        if match := re.search(r"/(by [^/]*)", other["name"]):
            ours = next((r for r in rows if r["name"] == other["name"].replace(match[1], "ours")), None)
            held = (least for pattern, least in BESIDE if re.match(pattern, other["name"]))
            least = next(held, None) if other["size"] != "8x8" else None # that is the cost of the call
            if ours:
                yield ours["name"], match[1][3:], other["ns_per_call"] / ours["ns_per_call"], least


def target_of(name):
    return next((least for _, pattern, least in TARGETS if re.fullmatch(pattern, name)), None)


def machine():
    model = re.search(r"model name\s*:\s*(.*)", pathlib.Path("/proc/cpuinfo").read_text())
    return model.group(1) if model else "unknown processor"


def figures(run):
    """The rows of a run of the benchmark, one for all passes."""
    passes = {}
    for row in run["benchmarks"]:
        if row["run_type"] == "iteration":
            passes.setdefault(row["name"].removesuffix("/iterations:1/manual_time"), []).append(row)
    for name, rows in sorted(passes.items(), key=lambda item: item[1][0]["order"]):
        operation, size = name.rsplit("/", 1)
        nanoseconds, yardstick = (min(row[key] for row in rows) for key in ("real_time", "yardstick_ns"))
        yield {
            "name": name,
            "operation": operation,
            "size": size,
            "ns_per_call": nanoseconds,
            "megapixels_per_second": rows[0]["pixels"] / nanoseconds * 1e3,
            "gigabytes_per_second": rows[0]["bytes"] / nanoseconds,
            "yardstick": "memcpy" if rows[0]["reads"] and rows[0]["writes"] else "write" if rows[0]["writes"] else "read",
            "yardstick_gigabytes_per_second": rows[0]["bytes"] / yardstick,
            "ratio": yardstick / nanoseconds,
            "median_ratio": statistics.median(row["median_ratio"] for row in rows),
            "target": target_of(name),
        }


def misses(row):
    return row["target"] is not None and round(row["ratio"], 2) < row["target"]


def print_table(rows):
    print(f"{'operation':<34}{'size':>10}{'ns/call':>12}{'Mpx/s':>9}{'GB/s':>8}{'yard':>7} {'ratio':>7}{'median':>8}")
    for row in rows:
        print(f"{row['operation']:<34}{row['size']:>10}{row['ns_per_call']:>12.0f}{row['megapixels_per_second']:>9.0f}"
              f"{row['gigabytes_per_second']:>8.2f}{row['yardstick_gigabytes_per_second']:>7.2f}{' ' if row['yardstick'] == 'memcpy' else row['yardstick'][0]}{row['ratio']:>7.2f}"
              f"{row['median_ratio']:>8.2f}{'  below ' + str(row['target']) if misses(row) else ''}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", type=pathlib.Path, help="zeti_bench")
    parser.add_argument("filter", nargs="?", default=".", help="regular expression on name/scale/size, for example Add_8u.*/256x256")
    parser.add_argument("--threads", type=int, default=1)
    parser.add_argument("--passes", type=int, default=3)
    parser.add_argument("--targets", action="store_true", help="list the targets and stop")
    parser.add_argument("--json", type=pathlib.Path, help="default: bench.json in the build folder")
    options = parser.parse_args()

    if options.targets:
        for what, pattern, least in TARGETS:
            print(f"{least:.1f} of the yardstick  {what:<48}{pattern}")
        for pattern, least in BESIDE:
            print(f"{least} times as fast as the row beside it  {pattern}")
        return 0

    command = [options.program, f"--threads={options.threads}", f"--benchmark_filter={options.filter}", "--benchmark_format=json",
               f"--benchmark_repetitions={options.passes}", "--benchmark_enable_random_interleaving=true"]
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if done.returncode != 0 or not done.stdout:
        return f"{options.program} failed, or no row fits {options.filter}"
    run = json.loads(done.stdout)
    rows = list(figures(run))
    context = run["context"]
    head = {
        "machine": f"{machine()}, {context['num_cpus']} processors, load {context['load_avg'][0]:.1f} at the start",
        "caches": ", ".join(f"L{c['level']} {c['type']} {c['size'] // 1024} KiB" for c in context["caches"]),
        "compiler": context["compiler"],
        "flags": context["flags"].strip(),
        "threads": int(context["threads"]),
        "date": context["date"],
    }
    for key, value in head.items():
        print(f"{key + ':':<10}{value}")
    print()
    print_table(rows)
    for name, other, factor, least in beside(rows):
        print(f"{name}: {factor:.2f} times as fast as {other}{f', below {least}' if least and round(factor, 2) < least else ''}")
    missed = sum(misses(row) for row in rows)
    held = sum(row["target"] is not None for row in rows) - missed
    print(f"\n{len(rows)} rows; of those with a target {held} reach it, {missed} do not")

    output = options.json or options.program.resolve().parents[2] / "bench.json"
    output.write_text(json.dumps({"head": head, "rows": rows}, indent=1) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
