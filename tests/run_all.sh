#!/bin/sh
# run_all.sh BUILD_DIR [ARGUMENT OF CTEST]...: runs the tests, and says behind them how many were
# skipped. What did not run has shown nothing, so a skip ends it with 1, unless its reason contains
# the text that MAY_SKIP holds: MAY_SKIP='not installed' lets pass what this machine lacks. Some
# tests wait more than they work, so there are two more at a time than processors.
set -u
build=$1
shift
results=$build/Testing/results.xml
rm -f "$results"
status=0
ctest --test-dir "$build" --output-on-failure --no-tests=error --test-output-size-passed 4096 \
    -j $(($(nproc) + 2)) --output-junit Testing/results.xml "$@" || status=$?
[ -e "$results" ] || exit "$status" # only listed

awk -F '"' -v may_skip="${MAY_SKIP-}" '
    /<testcase / { ++count; name = $2; out = 0; reason = "" }
    /<(skipped|disabled)/ { out = 1; reason = $2 }
    out && /not installed:|no right|^needs / { sub(/.*<system-out>/, ""); reason = $0 }
    /<\/testcase>/ && out {
        ++skipped
        if (may_skip == "" || !index(reason, may_skip)) bad = bad "\n  " name ": " reason
    }
    END {
        if (count) printf "\nSkipped: %d of %d tests.\n", skipped, count
        if (bad != "") print "These have shown nothing, so this is a failure:" bad
        exit bad != ""
    }' "$results" || status=1
exit "$status"
