#!/bin/sh
#
# test-package.sh BUILD_DIR PART - builds a package and looks at what is in it, or tries one that
# another part has built; each function check_PART below says what it looks at
# shellcheck disable=SC2046,SC2086  # names of files without blanks, one a word
set -u

# dpkg sets owners, which root alone may do. For the rpm it takes a root of a name space at least.
if [ "$(id -u)" -ne 0 ]; then
    ! unshare --map-root-user chroot / true 2> /dev/null ||
        exec unshare --map-root-user -- "$0" "$@"
    exec fakeroot -- "$0" "$@"
fi

build=$(cd -- "${1:?usage: $0 BUILD_DIR PART}" && pwd) || exit 2
part=${2:?usage: $0 BUILD_DIR PART}
top=$(cd -- "$(dirname -- "$0")/.." && pwd)
scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT
export TMPDIR="$scratch"    # lintian leaves a directory behind.
umask 077                   # No installed mode may come from it.
packages=$build/packages
directory=/opt/cnatool
programs="cnatool cnatool-audit"
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:[A-Z]*=//p' "$build/CMakeCache.txt")

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
    [ "$2" = "$3" ] && return
    printf '%s\n' "$2" > "$scratch/found"
    fail "$1: '>' is missing, '<' should not be there:
$(printf '%s\n' "$3" | diff "$scratch/found" -)"
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
        changelog.gz $(cd "$top" && echo docs/*.md docs/*.json)
    files 644 /usr/share/man/man8 $(cd "$top/docs" && printf '%s.gz ' *.8)
}

debian_files() {
    common_files
    files 644 /usr/share/doc/cnatool changelog.Debian.gz copyright
    [ ! -e /etc/debian_version ] || files 644 /usr/share/lintian/overrides cnatool
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
        ends_with 0 "$version" "$in/$program" --version
        headers=$(readelf -hldW "$in/$program")
        for mark in 'Type: *DYN' GNU_RELRO 'GNU_STACK .* RW ' 'FLAGS.* BIND_NOW' 'FLAGS_1.* PIE'; do
            printf '%s\n' "$headers" | grep -q -e "$mark" || fail "$program has no '$mark'"
        done
        same "what $program needs" "$(printf '%s\n' "$headers" |
            sed -n '/ld-linux/d; s/.*(NEEDED).*\[\(.*\)\]/\1/p' | xargs)" "$*"
    done
}

# packed BUILD GENERATOR PATTERN: builds one kind of package and prints its path. CPack names what
# it lacks before it builds anything. Not beside the builds, as rpmbuild takes no path with a blank.
packed() {
    mkdir -p "$packages" "$scratch/few"
    ln -s "$(command -v make)" "$(command -v cmake)" "$(command -v sh)" "$scratch/few"
    [ "$2" = TGZ ] || ends_with 1 'Not installed: file, ' env PATH="$scratch/few" "$(command -v cpack)" \
        --config "$1/CPackConfig.cmake" -G "$2" -B "$scratch/none" -D CMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF
    quietly cmake --build "$1" --parallel "$(nproc)"
    quietly cpack --config "$1/CPackConfig.cmake" -G "$2" -B "$scratch/packages"
    rm -f "$packages"/$3
    mv "$scratch/packages"/$3 "$packages"
    echo "$packages"/$3
}

portable() {
    cd "$top" || exit 1
    quietly cmake --preset portable -B "$build/portable"
    packed "$build/portable" "$@"
}

# There is no system in the root directory: no libc, and no shell for the package's scripts.
dpkg_in_root() {
    quietly dpkg --root="$root" --log=/dev/null --force-depends --force-script-chrootless "$@"
}

# What the Debian package holds and needs, and what an upgrade and a removal leave of the site's own
# files.
check_deb() {
    deb=$(packed "$build" DEB 'cnatool_*.deb') || exit 1
    root=$scratch/deb
    mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
    : > "$root/var/lib/dpkg/status"
    same "the package's version" "$(dpkg-deb -f "$deb" Version)" "$version-1"
    same "the changelog's version" \
        "$(dpkg-parsechangelog -l "$top/packaging/debian/changelog" -S Version)" "$version-1"
    same 'what the package depends on' "$(dpkg-deb -f "$deb" Depends | sed 's/ (.*)//')" libc6
    same 'what the package recommends' "$(dpkg-deb -f "$deb" Recommends)" python3
    dpkg_in_root --install "$deb"
    same 'what is installed' "$(found_files "$root")" "$(debian_files | sort)"
    same 'what has other modes or owners' \
        "$(cd "$root" && find etc opt usr -type d ! \( -perm 755 -user root -group root \))" ''
    runs_hardened "$root$directory" libc.so.6
    for mark in __stack_chk_fail printf_chk; do
        readelf --dyn-syms -W "$root$directory/cnatool" | grep -q "$mark" || fail "no $mark"
    done
    upgrade_and_purge
}

# The next version has another example, and nobody answers.
upgrade_and_purge() {
    example=usr/share/doc/cnatool/FC_HBA_Conditions.txt.example
    for kept in "$example" etc/default/cnatool opt/cnatool/nx/FWtrace.out \
        opt/cnatool/FC_HBA_Conditions.txt opt/cnatool/local_hba_list.out \
        opt/cnatool/NV1_2_hba_attributes.out; do
        mkdir -p "$(dirname "$root/$kept")"
        echo '# of this site' >> "$root/$kept"
    done
    quietly dpkg-deb -R "$deb" "$scratch/next"
    sed -i "s/^Version: .*/Version: $version-1.1/" "$scratch/next/DEBIAN/control"
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

check_lintian() {
    quietly lintian --allow-root --fail-on error,warning "$packages"/cnatool_*.deb
}

# The same package comes of another directory, at another time, under another umask.
check_reproducible() {
    again="$scratch/in another place/cnatool"
    mkdir -p "$again" "$scratch/packages"
    tar -C "$top" --exclude './build*' --exclude './.git' -cf - . | tar -C "$again" -xf - --touch
    umask 000
    cd / || exit 1
    export TZ=Pacific/Auckland LC_ALL=C.UTF-8
    quietly faketime -f +1000d cmake -S "$again" -B "$again/build" -DBUILD_TESTING=OFF
    quietly faketime -f +1000d cmake --build "$again/build" --parallel "$(nproc)"
    quietly faketime -f +1000d cpack --config "$again/build/CPackConfig.cmake" -B "$scratch/packages"
    quietly cmp "$packages"/cnatool_*.deb "$scratch/packages"/cnatool_*.deb
}

# The archive, whose programs run wherever it is unpacked.
check_archive() {
    archive=$(portable TGZ 'cnatool-*.tar.gz') || exit 1
    quietly tar -C "$scratch" -xzf "$archive"
    unpacked=$scratch/$(basename "$archive" .tar.gz)
    runs_hardened "$unpacked"
    ends_with 15 "$unpacked/FC_HBA_Conditions.txt" "$unpacked/cnatool" -pci-id F1A0:4201
    same 'what the archive holds' "$(cd "$unpacked" && find ./* -type f | sort | xargs)" "$(
        cd "$top" && printf './%s\n' check_cnatool FC_HBA_Conditions.txt.example LICENSE \
            CHANGELOG.md README.md SECURITY.md $programs docs/*.8 docs/*.md docs/*.json | sort | xargs)"
}

# What the rpm holds and needs.
check_rpm() {
    rpm=$(portable RPM 'cnatool-*.rpm') || exit 1
    same 'what the rpm requires' \
        "$(rpm -qp --requires "$rpm" | grep -v '^rpmlib(' | sort -u)" /bin/sh
    same 'what the rpm recommends' "$(rpm -qp --recommends "$rpm")" python3
    same "the version in the rpm's changelog" \
        "$(rpm -qp --changelog "$rpm" | sed -n '1s/.* - //p')" "$version-1"
    same 'what is in the rpm' "$(rpm -qp --qf \
        '[%{FILEMODES:octal} %{FILEUSERNAME}:%{FILEGROUPNAME} %{FILENAMES}\n]' "$rpm" |
        sed -n 's/^0*100//p' | sort)" \
        "$({ common_files; files 644 /usr/share/doc/cnatool LICENSE; } | sort)"
}

check_rpmlint() {
    quietly rpmlint -c "$top/packaging/rpm/rpmlint.toml" "$packages"/cnatool-*.rpm
}

# program PATH LINES: a shell script in the root directory
program() {
    mkdir -p "$root$(dirname "$1")"
    printf '#!/bin/sh\n%s\n' "$2" > "$root$1"
    chmod 755 "$root$1"
}

# A root directory with a static shell and the files of the rpm, later with a management tool.
check_root() {
    if [ -n "${FAKEROOTKEY-}" ] || ! chroot / true 2> /dev/null; then
        echo 'SKIPPED, no right to change the root directory'
        exit 77
    fi
    root=$scratch/bare
    # shellcheck disable=SC2016  # for the other shell
    program /bin/systemctl 'echo "$*" >> /systemctl.log'
    mkdir -p "$root/run/systemd/system"
    cp /bin/busybox "$root/bin/sh"
    quietly rpm --root "$root" --nodeps -i "$packages"/cnatool-*.rpm
    ends_with 15 "$directory/FC_HBA" chroot "$root" $directory/cnatool -pci-id F1A0:4201
    cp "$top/demo/server/FC_HBA_Conditions.txt" "$root$directory"
    ends_with 21 '' chroot "$root" $directory/cnatool -pci-id F1A0:4201
    cp -R "$top/demo/answers" "$root"
    # shellcheck disable=SC2016
    program /opt/emulex/ocmanager/bin/hbacmd \
        'while read -r line; do echo "$line"; done < "/answers/$1${2:+/$2}.txt"'
    ends_with 4 'Invalid subsystem!' chroot "$root" $directory/cnatool -pci-id F1A0:8402:F2B0:0022
    quietly rpm --root "$root" --nodeps -e cnatool
    same 'what systemctl was told' "$(xargs < "$root/systemctl.log")" \
        'daemon-reload disable --now cnatool-check.timer daemon-reload'
    [ -f "$root$directory/FC_HBA_Conditions.txt" ] || fail 'the removal has taken the table'
}

check_units() {
    quietly env DESTDIR="$scratch" cmake --install "$build"
    unit=$scratch/usr/lib/systemd/system/cnatool-check
    sed -i "s#=/opt#=$scratch/opt#" "$unit.service"
    quietly systemd-analyze verify --man=no "$unit.service" "$unit.timer"
    same 'what systemd-analyze says' "$(cat "$scratch/log")" ''
    quietly systemd-analyze security --offline=true --threshold=50 --no-pager "$unit.service"
}

# logrotate reaches the directory itself and the ones in it.
check_rotation() {
    mkdir -p "$scratch/opt/nx/deeper"
    sed "s#$directory#$scratch/opt#g" "$top/packaging/monitoring/logrotate" > "$scratch/rules"
    for file in FWtrace.out nx/FWtrace.out nx/deeper/FWtrace.out; do
        truncate -s 2M "$scratch/opt/$file"
    done
    echo short > "$scratch/opt/nx/FWtrace.out.old"
    quietly logrotate -s "$scratch/state" "$scratch/rules"
    same 'what logrotate leaves' "$(cd "$scratch/opt" && find . -type f | sort | xargs)" \
        './FWtrace.out.1 ./nx/FWtrace.out.1 ./nx/FWtrace.out.old ./nx/deeper/FWtrace.out'
    echo short > "$scratch/opt/FWtrace.out"
    quietly logrotate -s "$scratch/state" "$scratch/rules"
    [ ! -e "$scratch/opt/FWtrace.out.2" ] || fail 'logrotate renames a short file'
}

# What cmake --install lays down: the same as the Debian package.
check_install() {
    staged=$scratch/staged
    quietly env DESTDIR="$staged" cmake --install "$build"
    same 'what cmake --install lays down' "$(found_files "$staged")" "$(debian_files | sort)"
    echo '# of this site' >> "$staged/etc/default/cnatool"
    quietly env DESTDIR="$staged" cmake --install "$build"
    same 'the end of the settings' "$(tail -n 1 "$staged/etc/default/cnatool")" '# of this site'
    ends_with 1 'installed into /opt/cnatool' cmake --install "$build" --prefix "$scratch/prefix"
    [ ! -e "$scratch/prefix" ] || fail 'something lies below a prefix'
}

"check_$part"
echo "$part: as it should be."
