#!/bin/sh
#
# test-package.sh BUILD_DIR - builds the package and installs it into a scratch root: what lies
# where, with which modes and owners, whether the installed program runs, and what an upgrade and
# a removal leave of the site's own files. The same for cmake --install.

set -u

if [ $# -ne 1 ] || ! [ -f "$1/CMakeCache.txt" ]; then
    echo 'usage: test-package.sh BUILD_DIR' >&2
    exit 2
fi
# dpkg wants its helpers, which the PATH of an ordinary user need not have.
PATH=$PATH:/usr/sbin:/sbin
export PATH
# dpkg sets owners, which root alone may do.
[ "$(id -u)" -eq 0 ] || exec fakeroot -- "$0" "$@"

build=$1
source_directory=$(dirname -- "$0")/..
scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT
root=$scratch/root
tool_directory=$root/opt/cnatool
table=$tool_directory/FC_HBA_Conditions.txt
example=$table.example
umask 077       # No installed mode may come from it.

fail() {
    printf 'test-package.sh: %s\n' "$*" >&2
    exit 1
}

# quietly COMMAND...: runs it; its output shows only if it fails
quietly() {
    "$@" > "$scratch/log" 2>&1 < /dev/null || {
        cat "$scratch/log"
        fail "failed: $*"
    }
}

build_package() {
    rm -f "$build"/cnatool_*.deb
    quietly cmake --build "$build" --parallel --target package
    set -- "$build"/cnatool_*.deb
    if [ $# -ne 1 ] || ! [ -f "$1" ]; then
        fail "one package should have been built, not: $*"
    fi
    package=$1
    version=$(dpkg-deb -f "$package" Version)
}

check_package() {
    if command -v lintian > /dev/null; then
        lintian --allow-root --fail-on error "$package" || fail 'lintian has found errors'
    else
        echo 'lintian is not installed: the package is not checked by it'
    fi
    logged=$(dpkg-parsechangelog -l "$source_directory/packaging/debian/changelog" -S Version)
    [ "$version" = "$logged" ] || fail "version $version, but $logged in the changelog"
    case $(dpkg-deb -f "$package" Depends) in
        *'libc6 ('*) ;;
        *) fail 'the package does not depend on libc6' ;;
    esac
}

# The scratch root has no system in it, so what the package depends on is missing.
dpkg_in_root() {
    quietly dpkg --root="$root" --log="$scratch/dpkg.log" --force-depends --force-confdef "$@"
}

files_below() {
    (cd "$1" && find opt usr ! -type d -printf '%m %u:%g /%p\n' | sort -k 3)
}

installed_files='644 root:root /opt/cnatool/FC_HBA_Conditions.txt.example
755 root:root /opt/cnatool/cnatool
644 root:root /usr/share/bash-completion/completions/cnatool
644 root:root /usr/share/doc/cnatool/changelog.Debian.gz
644 root:root /usr/share/doc/cnatool/copyright
644 root:root /usr/share/lintian/overrides/cnatool
644 root:root /usr/share/man/man8/cnatool.8.gz'

check_files() {
    found=$(files_below "$1")
    [ "$found" = "$installed_files" ] || fail "below $1 lies:
$found"
    zcat "$1/usr/share/man/man8/cnatool.8.gz" | cmp - "$source_directory/docs/cnatool.8" ||
        fail 'the installed manual page is another one'
}

check_directories() {
    found=$(cd "$root" && find opt usr -type d ! \( -perm 755 -user root -group root \))
    [ -z "$found" ] || fail "directories with other modes or owners: $found"
}

# ends_with STATUS TEXT ARGUMENT...: so ends the installed program, and TEXT is in its output
ends_with() {
    expected=$1 text=$2
    shift 2
    output=$("$tool_directory/cnatool" "$@" 2>&1)
    status=$?
    [ "$status" -eq "$expected" ] || fail "status $status and not $expected for: $*
$output"
    printf '%s\n' "$output" | grep -qF -e "$text" || fail "no '$text' in the output of: $*
$output"
}

management_tool_is_here() {
    for place in /usr/sbin/brcmocmanager/brcmhbacmd /opt/emulex/ocmanager/bin/hbacmd \
                 /usr/sbin/ocmanager/hbacmd; do
        [ ! -e "$place" ] || return 0
    done
    return 1
}

check_program() {
    ends_with 0 "${version%-*}" --version
    ends_with 0 RET_FATAL_ERROR --show-return-codes
    ends_with 15 "$table" -pci-id F1A0:4201
    # The rows of the example, which stand directly behind a number sign, make a table.
    sed 's/^#\([^ ]\)/\1/' "$example" > "$table"
    if management_tool_is_here; then
        echo 'A management tool is installed: it is not run for a test'
    else
        ends_with 21 'SOLVEIG' -v 4 -pci-id F1A0:4201
    fi
}

# The next version brings another example, which would replace one that is no conffile.
build_next_version() {
    quietly dpkg-deb -R "$package" "$scratch/next"
    sed -i "s/^Version: .*/Version: $version.1/" "$scratch/next/DEBIAN/control"
    echo '# of the next version' >> "$scratch/next/opt/cnatool/FC_HBA_Conditions.txt.example"
    quietly dpkg-deb --root-owner-group -b "$scratch/next" "$scratch/next.deb"
}

check_upgrade_and_removal() {
    echo '# of this site' | tee -a "$example" >> "$table"
    cp "$table" "$scratch/table"
    cp "$example" "$scratch/example"
    build_next_version
    dpkg_in_root --install "$scratch/next.deb"
    cmp "$table" "$scratch/table" || fail 'an upgrade has changed the table'
    cmp "$example" "$scratch/example" || fail 'an upgrade has changed the example table'
    grep -q 'of the next version' "$example.dpkg-dist" || fail 'the new example is nowhere'
    dpkg_in_root --purge cnatool
    cmp "$table" "$scratch/table" || fail 'the removal has changed the table'
    [ ! -e "$tool_directory/cnatool" ] || fail 'the removal has left the program'
}

check_cmake_install() {
    staged=$scratch/staged
    staged_example=$staged/opt/cnatool/FC_HBA_Conditions.txt.example
    quietly env DESTDIR="$staged" cmake --install "$build" --prefix /
    check_files "$staged"
    [ "$(stat -c %a "$staged/opt/cnatool")" = 755 ] || fail 'cmake --install: opt/cnatool is shut'

    echo '# of this site' >> "$staged_example"
    quietly env DESTDIR="$staged" cmake --install "$build" --prefix /
    tail -n 1 "$staged_example" | grep -qx '# of this site' ||
        fail 'cmake --install has replaced the example table'

    quietly cmake --install "$build" --prefix "$scratch/prefix"
    check_files "$scratch/prefix"
}

build_package
check_package
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
: > "$root/var/lib/dpkg/status"
dpkg_in_root --install "$package"
check_files "$root"
check_directories
check_program
check_upgrade_and_removal
check_cmake_install
echo "$(basename "$package") installs, runs, is upgraded and removed as it should."
