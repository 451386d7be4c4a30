#!/bin/sh
# on_release.sh bookworm|trixie: makes a fresh root of that Debian release, and runs ./demo.sh and
# ./test.sh there on a clean clone of what is committed here, as root, who installs what is missing,
# and then as an ordinary user. Ends with 0 if each of the four does. It needs root, debootstrap and
# git, takes the mirror and the settings of this machine's apt, and keeps what it downloads in
# CACHE (default ~/.cache/cnatool).
set -eu
[ $# -eq 1 ] || { echo "usage: $0 bookworm | trixie" >&2; exit 2; }
release=$1
top=$(cd -- "$(dirname -- "$0")/.." && pwd)
cache=${CACHE:-$HOME/.cache/cnatool}/$release
[ "$(id -u)" -eq 0 ] || { echo "$0: only root can make a root of a system" >&2; exit 1; }
for program in debootstrap git; do
    command -v $program > /dev/null || { echo "$0: not installed: $program" >&2; exit 1; }
done

# mirror_of SUITE: where this machine gets that suite from
mirror_of() {
    # shellcheck disable=SC2016  # the names are those of apt
    apt-get indextargets --format '$(RELEASE) $(REPO_URI)' | sed -n "s/^$1 //p" | head -n 1
}
# shellcheck source=/dev/null
here=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror=$(mirror_of "$here")
security=$(mirror_of "$here-security")
[ -n "$mirror" ] || { echo "$0: apt knows no mirror of $here" >&2; exit 1; }

root=$(mktemp -d "${TMPDIR:-/var/tmp}/cnatool-$release.XXXXXX")
chmod 755 "$root"
trap 'rm -rf --one-file-system "$root"' EXIT
trap 'exit 1' HUP INT TERM
mkdir -p "$cache/base" "$cache/archives"
exec 9> "$cache/lock"
flock -n 9 || { echo "$0: another run uses $cache" >&2; exit 1; }
echo "Making a root of $release in $root ..."
debootstrap --variant=minbase --cache-dir="$cache/base" "$release" "$root" "$mirror" \
    > "$cache/debootstrap.log" 2>&1 || { tail -n 20 "$cache/debootstrap.log" >&2; exit 1; }
{
    echo "deb $mirror $release main"
    echo "deb $mirror $release-updates main"
    [ -z "$security" ] || echo "deb $security $release-security main"
} > "$root/etc/apt/sources.list"
apt-config dump Acquire > "$root/etc/apt/apt.conf.d/90of-the-machine"
chroot "$root" useradd --create-home tester
git clone --quiet "$top" "$root/root/cnatool"
cp -R "$root/root/cnatool" "$root/home/tester"
chroot "$root" chown -R tester: /home/tester

# inside USER COMMAND...: in name spaces of its own, so that nothing is left mounted or running. The
# root is a real one, where an ordinary user may make name spaces; chroot would not allow it.
inside() {
    user=$1
    shift
    # shellcheck disable=SC2016  # for the other shell
    unshare --mount --pid --fork --kill-child sh -euc '
        root=$1 cache=$2 user=$3
        shift 3
        mount --bind "$root" "$root"
        cd "$root"
        mount --bind "$cache" var/cache/apt/archives
        mount --rbind /dev dev
        mount --rbind /sys sys
        mount -t proc proc proc
        cp /etc/resolv.conf etc
        mkdir -p old
        pivot_root . old
        umount -l old
        home=$(getent passwd "$user" | cut -d : -f 6)
        cd "$home/cnatool"
        exec env -i HOME="$home" USER="$user" PATH="$(test "$user" != root || echo /usr/sbin:/sbin:)/usr/bin:/bin" \
            LANG=C.UTF-8 setpriv --reuid "$user" --regid "$user" --init-groups "$@"
    ' sh "$root" "$cache/archives" "$user" "$@"
}

failed=
for user in root tester; do
    for command in ./demo.sh ./test.sh; do
        start=$(date +%s)
        mkdir -p "$cache/$user"
        status=0
        log=$cache/$user/${command#./}.log
        inside "$user" $command > "$log" 2>&1 < /dev/null || status=$?
        printf '%s, %s: %s ends with %s after %s s: ' \
            "$release" "$user" $command $status $(($(date +%s) - start))
        tail -n 1 "$log"
        [ "$status" -eq 0 ] || { failed=yes; tail -n 50 "$log"; echo "All of it: $log"; }
    done
done
[ -z "$failed" ]
