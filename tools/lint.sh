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
tidy "^$root/($ours)/.*\.(c|cpp)$"
# The generated bindings are read too: they are what fills in the templates of the headers. Not by the analyser of paths, which takes
# twenty times as long over as many copies of the same code; the sanitizers run it.
tidy -checks='-clang-analyzer-*' "^$root/$build/generated/.*\.cpp$"

# Suppressed: what this cppcheck cannot parse of C++20, and its mistakes about templates.
cppcheck --project="$build/compile_commands.json" -j "$(nproc)" --quiet --error-exitcode=1 --inline-suppr --enable=warning,performance \
    --suppress='*:/usr/*' --suppress=internalAstError --suppress=legacyUninitvar || status=1

exit $status
