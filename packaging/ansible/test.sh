#!/bin/sh
# test.sh BUILD_DIRECTORY - tries the playbooks on this machine: each host of the inventory is a
# copy of the sample server in a directory of its own.
set -eu
here=$(cd "$(dirname -- "$0")" && pwd)
build=$(cd "${1:?usage: $0 BUILD_DIRECTORY}" && pwd)
demo=$here/../../demo
scratch=$(mktemp -d)
trap 'wait; rm -rf "$scratch"' EXIT
trap 'exit 1' HUP INT TERM
cd "$scratch"
: > ansible.cfg

fail() { cat "${2-/dev/null}" && printf 'FAILED: %s\n' "$1" && exit 1; } >&2

# play FAILING FLASHED PLAYBOOK TEXT...: these hosts fail and no other; so many flash commands
# reach each server, a list of HOST=NUMBER, with no number where it is not asked at all; and each
# TEXT is said or stands in the summary. No setting of the caller plays a part, and all is written
# below the directory.
play() {
    failing=$1 flashed=$2 playbook=$3 log=$(mktemp -p .) status=0 place=$here
    shift 3
    for pair in $flashed; do rm -f "servers/${pair%=*}/$bin/calls.log"; done
    [ ! -e "${playbook%% *}" ] || place=.
    # shellcheck disable=SC2086  # the playbook and its arguments
    env -i PATH="$PATH" HOME="$scratch" PWD="$scratch" TMPDIR="$scratch" LC_ALL=C.UTF-8 ANSIBLE_NOCOLOR=1 \
        PYTHONDONTWRITEBYTECODE=1 ANSIBLE_ROLES_PATH="$here/roles" ANSIBLE_PIPELINING=1 \
        ANSIBLE_REMOTE_TEMP="$scratch/tmp" ANSIBLE_ASYNC_DIR="$scratch/async" \
        ansible-playbook -i inventory.yml "$place"/$playbook < /dev/null > "$log" 2>&1 || status=$?
    found=$(sed -n 's/^fatal: \[\([a-z]*\).*/\1/p' "$log" | sort -u | xargs)
    [ "$status $found" = "${failing:+2} $failing" ] || [ "$status$failing$found" = 0 ] ||
        fail "status $status, failing hosts '$found': $playbook" "$log"
    kept=$(sed -n 's#.*"See \(.*\)/summary.html"#\1#p' "$log" | tail -n 1)
    [ -z "$kept" ] || cat "$kept/summary.csv" >> "$log"
    for text; do grep -qF -e "$text" "$log" || fail "$playbook does not say: $text" "$log"; done
    for pair in $flashed; do
        count=$(grep -c '^download ' "servers/${pair%=*}/$bin/calls.log" 2> /dev/null) || true
        [ "$count" = "${pair#*=}" ] || fail "$playbook: $pair expected, not $count" "$log"
    done
}

# server HOST PORTS FAULT: it has the ports whose blocks in the list fit the pattern.
bin=opt/emulex/ocmanager/bin
server() {
    mkdir -p "servers/$1/$bin"
    cp -R "$demo/server/." "$build/cnatool-audit" "servers/$1"
    cp -R "$demo/hbacmd" "$demo/answers" "servers/$1/$bin"
    cp "$build/cnatool-sandbox" "servers/$1/cnatool"
    echo "$3" > "servers/$1/$bin/answers/faults.txt"
    awk -v pattern="$2" 'BEGIN { RS = ""; ORS = "\n\n" } $0 ~ pattern' \
        "$demo/answers/listhbas.txt" > "servers/$1/$bin/answers/listhbas.txt"
}
for host in good misnamed told hostile third; do server $host 'NV4200A1001\nPort Number *: 0' ''; done
server failing 'NV4200A1001\nPort Number *: 0' 'download * exit 3'
server slow NV4200A1001 'listhbas * sleep 9'
server forbidden 'NV8400B2002\nPort Number *: 0' ''
server differing NV4200A1002 'download * sleep 20'
rm servers/failing/cnatool-audit
sed -i 's/^Norvik/Norvig/' servers/misnamed/FC_HBA_Conditions.txt servers/told/FC_HBA_Conditions.txt
echo '# of this site' | cat servers/third/FC_HBA_Conditions.txt - > table
mkdir images outside
mv servers/third/nx4200 images
# A server that answers what it likes: paths that lead out, variables of the role, a template.
: > outside/FWtrace.out
ln -s "$scratch/outside" servers/hostile/link
sed -i "s/Arctis 400/Arctis {{7*7}}/" servers/hostile/$bin/answers/targetmapping/*
cat > hostile_python << END
#!/bin/sh
up='{"path": "$scratch/servers/hostile/../../outside/FWtrace.out"}, {"path": "$scratch/outside/FWtrace.out"}'
newline='{"path": "$scratch/servers/hostile/a\\\\nb/FWtrace.out"}'
/usr/bin/python3 "\$@" | sed -e 's#^{#{"ansible_facts": {"cnatool_results": "$scratch/outside"}, #' \\
    -e "s#\"files\": \[#&\$up, \$newline, #"
END
chmod +x hostile_python
cat > inventory.yml << END
cnatool:
  hosts: {good: , misnamed: , told: {cnatool_accepted_findings: [names-differ]},
    hostile: {ansible_python_interpreter: $scratch/hostile_python},
    failing: {cnatool_accepted_findings: [no-audit]}, bare: , slow: {cnatool_check_timeout: 1},
    forbidden: {cnatool_selection: "F1A0:8402:F2B0:0022", cnatool_accepted: [0, 4],
      cnatool_accepted_findings: ["image-missing@FC_HBA_Conditions.txt:29"]},
    differing: {cnatool_selection: "F1A0:4201:F2B0:0012", cnatool_timeout: 1},
    away: {ansible_connection: ssh, ansible_host: 127.0.0.1, ansible_port: 1},
    third: {cnatool_table: $scratch/table, cnatool_images: $scratch/images}}
  vars:
    ansible_connection: local
    ansible_python_interpreter: /usr/bin/python3
    cnatool_selection: "F1A0:4201:F1A0:0011"
    cnatool_path: "$scratch/servers/{{ inventory_hostname }}/cnatool"
    cnatool_poll: 1
END

# The time for this flash is over long before its download.
play differing differing=1 'flash.yml --limit differing' \
    'The flash failed: no status: its end was not seen' 'Still to be flashed: none.' &
hanging=$!
# All that is wrong with the variables is said before a server is asked.
play good good= 'check.yml --limit good -e cnatool_selection=F1A0:4201,zz
    -e {"cnatool_accepted_findings":["no-such"],"cnatool_refused_findings":["critical"]}' \
    'cnatool_selection is to be' 'cnatool_accepted_findings is to be' 'cnatool_refused_findings is to be'
play good good= 'check.yml --limit good -e {"cnatool_options":["--flash"]}' 'no match for: --flash'
# A server without the tool must not pass for status 2, the number of the error "no such file".
play 'away bare misnamed slow' 'good=0 slow=0' \
    'check.yml --limit !differing,!third,!hostile -e cnatool_audit_flash=true' \
    '"CRITICAL: 1, UNKNOWN: 3, OK: 4"' '"slow","UNKNOWN","","","no status: ended after 1 s"' \
    '"misnamed","CRITICAL","0","RET_OK","names-differ FC_HBA_Conditions.txt:25: ' \
    '"bare","UNKNOWN","","","no status: Unable to change directory' '"away","UNKNOWN","","","unreachable"' \
    '"good","OK","0","RET_OK","A flash would send NV4200A1001: firmware 4.1.9 to nx4200-4.2.18.grp' \
    '"told","OK","0","RET_OK","A flash' '"failing","OK","0","RET_OK","controllers: 0' \
    '"forbidden","OK","4","RET_INVALID_CTRL_SUBSYSTEM_COMBINATION","NV8400B2002 2/0: SOLVEIG Vinter'
play failing 'hostile=2 told=2 failing=1 forbidden=' 'flash.yml --limit told,hostile,failing,forbidden' \
    'findings: none, flash commands carried out: 2. Sent NV4200A1001: firmware 4.' 'flashed: forbidden.' \
    'The flash failed: 10 RET_FLASH_ERROR: the flash has failed' '"forbidden","UNKNOWN","","","not begun"' &
rollout=$!
# A preview goes on behind a bad server.
play 'misnamed third' 'good=0 misnamed=0 third=0' 'flash.yml --check --limit good,misnamed,third' \
    'commands simulated: 2.' 'Not flashed: 0 RET_OK: names-differ' '"good","OK","0","RET_OK","A flash' \
    'RET_OK: not as on the control machine: FC_HBA_Conditions.txt, nx4200/'
play '' third= 'install.yml --limit third' 'changed=2'
wait $hanging
wait $rollout
timeout 60 sh -c 'until grep -q Success servers/differing/cnatool-flash.out; do sleep 1; done' ||
    fail 'the flash was not left alone when its time was over'
# One batch: nobody in it is flashed where one check fails, also for storage that differs.
play 'differing misnamed' 'good=0 misnamed=0 differing=0 third=' 'flash.yml -e cnatool_batch=3
    --limit good,misnamed,differing,third -e {"cnatool_options":["--ctrl-wide-identical"]}' \
    'Not flashed: 1 RET_NOT_CTRL_WIDE_IDENTICAL' 'Not flashed: 0 RET_OK: names-differ' \
    '"good","UNKNOWN","0","RET_OK","not flashed"'
# As a role of another playbook, it installs first.
echo '[{hosts: cnatool, gather_facts: false, roles: [cnatool]}]' > site.yml
play '' hostile=0 "site.yml --limit hostile -e cnatool_table=$scratch/servers/hostile/FC_HBA_Conditions.txt" \
    '"OK: 1"'
# No server writes outside of its folder, changes a variable, or has its text evaluated.
[ "$(find cnatool-results outside -path '*outside*' -o -type l | sort | xargs)" = \
    'outside outside/FWtrace.out' ] ||
    fail 'a server has written outside of its folder'
grep -q '"storage": "HELMSTOR Arctis {{7\*7}} 0401"' cnatool-results/flash-*/summary.json
grep -q '^Exit status: 10 RET_FLASH_ERROR$' cnatool-results/failing/flash-*/flash.txt
grep -q '^Process ' cnatool-results/differing/flash-*/flash.txt
(cd cnatool-results && ls -d forbidden/check-*/check.txt misnamed/check-*/audit.json \
    differing/flash-*/FWtrace.out told/flash-*/nx4200/FWtrace.out failing/flash-*/*_target_mapping.out) > /dev/null
: > servers/told/Servie_DLL.log
play '' told= 'purge.yml --limit told'
diff -r -x opt -x cnatool -x cnatool-audit -x FC_HBA_Conditions.txt "$demo/server" servers/told
[ ! -e cnatool-results/told ] || fail 'what was kept is still there'
