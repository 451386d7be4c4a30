#!/bin/sh
# Installs what is missing, builds and runs all tests; a test that is skipped is a failure.
set -eu
cd "$(dirname -- "$(readlink -f -- "$0")")"
./setup.sh test
TMPDIR=$(demo/scratch_place)
export TMPDIR
cmake -S . -B build -DCNATOOL_TESTS=REQUIRED > /dev/null
cmake --build build -j "$(nproc)"
tests/run_all.sh build "$@"
