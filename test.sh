#!/bin/sh
# Installs what is missing, builds and runs all tests.
set -eu
cd "$(dirname -- "$(readlink -f -- "$0")")"
./setup.sh test
TMPDIR=$(demo/scratch_place)
export TMPDIR
cmake -S . -B build -DCNATOOL_TESTS=REQUIRED > /dev/null
cmake --build build -j "$(nproc)"
ctest --test-dir build --output-on-failure -j "$(nproc)" "$@"
