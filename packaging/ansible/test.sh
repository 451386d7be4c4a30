#!/bin/sh
# Tries both playbooks on this machine: each host of the inventory is a copy of the sample
# server in a directory of its own.
#   test.sh BUILD_DIRECTORY
set -eu
here=$(cd "$(dirname -- "$0")" && pwd)
tool=$(cd "${1:?usage: $0 BUILD_DIRECTORY}" && pwd)/cnatool-sandbox
demo=$here/../../demo

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' HUP INT TERM
cd "$scratch"

# No setting of the caller plays a part, and nothing is written outside the directory.
for name in $(env | sed -n 's/^\(ANSIBLE_[A-Z0-9_]*\)=.*/\1/p'); do
    unset "$name"
done
: > ansible.cfg
export LC_ALL=C.UTF-8 HOME="$scratch" PWD="$scratch"
export ANSIBLE_CONFIG="$scratch/ansible.cfg" ANSIBLE_HOME="$scratch/home"
export ANSIBLE_LOCAL_TEMP="$scratch/home/local" ANSIBLE_REMOTE_TEMP="$scratch/home/remote"
export ANSIBLE_ASYNC_DIR="$scratch/home/async"
export ANSIBLE_NOCOLOR=1 ANSIBLE_LOCALHOST_WARNING=false

fail() {
    echo "FAILED: $1" >&2
    [ ! -e log ] || cat log >&2
    exit 1
}

# play STATUS ARGUMENTS...: runs a playbook, which is to end with STATUS. Its text goes to log.
play() {
    wanted=$1
    shift
    status=0
    rm -f servers/*/opt/emulex/ocmanager/bin/calls.log
    ansible-playbook -i inventory.yml "$@" > log 2>&1 || status=$?
    [ "$status" -eq "$wanted" ] || fail "status $status in place of $wanted: $*"
}

says() {
    grep -qF -e "$1" log || fail "it does not say: $1"
}

untouched() {
    [ ! -e "servers/$1/opt/emulex/ocmanager/bin/calls.log" ] || fail "$1 was touched"
}

# flashed HOST NUMBER: a server that was asked, and flashed NUMBER times.
flashed() {
    count=$(grep -c '^download ' "servers/$1/opt/emulex/ocmanager/bin/calls.log") || true
    [ "$count" = "$2" ] || fail "$1: '$count' flash commands in place of $2"
}

kept() {
    for file in "cnatool-results/$1"/$2; do
        [ -s "$file" ] || fail "not kept: $file"
    done
}

# server HOST PATTERN: a server that has the ports whose blocks in the list fit the pattern.
server() {
    bin=servers/$1/opt/emulex/ocmanager/bin
    mkdir -p "$bin"
    cp -R "$demo/server/." "servers/$1"
    cp -R "$demo/hbacmd" "$demo/answers" "$bin"
    cp "$tool" "servers/$1/cnatool"
    awk -v pattern="$2" 'BEGIN { RS = ""; ORS = "\n\n" } $0 ~ pattern' \
        "$demo/answers/listhbas.txt" > "$bin/answers/listhbas.txt"
}

server good 'NV4200A1001\nPort Number *: 0'
server failing 'NV4200A1001\nPort Number *: 0'
server third 'NV4200A1001\nPort Number *: 0'
server forbidden 'NV8400B2002\nPort Number *: 0'
server differing NV4200A1002
echo 'download * exit 3' > servers/failing/opt/emulex/ocmanager/bin/answers/faults.txt

cat > inventory.yml << 'END'
cnatool:
  hosts:
    good:
    failing:
    forbidden: {cnatool_selection: "F1A0:8402:F2B0:0022"}
    differing: {cnatool_selection: "F1A0:4201:F2B0:0012", cnatool_options: [--ctrl-wide-identical]}
    bare:
    away: {ansible_connection: ssh, ansible_host: 127.0.0.1, ansible_port: 1}
    third:
  vars:
    ansible_connection: local
    ansible_python_interpreter: /usr/bin/python3
    ansible_ssh_common_args: -F /dev/null
    cnatool_selection: "F1A0:4201:F1A0:0011"
    cnatool_path: "{{ lookup('ansible.builtin.env', 'HOME') }}/servers/{{ inventory_hostname }}/cnatool"
    cnatool_poll: 1
END

# A server without the tool must not pass for status 2, the number of the error "no such file".
play 2 --limit good,failing,forbidden,bare,away "$here/check.yml"
says '"good: 0 RET_OK"'
says '"failing: 0 RET_OK"'
says '"forbidden: 4 RET_INVALID_CTRL_SUBSYSTEM_COMBINATION"'
says '"bare: no status: Unable to change directory'
says '"away: unreachable"'
kept forbidden 'check-*/check.txt'
flashed good 0

play 0 --limit forbidden -e '{"cnatool_accepted": [0, 4]}' "$here/check.yml"
says '"forbidden: 4 RET_INVALID_CTRL_SUBSYSTEM_COMBINATION"'

play 2 --limit good,failing,third "$here/flash.yml"
says 'The flash failed: 10 RET_FLASH_ERROR. The roll-out stops here. Still to be flashed: third.'
flashed good 2
flashed failing 1
untouched third
for host in good failing; do
    kept "$host" 'flash-*/check.txt'
    kept "$host" 'flash-*/local_hba_list.out'
    kept "$host" 'flash-*/NV4200A1001_2_hba_attributes.out'
    kept "$host" 'flash-*/NV4200A1001_2_target_mapping.out'
done
kept good 'flash-*/nx4200/FWtrace.out'
grep -q '^Exit status: 10 RET_FLASH_ERROR$' cnatool-results/failing/flash-*/flash.txt ||
    fail 'the status of the failed flash is not kept'

# One batch: nobody in it is flashed where one check fails, also for storage that differs.
play 2 --limit good,forbidden,differing,third -e cnatool_batch=3 "$here/flash.yml"
says 'the check says 4 RET_INVALID_CTRL_SUBSYSTEM_COMBINATION.'
says 'the check says 1 RET_NOT_CTRL_WIDE_IDENTICAL.'
flashed good 0
flashed forbidden 0
flashed differing 0
untouched third

play 0 --check --limit good "$here/flash.yml"
says 'flash commands simulated: 2.'
flashed good 0

play 2 --limit good,third -e cnatool_selection= "$here/flash.yml"
says 'cnatool_selection is empty'
untouched good

play 2 --limit good -e '{"cnatool_options": ["--flash"]}' "$here/check.yml"
says 'cnatool_options is to be a list of words out of'
untouched good
