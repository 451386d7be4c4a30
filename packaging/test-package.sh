#!/bin/sh
#
# test-package.sh BUILD_DIR - builds all packages and installs them into scratch roots: what lies
# where, how the programs are linked, whether they run where there is nothing but a shell, and
# what an upgrade and a removal leave of the site's own files; the unit's own command line
# shellcheck disable=SC2046,SC2086  # names of files without blanks, one a word
set -u

# dpkg wants its helpers, which the PATH of an ordinary user need not have, and sets owners, which
# root alone may do. For the rpm it takes a root of a name space at least.
PATH=$PATH:/usr/sbin:/sbin
export PATH
if [ "$(id -u)" -ne 0 ]; then
    ! unshare --map-root-user chroot / true 2> /dev/null ||
        exec unshare --map-root-user -- "$0" "$@"
    exec fakeroot -- "$0" "$@"
fi

build=$(cd -- "${1:?usage: $0 BUILD_DIR}" && pwd) || exit 2
top=$(cd -- "$(dirname -- "$0")/.." && pwd)
scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT
export TMPDIR="$scratch"    # lintian leaves a directory behind.
umask 077                   # No installed mode may come from it.
directory=/opt/cnatool
programs=cnatool
[ ! -x "$build/cnatool-audit" ] || programs="cnatool cnatool-audit"

fail() {
    printf 'test-package.sh: %s\n' "$*" >&2
    exit 1
}

# quietly COMMAND...: runs it; its output shows only if it fails
quietly() {
    "$@" > "$scratch/log" 2>&1 < /dev/null || fail "failed: $*
$(cat "$scratch/log")"
}

# same WHAT FOUND EXPECTED
same() {
    [ "$2" = "$3" ] || fail "$1 is
$2
and not
$3"
}

# ends_with STATUS TEXT COMMAND...: so ends the command, and TEXT is in its output
ends_with() {
    expected=$1 text=$2
    shift 2
    output=$("$@" 2>&1 < /dev/null)
    same "the status of $*: $output" "$?" "$expected"
    printf '%s\n' "$output" | grep -qF -e "$text" || fail "no '$text' in the output of $*: $output"
}

# files MODE DIRECTORY NAME...: a line for each, as it is to be installed
files() {
    mode=$1 in=$2
    shift 2
    printf "$mode root:root $in/%s\n" "$@"
}

# What the rpm and the Debian package have in common.
common_files() {
    files 644 /etc default/cnatool logrotate.d/cnatool
    files 755 $directory check_cnatool $programs
    files 644 /usr/lib/systemd/system cnatool-check.service cnatool-check.timer
    files 644 /usr/share/bash-completion/completions $(ls "$top/packaging/completion")
    files 644 /usr/share/doc/cnatool FC_HBA_Conditions.txt.example README.md SECURITY.md \
        changelog.gz docs/architecture.md docs/performance.md
    files 644 /usr/share/man/man8 $(cd "$top/docs" && printf '%s.gz ' *.8)
}

debian_files() {
    common_files
    files 644 /usr/share/doc/cnatool changelog.Debian.gz copyright
    files 644 /usr/share/lintian/overrides cnatool
}

found_files() {
    find "$1" \( -path "$1/var" -o -path "$1/etc/dpkg" \) -prune -o ! -type d \
        -printf '%m %u:%g /%P\n' | sort
}

# runs_hardened DIRECTORY LIBRARY...: the programs run, are protected as far as a stripped file
# shows it, and need these shared libraries (the loader aside)
runs_hardened() {
    in=$1
    shift
    for program in $programs; do
        ends_with 0 "${version%-*}" "$in/$program" --version
        headers=$(readelf -hldW "$in/$program")
        for mark in 'Type: *DYN' GNU_RELRO 'GNU_STACK .* RW ' 'FLAGS.* BIND_NOW' 'FLAGS_1.* PIE'; do
            printf '%s\n' "$headers" | grep -q -e "$mark" || fail "$program has no '$mark'"
        done
        same "what $program needs" "$(printf '%s\n' "$headers" |
            sed -n '/ld-linux/d; s/.*(NEEDED).*\[\(.*\)\]/\1/p' | xargs)" "$*"
    done
}

# Not beside the builds: rpmbuild takes no path with a blank.
build_packages() {
    cd "$top" || exit 1
    quietly cmake --preset portable -B "$build/portable"
    for built in "$build" "$build/portable"; do
        quietly cmake --build "$built" --parallel
        quietly cpack --config "$built/CPackConfig.cmake" -B "$scratch/packages"
    done
    deb=$(echo "$scratch"/packages/*.deb)
    rpm=$(echo "$scratch"/packages/*.rpm)
    archive=$(echo "$scratch"/packages/*.tar.gz)
    version=$(dpkg-deb -f "$deb" Version) || exit 1

    cpack=$(command -v cpack)
    mkdir "$scratch/few"
    ln -s "$(command -v make)" "$(command -v cmake)" "$(command -v sh)" "$scratch/few"
    for lacking in "$build" "$build/portable"; do
        ends_with 1 'Not installed: file, ' env PATH="$scratch/few" "$cpack" -B "$scratch/none" \
            --config "$lacking/CPackConfig.cmake" -D CMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF
    done
}

# There is no system in the root directory: no libc, and no shell for the package's scripts.
dpkg_in_root() {
    quietly dpkg --root="$root" --log=/dev/null --force-depends --force-script-chrootless "$@"
}

check_deb() {
    root=$scratch/deb
    mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
    : > "$root/var/lib/dpkg/status"
    quietly lintian --allow-root --fail-on error,warning "$deb"
    same "the changelog's version" \
        "$(dpkg-parsechangelog -l "$top/packaging/debian/changelog" -S Version)" "$version"
    same 'what the package depends on' "$(dpkg-deb -f "$deb" Depends | sed 's/ (.*)//')" libc6
    dpkg_in_root --install "$deb"
    same 'what is installed' "$(found_files "$root")" "$(debian_files | sort)"
    same 'what has other modes or owners' \
        "$(cd "$root" && find etc opt usr -type d ! \( -perm 755 -user root -group root \))" ''
    runs_hardened "$root$directory" libc.so.6
    for mark in __stack_chk_fail printf_chk; do
        readelf --dyn-syms -W "$root$directory/cnatool" | grep -q "$mark" || fail "no $mark"
    done
}

# The next version has another example, and nobody answers.
check_upgrade_and_purge() {
    example=usr/share/doc/cnatool/FC_HBA_Conditions.txt.example
    for kept in "$example" etc/default/cnatool opt/cnatool/nx/FWtrace.out \
        opt/cnatool/FC_HBA_Conditions.txt opt/cnatool/local_hba_list.out \
        opt/cnatool/NV1_2_hba_attributes.out; do
        mkdir -p "$(dirname "$root/$kept")"
        echo '# of this site' >> "$root/$kept"
    done
    quietly dpkg-deb -R "$deb" "$scratch/next"
    sed -i "s/^Version: .*/Version: $version.1/" "$scratch/next/DEBIAN/control"
    echo '# of the next version' >> "$scratch/next/$example"
    quietly dpkg-deb --root-owner-group -b "$scratch/next" "$scratch/next.deb"
    dpkg_in_root --install "$scratch/next.deb"
    same 'the end of settings and example' \
        "$(tail -qn 1 "$root/etc/default/cnatool" "$root/$example" | xargs)" \
        '# of this site # of the next version'
    dpkg_in_root --purge cnatool
    same 'what a purge leaves' "$(found_files "$root" | sed 's/.* //' | xargs)" \
        "$directory/FC_HBA_Conditions.txt $directory/nx/FWtrace.out"
}

check_archive() {
    quietly tar -C "$scratch" -xzf "$archive"
    unpacked=$scratch/$(basename "$archive" .tar.gz)
    runs_hardened "$unpacked"
    ends_with 15 "$unpacked/FC_HBA_Conditions.txt" "$unpacked/cnatool" -pci-id F1A0:4201
    same 'what the archive holds' "$(cd "$unpacked" && find ./* -type f | sort | xargs)" "$(
        cd "$top" && printf './%s\n' check_cnatool FC_HBA_Conditions.txt.example LICENSE \
            CHANGELOG.md README.md SECURITY.md $programs docs/*.8 docs/*.md | sort | xargs)"
}

check_rpm() {
    quietly rpmlint -c "$top/packaging/rpm/rpmlint.toml" "$rpm"
    same 'what the rpm requires' \
        "$(rpm -qp --requires "$rpm" | grep -v '^rpmlib(' | sort -u)" /bin/sh
    same "the version in the rpm's changelog" \
        "$(rpm -qp --changelog "$rpm" | sed -n '1s/.* - //p')" "$version"
    same 'what is in the rpm' "$(rpm -qp --qf \
        '[%{FILEMODES:octal} %{FILEUSERNAME}:%{FILEGROUPNAME} %{FILENAMES}\n]' "$rpm" |
        sed -n 's/^0*100//p' | sort)" \
        "$({ common_files; files 644 /usr/share/doc/cnatool LICENSE; } | sort)"
}

# program PATH LINES: a shell script in the root directory
program() {
    mkdir -p "$root$(dirname "$1")"
    printf '#!/bin/sh\n%s\n' "$2" > "$root$1"
    chmod 755 "$root$1"
}

# A root directory with a static shell and the files of the rpm, later with a management tool.
check_bare_root() {
    root=$scratch/bare
    # shellcheck disable=SC2016  # for the other shell
    program /bin/systemctl 'echo "$*" >> /systemctl.log'
    mkdir -p "$root/run/systemd/system"
    cp /bin/busybox "$root/bin/sh"
    quietly rpm --root "$root" --nodeps -i "$rpm"
    ends_with 15 "$directory/FC_HBA" chroot "$root" $directory/cnatool -pci-id F1A0:4201
    cp "$top/demo/server/FC_HBA_Conditions.txt" "$root$directory"
    ends_with 21 '' chroot "$root" $directory/cnatool -pci-id F1A0:4201
    cp -R "$top/demo/answers" "$root"
    # shellcheck disable=SC2016
    program /opt/emulex/ocmanager/bin/hbacmd \
        'while read -r line; do echo "$line"; done < "/answers/$1${2:+/$2}.txt"'
    ends_with 4 'Invalid subsystem!' chroot "$root" $directory/cnatool -pci-id F1A0:8402:F2B0:0022
    check_unit
    quietly rpm --root "$root" --nodeps -e cnatool
    same 'what systemctl was told' "$(xargs < "$root/systemctl.log")" \
        'daemon-reload disable --now cnatool-check.timer daemon-reload'
    [ -f "$root$directory/FC_HBA_Conditions.txt" ] || fail 'the removal has taken the table'
}

# The unit's command lines as they stand, each with a selection in the settings.
check_unit() {
    unit=$root/usr/lib/systemd/system/cnatool-check
    program /commands "set -ae; . /etc/default/cnatool
$(sed -n 's/^ExecStart\(Pre\)*=//p' "$unit.service")"
    while IFS='|' read -r expected text selection; do
        echo "CNATOOL_SELECTION='$selection'" > "$root/etc/default/cnatool"
        ends_with "$expected" "$text" chroot "$root" /commands
    done << 'EOF'
3|set CNATOOL_SELECTION in /etc/default/cnatool|
0|Perform subsystem check for:|-pci-id F1A0:4201:F1A0:0011
12||-pci-id F1A0:2101
3|Not in CNATOOL_OPTIONS|-pci-id F1A0:2101' CNATOOL_OPTIONS='--flash
EOF
    sed -i "s#=/opt#=$root/opt#" "$unit.service"
    quietly systemd-analyze verify --man=no "$unit.service" "$unit.timer"
    same 'what systemd-analyze says' "$(cat "$scratch/log")" ''
}

check_cmake_install() {
    staged=$scratch/staged
    quietly env DESTDIR="$staged" cmake --install "$build" --prefix /
    same 'what cmake --install lays down' "$(found_files "$staged")" "$(debian_files | sort)"
    echo '# of this site' >> "$staged/etc/default/cnatool"
    quietly cmake --install "$build" --prefix "$staged"
    same 'the end of the settings' "$(tail -n 1 "$staged/etc/default/cnatool")" '# of this site'
    same 'what lies below a prefix' "$(found_files "$staged")" "$(debian_files | sort)"
}

build_packages
check_deb
check_upgrade_and_purge
check_archive
check_rpm
if [ -z "${FAKEROOTKEY-}" ] && chroot / true 2> /dev/null; then
    check_bare_root
else
    echo 'Not root here: the rpm was not installed, nor its unit tried.'
fi
check_cmake_install
echo "$(basename "$deb"), $(basename "$rpm") and $(basename "$archive") are as they should be."
