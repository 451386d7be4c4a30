#!/bin/sh
#
# test-monitoring.sh - check_cnatool on stand-ins for both programs that end with any status, and
# the rotation of the record of flashes
set -u

here=$(cd -- "$(dirname -- "$0")" && pwd)
scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failures=0

fail() {
    printf 'test-monitoring.sh: %s\n' "$*"
    failures=$((failures + 1))
}

sed 's#/etc/default#./etc#' "$here/monitoring/check_cnatool" > check_cnatool || exit 1
mkdir etc
printf 'CNATOOL_SELECTION="-pci-id 3:4"\nCNATOOL_OPTIONS="-v 2"\n' > etc/cnatool
cat > cnatool << 'EOF'
#!/bin/sh
[ "$1" != --show-return-codes ] || { printf 'RET_OK 0\nRET_BAD 3\nRET_NONE 13\n'; exit; }
echo "run |$*|"
exit "$RUN"
EOF
cat > cnatool-audit << 'EOF'
#!/bin/sh
codes='[{"code":"no-storage","what":"\"code\": \"odd\", "},{"code": "no-row"},{"code":"no-row"}]'
case " $* " in *' --json '*) echo "{\"findings\":$codes}"; exit 1 ;; esac
echo "audit |$*|"
exit "$AUDIT"
EOF
chmod +x check_cnatool cnatool cnatool-audit

# STATE and LINE come of a run and an audit that end with RUN and AUDIT.
while read -r run audit state line; do
    said=$(RUN=$run AUDIT=$audit ./check_cnatool -pci-id 1:2)
    found="$? $(printf '%s\n' "$said" | sed -n '1s/^CNATOOL //p')"
    [ "$found" = "$state $line" ] || fail "run $run, audit $audit: $found"
done << 'EOF'
0 0 0 OK - exit status 0 RET_OK, no finding
0 1 1 WARNING - exit status 0 RET_OK, the audit finds: no-row no-storage
0 2 3 UNKNOWN - exit status 0 RET_OK, the audit failed with status 2
1 2 2 CRITICAL - exit status 1, the audit failed with status 2
2 1 2 CRITICAL - exit status 2, the audit finds: no-row no-storage
4 0 2 CRITICAL - exit status 4, no finding
12 0 2 CRITICAL - exit status 12, no finding
13 0 2 CRITICAL - exit status 13 RET_NONE, no finding
22 0 2 CRITICAL - exit status 22, no finding
3 0 3 UNKNOWN - exit status 3 RET_BAD, no check
15 1 3 UNKNOWN - exit status 15, no check
55 2 3 UNKNOWN - exit status 55, no check
143 0 3 UNKNOWN - exit status 143, no check
EOF

# What stands behind the first line has no bar, behind which performance data would begin.
while IFS='>' read -r arguments state lines; do
    # shellcheck disable=SC2086  # one argument a word
    said=$(RUN=0 AUDIT=0 ./check_cnatool $arguments)
    found="$?>$(printf '%s\n' "$said" | sed 1d | xargs)"
    [ "$found" = "$state>$lines" ] || fail "$arguments: $found"
done << 'EOF'
-pci-id 1:2 -- --vox-mode -v 2>0>run /-pci-id 1:2 --vox-mode -v 2/ audit /-pci-id 1:2/
-pci-id 1:2 -- --conpath x>3>
-pci-id 1:2 -- -v 0>3>
-pci-id 1:2>0>run /-pci-id 1:2/ audit /-pci-id 1:2/
>0>run /-pci-id 3:4 -v 2/ audit /-pci-id 3:4/
-- --x>3>
-pci-id 1:2 -- --flash>3>
-pci-id 1:2 /-flash>3>
EOF

for settings in 'CNATOOL_SELECTION="-pci-id 1:2' 'CNATOOL_SELECTION=-pci-id 1:2'; do
    echo "$settings" > etc/cnatool
    found=$(RUN=0 AUDIT=0 ./check_cnatool 2>&1; echo $?)
    [ "$found" = "CNATOOL UNKNOWN - a shell cannot read ./etc/cnatool
3" ] || fail "$settings: $found"
done

mkdir nx
sed "s#/opt/cnatool#$scratch#g" "$here/monitoring/logrotate" > logrotate.conf
for size in 1000 2000000; do
    head -c "$size" /dev/zero > nx/FWtrace.out
    PATH=$PATH:/usr/sbin logrotate -s state logrotate.conf || fail 'logrotate fails'
done
[ "$(stat -c '%n %s' nx/*)" = 'nx/FWtrace.out.1 2000000' ] || fail "logrotate leaves: $(ls -l nx)"
[ "$failures" -eq 0 ]
