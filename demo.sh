#!/bin/sh
# Installs what is missing, builds, and runs both jobs of the tool on the sample server, which
# is laid out in a temporary directory.
set -eu
cd "$(dirname -- "$(readlink -f -- "$0")")"
./setup.sh build
place=$(demo/scratch_place)
echo "Building the tool in $PWD/build; the first time takes up to a minute ..."
cmake -S . -B build > /dev/null
cmake --build build -j "$(nproc)" --target cnatool cnatool-sandbox cnatool-audit > /dev/null

top=$PWD
server=$(mktemp -d "$place/cnatool-demo.XXXXXX")
trap 'rm -rf "$server"' EXIT
trap 'exit 1' HUP INT TERM
cp -R "$top/demo/server/." "$server"
mkdir -p "$server/opt/emulex/ocmanager/bin"
cp -R "$top/demo/hbacmd" "$top/demo/answers" "$server/opt/emulex/ocmanager/bin"
cp "$top/build/cnatool-sandbox" "$server/cnatool"
cp "$top/build/cnatool-audit" "$server"
cd "$server"
unset TMPDIR

say() {
    printf '\n=== %s\n' "$*"
}

name_of() {
    ./cnatool --show-return-codes | awk -v status="$1" '$2 == status { print $1 }'
}

# run STATUS ARGUMENTS...: shows a run, and ends the demo when it does not end with STATUS.
run() {
    wanted=$1
    shift
    printf '\n$ ./cnatool'
    printf ' %s' "$@"
    printf '\n'
    status=0
    # The shell below the tool reports the port without a serial number, whose output file would
    # lie in a directory "n"; the tool itself skips that port aloud.
    ./cnatool "$@" 2> shell_messages || status=$?
    printf '=> exit status %d, %s\n' "$status" "$(name_of "$status")"
    if [ "$status" -ne "$wanted" ]; then
        echo "expected: $wanted" >&2
        cat shell_messages >&2
        exit 1
    fi
}

c1=F1A0:4201:F1A0:0011
c2=F1A0:4201:F2B0:0012
c3=F1A0:8402:F1A0:0021
c4=F1A0:8402:F2B0:0022
trace=nx4200/FWtrace.out
faults=opt/emulex/ocmanager/bin/answers/faults.txt

say "A controller whose storage is allowed"
run 0 -pci-id "$c1"
say "One whose storage is not"
run 4 -pci-id "$c4"
say "Two controllers that see different storage"
run 2 -v 2 -pci-id "$c1,$c3" --ctrl-vendor-wide-identical
say "One controller that sees different storage on its ports"
run 1 -v 2 -pci-id "$c2" --ctrl-wide-identical
say "A controller that is not installed"
run 12 -pci-id F1A0:2101

say "The first one once more, with the table and the inventory"
run 0 -v 4 -pci-id "$c1"

say "What a flash would do: everything is looked up, nothing is run"
run 0 --simulate --flash -pci-id "$c1"
[ ! -e "$trace" ]
say "The flash itself"
run 0 --flash -pci-id "$c1"
printf '\n$ cat %s\n' "$trace"
cat "$trace"
say "Checked first: storage that is not allowed keeps the flash from running"
run 4 --flash --check-for-valid-subsystem -pci-id "$c1,$c4"
say "A flash that fails"
echo 'download 02-00-5E-10-02-00 exit 3' > "$faults"
run 10 --flash -pci-id "$c2"
: > "$faults"
say "An image that is missing"
run 20 --flash -pci-id "$c4"

# audit STATUS ARGUMENTS...: the same for an audit.
audit() {
    wanted=$1
    shift
    printf '\n$ ./cnatool-audit'
    [ $# -eq 0 ] || printf ' %s' "$@"
    printf '\n'
    status=0
    ./cnatool-audit "$@" || status=$?
    printf '=> exit status %d\n' "$status"
    [ "$status" -eq "$wanted" ] || { echo "expected: $wanted" >&2; exit 1; }
}

say "What there is to select, and what the table says that may not be meant"
audit 1
say "What an answer about two controllers rests on, and what a flash would send"
audit 1 --flash -pci-id "$c1,$c4"

printf '\nAll runs ended as expected.\n'
