#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# lint.sh BUILD: clang-tidy and cppcheck over everything in the compile database of that folder. Fails on any finding.
set -euo pipefail

build=$1
root=$PWD
ours="core|signal|arith|move|stats|filter|geometry|transform|correlate|services|tests|bench|examples"
status=0

tidy() {
    run-clang-tidy -quiet -p "$build" -header-filter="^$root/($ours)/" "$@" 2>&1 |
        sed '/^clang-tidy/d; /warnings\? generated\.$/d; /^Suppressed /d; /^Use -header-filter/d' || status=1
}
# The analyser of paths reads what stands by itself. Over the generated bindings, which are what fills in the templates of the headers, it takes
# twenty times as long as everything else, and the sanitizers run the same paths; in the tests and the benchmark it misreads other
# people's macros.
tidy "^$root/(core|services|examples)/.*\.(c|cpp)$"
tidy -checks='-clang-analyzer-*' "^$root/((tests|bench)/.*|$build/generated/.*)\.(c|cpp)$"

# Suppressed: what this cppcheck cannot parse of C++20, its mistakes about templates, and that views of images are passed by value.
cppcheck --project="$build/compile_commands.json" -j "$(nproc)" --quiet --error-exitcode=1 --inline-suppr --enable=warning,performance \
    --suppress='*:/usr/*' --suppress=internalAstError --suppress=syntaxError --suppress=legacyUninitvar --suppress=passedByValue || status=1

exit $status
