# shellcheck shell=sh disable=SC1091,SC2034
# What the cases of whole runs have at hand, in the directory of their copy of the sample server.

# The identifiers of the controllers, the folder of the stand-in for the management tool, its list
# of ports, a port of C1, and how the outputs about that port begin.
C1=F1A0:4201:F1A0:0011 C2=F1A0:4201:F2B0:0012 C3=F1A0:8402:F1A0:0021 C4=F1A0:8402:F2B0:0022
T=opt/emulex/ocmanager/bin L=opt/emulex/ocmanager/bin/answers/listhbas.txt
P=10:00:02:00:5e:10:01:02 F=NV4200A1001_2_
export C1 C2 C3 C4 T L P F

# Before a command: it runs without the powers of root; as a user who has no file here (behind
# "open_to_all").
POWERLESS='' NOBODY=''
if [ -n "$IS_ROOT" ]; then
    POWERLESS='setpriv --bounding-set=-all --inh-caps=-all'
    NOBODY='setpriv --reuid 65534 --clear-groups'
fi
open_to_all() { cp -L cnatool t && chmod -R a+rwX .; }

# small_server: makes of the copy the smallest server that shows every line once.
small_server() { (. "$SUPPORT/small_server.sh"); }

# fault WORD...: a line of the stand-in's list of faults.
fault() { printf '%s\n' "$*" > $T/answers/faults.txt; }

# first CODE, last CODE: shell that the stand-in runs before and behind its work.
first() { sed -i "2i $1" $T/hbacmd; }
last() { printf '%s\n' "$1" >> $T/hbacmd; }

# hold CALL: the stand-in answers no call that begins so, until "go".
hold() {
    sed -i "/^give_answer\$/i case \"\$*\" in '$1'*) until [ -e '$PWD/go' ] || [ ! -d '$PWD' ]; do sleep 0.01; done ;; esac" $T/hbacmd
}
go() { : > go; }

# start WORD...: the tool in the background, in a session of its own; $tool is its process.
start() {
    env --default-signal=INT,QUIT setsid ./cnatool "$@" &
    tool=$!
}

# after CALL: waits, ten seconds at most, until a call of the stand-in begins so.
after() {
    patience=500
    until grep -qs -e "^$1" $T/calls.log; do
        patience=$((patience - 1))
        [ $patience -gt 0 ] || { echo "no call '$1' came" >&2; exit 99; }
        sleep 0.02
    done
}

# terminal LINE: runs a shell line with a terminal of its own, and prints what reaches it.
terminal() { script -qec "stty -opost; $1" /dev/null < /dev/null; }

# outputs: what a run leaves of the answers, without a run.
outputs() {
    awk -F ' *: ' -v folder=$T/answers '
        function copy(command, kind) {
            answer = folder "/" command "/" id ".txt"
            printf "" > serial "_" place "_" kind ".out"
            while ((getline line < answer) > 0) { print line > serial "_" place "_" kind ".out" }
            close(answer)
        }
        function end() {
            if (serial != "" && serial !~ /^n\/a/) {
                copy("hbaattributes", "hba_attributes")
                if (type ~ /^FC/) { copy("targetmapping", "target_mapping") }
            }
            serial = ""
        }
        { print > "local_hba_list.out" }
        /^(Port WWN|Permanent MAC)/ { id = $2 }
        /^Serial No/ { serial = $2 }
        /^PCI Function/ { place = $2 }
        /^Port Type/ { type = $2 }
        /^$/ { end() }
        END { end() }' $L
}

# value FILE KEY VALUE [BLOCK]: gives the lines of a key another value, in the blocks that fit.
value() {
    KEY=$2 VALUE=$3 BLOCK=${4-} awk -F '\n' -v OFS='\n' -v RS= -v ORS='\n\n' '
        $0 ~ ENVIRON["BLOCK"] {
            for (i = 1; i <= NF; i++) {
                if (index($i, ENVIRON["KEY"]) == 1) { $i = ENVIRON["KEY"] " : " ENVIRON["VALUE"] }
            }
        }
        { print }' "$1" > changed
    cat changed > "$1"
    rm changed
}

# without_port PATTERN: takes the ports whose blocks fit out of the stand-in's list.
without_port() {
    BLOCK=$1 awk -v RS= -v ORS='\n\n' '$0 !~ ENVIRON["BLOCK"]' $L > changed && mv changed $L
}

# column PATTERN NUMBER VALUE: changes a column, counted from 1, of the rows that fit.
column() {
    ROW=$1 VALUE=" $3 " awk -F '|' -v OFS='|' -v column="$2" '
        $0 ~ ENVIRON["ROW"] && !/^#/ { $column = ENVIRON["VALUE"] }
        { print }' FC_HBA_Conditions.txt > changed
    mv changed FC_HBA_Conditions.txt
}

# storage VENDOR VENDOR: what is attached to the two FCoE ports of C1, "-" for nothing.
storage() {
    for port in 2 3; do
        mapping=$T/answers/targetmapping/10:00:02:00:5e:10:01:0$port.txt
        sed -i "s/^Vendor ID.*/Vendor ID : $1/" $mapping
        [ "$1" != - ] || : > $mapping
        shift
    done
}
