#!/bin/sh
# Installs what is missing on a Debian machine:
#   setup.sh build     to build the tool
#   setup.sh package   to build its packages
#   setup.sh test      to build both and run all tests
#   setup.sh check     to run the slower checks as well
# As root or through sudo; otherwise it says what to install and ends with 1. So it does on a system
# other than Debian 12 and 13, where nothing is installed: there the names of packages may differ.
set -eu

# Each word is a file or command that tells whether its package is there.
build='g++:g++ cmake:cmake make:make /usr/include/nlohmann/json.hpp:nlohmann-json3-dev'
packages='file:file dpkg-shlibdeps:dpkg-dev rpmbuild:rpm'
tests='/usr/include/gtest/gtest.h:libgtest-dev setpriv:util-linux mandoc:mandoc
    lintian:lintian rpmlint:rpmlint fakeroot:fakeroot /usr/share/doc/busybox-static:busybox-static
    systemd-analyze:systemd logrotate:logrotate
    /usr/share/bash-completion/bash_completion:bash-completion valgrind:valgrind
    ansible-playbook:ansible-core chromium:chromium chromedriver:chromium-driver python3:python3
    /usr/lib/python3/dist-packages/jsonschema:python3-jsonschema faketime:faketime'
checks='clang++:clang clang-format:clang-format clang-tidy:clang-tidy cppcheck:cppcheck
    clang++-19:clang-19 /usr/lib/llvm-19/include/c++:libc++-19-dev
    /usr/lib/llvm-19/lib/libc++abi.so:libc++abi-19-dev
    shellcheck:shellcheck git:git ansible-lint:ansible-lint'

case ${1-} in
    build) wanted=$build ;;
    package) wanted="$build $packages" ;;
    test) wanted="$build $packages $tests" ;;
    check) wanted="$build $packages $tests $checks" ;;
    *)
        echo "usage: $0 build | package | test | check" >&2
        exit 2
        ;;
esac

is_there() {
    case $1 in
        /*) [ -e "$1" ] ;;
        *) command -v "$1" > /dev/null 2>&1 || [ -x "/usr/sbin/$1" ] ;;
    esac
}

missing=
for entry in $wanted; do
    is_there "${entry%%:*}" || missing="$missing ${entry#*:}"
done
# The library of the sanitizers and of the fuzzer must have the version of the compiler.
if [ "$1" = check ] && command -v clang++ > /dev/null 2>&1; then
    runtime=$(clang++ -print-runtime-dir 2> /dev/null || true)
    ls "$runtime"/libclang_rt.fuzzer* > /dev/null 2>&1 || missing="$missing libclang-rt-dev"
elif [ "$1" = check ]; then
    missing="$missing libclang-rt-dev"
fi
[ -n "$missing" ] || exit 0

# shellcheck source=/dev/null
system=$(ID='' VERSION_ID='' PRETTY_NAME=unknown && . /etc/os-release 2> /dev/null &&
    echo "$ID $VERSION_ID: $PRETTY_NAME") || system=': unknown'
case $system in
    "debian 12: "* | "debian 13: "*) ;;
    *)
        echo "cnatool is built and tested on Debian 12 (bookworm) and Debian 13 (trixie)." >&2
        echo "Nothing was installed on this system (${system#*: })." >&2
        echo "What is missing here is in these packages of Debian:$missing" >&2
        exit 1
        ;;
esac

if [ "$(id -u)" -eq 0 ]; then
    as_root=
elif command -v sudo > /dev/null 2>&1 && sudo -n true 2> /dev/null; then
    as_root=sudo
else
    echo "Not installed here:$missing" >&2
    echo "As root: apt-get install$missing" >&2
    exit 1
fi
echo "Installing:$missing"
# shellcheck disable=SC2086  # one package a word
{
    $as_root apt-get -qq update &&
        $as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y install --no-install-recommends $missing > /dev/null
} < /dev/null
