#!/bin/sh
# Installs what is missing, builds, and runs check, audit and flash on the sample server, which is
# set up in a temporary directory.
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

# run STATUS ARGUMENTS...: shows a run, which must end with STATUS
run() {
    wanted=$1
    shift
    printf '\n$ ./cnatool'
    [ $# -eq 0 ] || printf ' %s' "$@"
    printf '\n'
    status=0
    # The shell complains about the port without a serial number, as it cannot write into a directory
    # "n". The tool itself says that it skips this port.
    ./cnatool "$@" 2> shell_messages || status=$?
    printf '=> exit status %d, %s\n' "$status" "$(name_of "$status")"
    if [ "$status" -ne "$wanted" ]; then
        echo "expected: $wanted" >&2
        cat shell_messages >&2
        exit 1
    fi
}

# audit STATUS ARGUMENTS...: the same for an audit
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

c1=F1A0:4201:F1A0:0011
c2=F1A0:4201:F2B0:0012
c3=F1A0:8402:F1A0:0021
c4=F1A0:8402:F2B0:0022
trace=nx4200/FWtrace.out
faults=opt/emulex/ocmanager/bin/answers/faults.txt

say "What there is to select: a run without a selection, and an audit"
run 12
audit 0

say "A check of a controller whose storage is allowed"
run 0 -pci-id "$c1"
say "One whose storage is not"
run 4 -pci-id "$c4"
say "Two controllers that see different storage"
run 2 -v 2 -pci-id "$c1,$c3" --ctrl-vendor-wide-identical
say "One controller that sees different storage on its ports"
run 1 -v 2 -pci-id "$c2" --ctrl-wide-identical
say "A controller that is not installed"
run 12 -pci-id F1A0:2101

say "The first one once more, with the table and the ports"
run 0 -v 4 -pci-id "$c1"

say "The safe way to flash. Step 1: a check"
run 0 -pci-id "$c1"
say "Step 2: an audit of what the check saw, and of what a flash would send"
audit 0 --flash -pci-id "$c1"
[ ! -e "$trace" ]
say "Step 3, since both gave 0: the flash with its check"
run 0 --flash --check-for-valid-subsystem -pci-id "$c1"
printf '\n$ cat %s\n' "$trace"
cat "$trace"

say "Why step 2: the management tool fails for one port. The check passes all the same ..."
echo 'targetmapping 10:00:02:00:5e:10:01:02 cut 0 exit 1' > "$faults"
run 0 -pci-id "$c1"
say "... and the audit finds the empty answer: no flash"
audit 1 --flash -pci-id "$c1"
: > "$faults"

say "Why step 3 checks again: storage that is not allowed keeps both controllers from being flashed"
run 4 --flash --check-for-valid-subsystem -pci-id "$c1,$c4"
say "A dry run: everything is looked up, and nothing is sent"
run 0 --simulate --flash -pci-id "$c1"
say "A flash that fails"
echo 'download 02-00-5E-10-02-00 exit 3' > "$faults"
run 10 --flash -pci-id "$c2"
: > "$faults"
say "An image that is missing: the audit finds it before, the flash ends with it"
audit 1 --flash -pci-id "$c4"
run 20 --flash -pci-id "$c4"

printf '\nAll runs ended as expected.\n'
