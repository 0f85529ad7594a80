#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# install.sh GROUP ...: the Debian packages of these groups, as far as they are missing.
# shellcheck disable=SC2086
# (Unquoted lists are meant to be split into words.)
set -euo pipefail

declare -A groups=(
    [build]="cmake ninja-build gcc g++ binutils python3"
    [test]="g++-multilib googletest pkg-config"
    [demo]="libpng-dev libjpeg-dev googletest"
    [bench]="libbenchmark-dev googletest"
    [lint]="clang-tidy cppcheck libomp-dev googletest libpng-dev libjpeg-dev libbenchmark-dev"
    [format]="clang-format git"
    [docs]="python3 python3-markdown"
)

if ! command -v dpkg-query >/dev/null; then
    echo "This is not Debian; taken as installed: $*" >&2
    exit
fi

wanted=$(for group; do printf '%s\n' ${groups[$group]}; done | sort -u)
present=$(dpkg-query --show --showformat '${db:Status-Abbrev} ${Package}\n' $wanted 2>/dev/null | sed -n 's/^ii  *//p' | sort -u || true)
missing=$(comm -23 <(echo "$wanted") <(echo "$present"))
[[ -n $missing ]] || exit 0

as_root=
[[ $EUID -eq 0 ]] || as_root=sudo
echo "Installing" $missing
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -qq </dev/null
$as_root apt-get install -y -qq --no-install-recommends $missing </dev/null
