#!/bin/bash
#
# test-completion.sh - calls the completion of cnatool as the shell does at a press of the tab
# key, and compares what it offers

set -u
# shellcheck source=/dev/null
source "$(dirname -- "$0")/completion/cnatool" || exit 1

scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" && mkdir -p tables/old tables/new tables.d && touch tables.txt || exit 1
failures=0

all='-? -h --help --info --version --show-return-codes -v -d --debug --silent -pci-id'
all+=' --check-for-valid-subsystem --ctrl-wide-identical --ctrl-vendor-wide-identical'
all+=' --flash --conpath --vox-mode --simulate'

# offers EXPECTED WORD...: EXPECTED is offered for the last of the words, in any order
offers() {
    local expected offered
    expected=$(tr ' ' '\n' <<< "$1" | sort)
    shift
    COMP_WORDS=(cnatool "$@")
    COMP_CWORD=$#
    COMPREPLY=(left from the call before)
    _cnatool cnatool "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort)
    if [ "$offered" != "$expected" ]; then
        printf 'for "%s" the completion offers:\n%s\nand not:\n%s\n' "$*" "$offered" "$expected"
        failures=$((failures + 1))
    fi
}

offers "$all" ''
offers "$all" --flash ''
offers "$all" -pci-id 19A2 : 0710 ''
offers '--ctrl-wide-identical --ctrl-vendor-wide-identical' --ctrl
offers '--show-return-codes --silent --simulate' -v 3 --s
offers '-pci-id' -p
offers '' /fl
offers '' 19A2

offers '0 1 2 3 4 5 6' -v ''
offers '0 1 2 3 4 5 6' -d ''
offers 6 --debug 6
offers '' -v 7

offers 'tables tables.d' --conpath t
offers 'tables/old tables/new' --conpath tables/
offers '' --conpath /
offers '' --conpath '~'

for list in -pci-id -vid -dev -subvid -subdev -vn -mod; do
    offers '' "$list" ''
    offers '' "$list" -
done
offers '' -pci-id 19A2 : ''
offers '' -pci-id 19A2 :0710

complete -p cnatool /opt/cnatool/cnatool > /dev/null || failures=$((failures + 1))
[ "$failures" -eq 0 ] || exit 1
echo 'The completion offers what it should.'
