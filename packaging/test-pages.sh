#!/bin/bash
#
# test-pages.sh BUILD_DIR - the manual pages are clean, that of cnatool and README.md name the exit
# statuses of the program, and each manual page and its program know the options that the
# completion offers

set -u

tool=${1?the build directory}/cnatool
source_directory=$(dirname -- "$0")/..
page=$source_directory/docs/cnatool.8
failures=0

fail() {
    printf '%s\n' "$*"
    failures=$((failures + 1))
}

# Each gives lines of a number and a name. 51 has no name and is on no list of the program.
statuses_of_program() {
    "$tool" --show-return-codes | awk '$1 ~ /^RET_/ { print $2, $1 }'
}
statuses_of_page() {
    awk '/^\.Sh / { inside = ($0 == ".Sh EXIT STATUS") }
         inside && /^\.It [0-9]/ && $2 != 51 { print $2, $4 }' "$page"
}
statuses_of_readme() {
    awk -F '[|` ]+' '/^\| *[0-9]+ *\| *`RET_/ { print $2, $3 }' "$source_directory/README.md"
}

grep -qxF -e ".Os cnatool $("$tool" --version)" "$page" || fail "$page is of another version"
# In a place of their own, where the pages find each other and no others.
pages=$(mktemp -d)
trap 'rm -rf "$pages"' EXIT
mkdir "$pages/man8"
cp "$source_directory"/docs/*.8 "$pages/man8"
makewhatis "$pages"
for each in "$pages"/man8/*; do
    MANPATH=$pages mandoc -T lint -W style "$each" || fail "${each##*/} is not clean"
done

listed=$(statuses_of_program)
[ -n "$listed" ] || fail 'the program lists no status'
for place in page readme; do
    difference=$(diff <(echo "$listed") <("statuses_of_$place")) ||
        fail "the statuses of the program (<) and of the $place (>) differ:" "$difference"
done

for program in cnatool cnatool-audit; do
    # shellcheck source=/dev/null
    source "$source_directory/packaging/completion/$program"
    COMP_WORDS=("$program" '')
    COMP_CWORD=1
    "_${program//-/_}"
    [ "${#COMPREPLY[@]}" -gt 0 ] || fail "the completion of $program offers nothing"
    described=$(awk '/^\.It Fl/ { for (i = 3; i <= NF; ++i) print $i }' \
        "$source_directory/docs/$program.8" | sed 's/^\\&//')
    for option in "${COMPREPLY[@]}"; do
        grep -qxF -e "${option#-}" <<< "$described" ||
            fail "the page of $program does not describe $option"
        # The help behind it ends the call, whether it is taken or refused as a value.
        ! "$1/$program" "$option" --help 2>&1 | grep -qF 'Invalid argument' ||
            fail "no option of $program: $option"
    done
done

[ "$failures" -eq 0 ] || exit 1
echo 'Pages, program and completion agree.'
