#!/bin/bash
#
# test-pages.sh BUILD_DIR - the manual pages are clean; every link, section and file that a page
# names is there, in the sources and in both installed trees; README.md is short; pages, program and
# completion agree on version, statuses, options and the places of the management tool

set -u

tool=${1?the build directory}/cnatool
source_directory=$(cd -- "$(dirname -- "$0")/.." && pwd)
page=$source_directory/docs/cnatool.8
readme=$source_directory/README.md
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

fail() {
    printf '%s\n' "$*"
    failures=$((failures + 1))
}

same() {
    difference=$(diff <(echo "$2") <(echo "$3")) || fail "$1 differ:" "$difference"
    [ -n "$2" ] || fail "$1: there are none"
}

# Each gives lines of a number and a name. 51 has no name and is on no list of the program.
statuses_of_program() {
    "$tool" --show-return-codes | awk '$1 ~ /^RET_/ { print $2, $1 }'
}
statuses_of_page() {
    awk '/^\.Sh / { inside = ($0 == ".Sh EXIT STATUS") }
         inside && /^\.It [0-9]/ && $2 != 51 { print $2, $4 }' "$page"
}
# The numbers alone.
statuses_of_readme() {
    awk -F '|' '/^\| [0-9]/ { print $2; print $4 }' "$readme" | tr -cs '0-9' '\n' | grep . | sort -n
}

places_of_program() {
    grep -ho '"/[^"]*hbacmd"' "$source_directory"/src/*/tool_places.cpp | tr -d '"'
}

# slugs FILE: its headings as a link names them
slugs() {
    sed -n 's/^##* //p' "$1" | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

# follow_links PAGE...: each link leads to a file, and to a heading of it where it names one
follow_links() {
    for each; do
        while read -r target; do
            to=$each
            [ -z "${target%%#*}" ] || to=$(dirname "$each")/${target%%#*}
            links=$((links + 1))
            [ -e "$to" ] || fail "$each: there is no $target"
            case $target in
                *#*) slugs "$to" | grep -qxF -e "${target#*#}" || fail "$each: no heading $target" ;;
            esac
        done < <(grep -o ']([^)]*)' "$each" |
            sed 's/^](//; s/)$//; /^https:/d')
    done
}

# Below are the pages in the sources, as they are installed, and as the archive holds them.
DESTDIR=$scratch/root cmake --install "$1" > /dev/null || fail 'no installation'
cmake --install "$1" --prefix "$scratch/archive" --component archive > /dev/null || fail 'no archive'
for tree in "$source_directory" "$scratch/root" "$scratch/archive"; do
    links=0
    mapfile -t found < <(find "$tree" -name 'build*' -prune -o -name '*.md' -print)
    follow_links "${found[@]}"
    [ "$links" -gt 0 ] || fail "no link below $tree"
done

# What is not installed is named by its place in the sources.
# shellcheck disable=SC2016  # these quotes are part of the pages
for each in $(cd "$source_directory" && grep -oh '`[^`]*` in the sources' ./*.md docs/*.md | cut -d '`' -f 2); do
    [ -e "$source_directory/$each" ] || fail "not in the sources: $each"
done
# Pages for developers name source files by their last name.
# shellcheck disable=SC2016
for each in $(cd "$source_directory" && grep -oh '`[a-z_]*\.\(cpp\|h\)`' docs/architecture.md CONTRIBUTING.md | tr -d '`'); do
    [ -n "$(cd "$source_directory" && find src tests fuzz -name "$each")" ] || fail "no source file $each"
done
# Manual pages name installed pages by their full path, and sections by their headings.
for each in "$source_directory"/docs/*.8; do
    while read -r named; do
        [ -e "$scratch/root$named" ] || fail "$each: nothing is installed at $named"
    done < <(sed -n 's/.*\(\/usr\/share\/doc\/cnatool[^ ]*\).*/\1/p' "$each")
    while read -r section; do
        grep -qxE -e "\.S[hs] $section" "$each" || fail "$each: no section $section"
    done < <(sed -n 's/^\.Sx \([^.,]*[^ .,]\).*/\1/p' "$each")
done

[ "$(wc -l < "$readme")" -le 130 ] || fail 'README.md has more than 130 lines'
! grep -nE '^.{111}' "$readme" | grep -vE '^[0-9]+:    ' || fail 'README.md has wide lines'

newest=$(sed -n 's/^## \[\([0-9.]*\)\].*/\1/p' "$source_directory/CHANGELOG.md" | head -n 1)
[ "$newest" = "$("$tool" --version)" ] || fail "CHANGELOG.md ends with version $newest"
# In a place of their own, where the pages find each other and no others.
mkdir -p "$scratch/man/man8"
cp "$1"/packaging/*.8 "$scratch/man/man8"
makewhatis "$scratch/man"
for each in "$scratch"/man/man8/*; do
    grep -qxF -e ".Os cnatool $("$tool" --version)" "$each" || fail "${each##*/} has another version"
    MANPATH=$scratch/man mandoc -T lint -W style "$each" || fail "${each##*/} is not clean"
done

same 'the statuses of program (<) and manual page (>)' "$(statuses_of_program)" "$(statuses_of_page)"
same 'the statuses of program (<) and README.md (>)' \
    "$({ statuses_of_program | cut -d ' ' -f 1; echo 51; } | sort -n)" "$(statuses_of_readme)"
same 'the places of the management tool in program (<) and manual page (>)' \
    "$(places_of_program)" "$(sed -n 's/^\.It Pa \(.*hbacmd\)$/\1/p' "$page")"
same 'the places of the management tool in program (<) and README.md (>)' \
    "$(places_of_program)" "$(sed -n 's/^    \(.*hbacmd\)$/\1/p' "$readme")"

same 'the rows of docs/table.md (<) and of the example (>)' \
    "$(sed -n 's/^    Norvik/#Norvik/p' "$source_directory/docs/table.md" | tr -s ' ')" \
    "$(grep '^#Norvik' "$source_directory/packaging/FC_HBA_Conditions.txt.example" | tr -s ' ')"

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
