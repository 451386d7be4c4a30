#!/bin/sh
# Prints what runs of the tool cost, as ratios to the commands beside them.
#
#   bench/run.sh [--strict] [BUILD_DIR]
#
# BUILD_DIR (build) holds a Release build of cnatool-sandbox. The tool writes to /dev/null at the
# default level; cat writes to a pipe that is read to its end. All files are in /dev/shm if there is
# room and programs may run there, or else in TMPDIR, and are removed at the end.
#
# Exit status: 0; 1 if something failed or, with --strict, if a goal is missed.
set -eu

rounds=11
selection=F1A0:4201:F1A0:0011

strict=
if [ "${1-}" = --strict ]; then
    strict=yes
    shift
fi
here=$(cd "$(dirname -- "$0")" && pwd)
demo=$here/../demo
if ! build=$(cd "${1:-$here/../build}" && pwd) || ! [ -x "$build/cnatool-sandbox" ]; then
    echo "$0: no cnatool-sandbox in ${1:-build}; build it first" >&2
    exit 1
fi
if ! grep -q '^CMAKE_BUILD_TYPE:[^=]*=\(Release\)\{0,1\}$' "$build/CMakeCache.txt"; then
    echo "$0: $build is no Release build: the numbers say little" >&2
fi

# 150 MB of files, and programs among them.
is_good_place() {
    [ -d "$1" ] && [ -w "$1" ] &&
        [ "$(df -Pk "$1" | awk 'NR == 2 { print $4 }')" -gt 300000 ] &&
        ! findmnt -n -o OPTIONS -T "$1" 2> /dev/null | grep -q noexec
}

place=${TMPDIR:-/tmp}
if is_good_place /dev/shm; then
    place=/dev/shm
fi
work=$(mktemp -d "$place/cnatool-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
unset TMPDIR

# lay_out NAME PORTS ORDER LAYOUT: a directory with the tool, its table, the stand-in for the
# management tool, and what that prints.
lay_out() {
    bin=$work/$1/opt/emulex/ocmanager/bin
    mkdir -p "$bin/answers/hbaattributes" "$bin/answers/targetmapping"
    cp "$demo/hbacmd" "$bin"
    cp "$build/cnatool-sandbox" "$work/$1/cnatool"
    cp "$demo/server/FC_HBA_Conditions.txt" "$work/$1"
    cd "$work/$1"
    [ "$4" = files ] || cd "$bin/answers"
    awk -v ports="$2" -v order="$3" -v layout="$4" -v sample="$demo/answers" -f "$here/ports.awk"
}

# run NAME MEASURE-ARGUMENTS...: in the current directory.
run() {
    name=$1
    shift
    line=$("$work/measure" "$@")
    echo "$name $line" >> "$work/results"
}

check() {
    cd "$work/check"
    run check null ./cnatool -pci-id "$selection"
}

bare() {
    cd "$work/check"
    run bare null "$work/bare_commands" "$work/commands"
}

# The cost of a start before anything is read, beside the start of a shell.
start() {
    cd "$work/check"
    run start null ./cnatool --version
    run shell null /bin/sh -c :
}

# The same check with the files that it left, so that only the tool's own work remains.
own_work() {
    cd "$work/check"
    run own null ./cnatool --simulate -pci-id "$selection"
}

simulate() {
    cd "$work/$1"
    run "$1" null ./cnatool --simulate -pci-id "$selection"
}

read_files() {
    cd "$work/usual$1"
    run "cat$1" pipe cat -- *.out
}

count_lines() {
    cd "$work/usual$1"
    run "wc$1" null wc -l -- *.out
}

for program in measure bare_commands; do
    "${CXX:-c++}" -std=c++20 -O2 -o "$work/$program" "$here/$program.cpp"
done
lay_out check 64 fcoe answers
for ports in 250 1000 4000; do
    lay_out "usual$ports" "$ports" usual files
done
for order in alternating scattered one-port one-serial; do
    lay_out "$order" 4000 "$order" files
done

cd "$work/check"
./cnatool -v 6 -pci-id "$selection" | sed -n 's/^[[:blank:]]*\(\.\/opt.* > .*\)/\1/p' \
    > "$work/commands"
if [ "$(wc -l < "$work/commands")" -ne 129 ]; then
    echo "$0: a check of 64 ports does not run 129 commands" >&2
    exit 1
fi

round=0
while [ "$round" -lt "$rounds" ]; do
    round=$((round + 1))
    [ ! -t 2 ] || printf '\rround %d of %d ' "$round" "$rounds" >&2
    # In turn, so that neither always comes second. The ratio is close to 1 and its goal is
    # narrow: it needs more runs than the others.
    for _ in 1 2; do
        check
        bare
        own_work
        own_work
        bare
        check
    done
    for _ in 1 2 3 4 5 6 7 8 9 10; do
        start
    done
    for ports in 250 1000 4000; do
        simulate "usual$ports"
        read_files "$ports"
    done
    count_lines 1000
    for order in alternating scattered one-port one-serial; do
        simulate "$order"
    done
done
[ ! -t 2 ] || printf '\r%20s\r' '' >&2

echo "Medians over $rounds runs ($((4 * rounds)) in the first two rows, $((10 * rounds)) in the third),"
echo "files in $place"
echo
missed=0
awk -f "$here/table.awk" "$work/results" || missed=$?
[ "$missed" -eq 0 ] || { [ "$missed" -eq 1 ] && [ -z "$strict" ]; }
