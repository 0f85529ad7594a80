#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# lint.sh BUILD: clang-tidy and cppcheck over everything in the compile database of that folder. Fails on any finding.
set -euo pipefail

build=$1
root=$PWD
ours="core|signal|arith|move|stats|filter|geometry|transform|correlate|services|tests|bench|examples"
status=0

# The generated bindings are read too: they are what fills in the templates of the headers.
run-clang-tidy -quiet -p "$build" -header-filter="^$root/($ours)/" "^$root/.*\.(c|cpp)$" 2>&1 |
    sed '/^clang-tidy/d; /warnings\? generated\.$/d' || status=1

# Suppressed: what this cppcheck cannot parse of C++20, and its mistakes about templates.
cppcheck --project="$build/compile_commands.json" --quiet --error-exitcode=1 --inline-suppr --enable=warning,performance \
    --suppress='*:/usr/*' --suppress=internalAstError --suppress=legacyUninitvar || status=1

exit $status
